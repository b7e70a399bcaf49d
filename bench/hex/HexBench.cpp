// Figures for the hex editor on large files: open and first paint of a 4 GB sparse
// image, a jump to its last byte, search speed against memmem, and save time against
// cp. Files live in a temporary folder (MORVANE_BENCH_DIR, else the system's) and are
// removed at the end.
#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"
#include "hex/CPieceTable.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <sys/mman.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 kGiB = qint64(1) << 30;

double Seconds(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

qint64 RssKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

void Render(CHexEditView& view)
{
    QImage image(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    view.viewport()->render(&image);
}

bool MakeSparse(const QString& path, qint64 size, const QByteArray& tail)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(size))
        return false;
    file.seek(0);
    file.write("MORVANE hex benchmark image");
    file.seek(size - tail.size());
    return file.write(tail) == tail.size();
}

// Fills a file with pseudo-random bytes so that searching it is not a best case.
bool MakeRandom(const QString& path, qint64 size, const QByteArray& tail)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray block(8 << 20, Qt::Uninitialized);
    quint64 state = 0x9E3779B97F4A7C15ull;
    qint64 written = 0;
    while (written < size - tail.size()) {
        auto* words = reinterpret_cast<quint64*>(block.data());
        for (qsizetype i = 0; i < block.size() / 8; ++i) {
            state ^= state << 13;
            state ^= state >> 7;
            state ^= state << 17;
            words[i] = state;
        }
        const qint64 n = std::min<qint64>(block.size(), size - tail.size() - written);
        if (file.write(block.constData(), n) != n)
            return false;
        written += n;
    }
    return file.write(tail) == tail.size();
}

double TimeProcess(const QString& program, const QStringList& arguments)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return -1;
    return Seconds(timer);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString base = qEnvironmentVariable("MORVANE_BENCH_DIR", QDir::tempPath());
    QTemporaryDir dir(base + QStringLiteral("/morvane-hexbench-XXXXXX"));
    if (!dir.isValid()) {
        std::fprintf(stderr, "cannot make a folder in %s\n", qPrintable(base));
        return 1;
    }
    std::printf("Temporary folder: %s\n", qPrintable(dir.path()));

    // Fonts, styles and the first paint cost the same for every document: pay them
    // once before measuring, as a running editor has.
    {
        const QString small = dir.filePath(QStringLiteral("warm.bin"));
        MakeSparse(small, 4096, "end");
        CHexDocument document;
        document.OnOpenDocument(small);
        CHexEditView view(&document);
        view.resize(1000, 700);
        Render(view);
    }

    // 1. A 4 GB sparse disk image: open and first screen.
    {
        const QString image = dir.filePath(QStringLiteral("disk.img"));
        const qint64 size = 4 * kGiB;
        if (!MakeSparse(image, size, "LASTBYTE")) {
            std::fprintf(stderr, "cannot make a sparse file\n");
            return 1;
        }
        const qint64 rssBefore = RssKiB();
        QElapsedTimer timer;
        timer.start();
        CHexDocument document;
        if (!document.OnOpenDocument(image)) {
            std::fprintf(stderr, "open failed\n");
            return 1;
        }
        CHexEditView view(&document);
        view.resize(1000, 700);
        Render(view);
        const double openSeconds = Seconds(timer);
        const qint64 rssAfter = RssKiB();
        std::printf("\n[open] 4 GiB sparse image, open + first screen: %.4f s (goal < 0.2 s, "
                    "%.1f%% of it)\n",
                    openSeconds, openSeconds / 0.2 * 100);
        std::printf("[open] resident memory added: %.1f MB (goal < 50 MB)\n",
                    double(rssAfter - rssBefore) / 1024);

        timer.restart();
        view.SetCaret(size - 1);
        Render(view);
        const double gotoSeconds = Seconds(timer);
        std::printf("[goto] last byte + paint: %.2f ms (goal < 50 ms)\n", gotoSeconds * 1000);
        const QByteArray last = document.Bytes().Read(size - 8, 8);
        std::printf("[goto] bytes at the end read back: %s\n", last == "LASTBYTE" ? "ok" : "WRONG");
        QFile::remove(image);
    }

    // 2. Search: an 8-byte pattern at the end of 1 GiB of random bytes.
    const QString big = dir.filePath(QStringLiteral("big.bin"));
    const qint64 bigSize = kGiB;
    const QByteArray needle("NEEDLE!!");
    if (!MakeRandom(big, bigSize, needle)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(big));
        return 1;
    }
    {
        CPieceTable table;
        if (!table.Open(big, nullptr))
            return 1;
        // Read the file once so both contenders start from the page cache.
        table.Find("never-there-xyzzy", 0, true, true);

        QElapsedTimer timer;
        timer.start();
        const auto hit = table.Find(needle, 0, true, true);
        const double ours = Seconds(timer);

        const int fd = ::open(QFile::encodeName(big).constData(), O_RDONLY);
        void* map = ::mmap(nullptr, size_t(bigSize), PROT_READ, MAP_SHARED, fd, 0);
        timer.restart();
        const void* found = ::memmem(map, size_t(bigSize), needle.constData(), size_t(needle.size()));
        const double plain = Seconds(timer);
        const qint64 plainAt = found ? static_cast<const char*>(found) - static_cast<const char*>(map) : -1;
        ::munmap(map, size_t(bigSize));
        ::close(fd);

        timer.restart();
        const auto back = table.Find(needle, bigSize - 1 - needle.size(), false, true);
        const double backward = Seconds(timer);
        timer.restart();
        const auto folded = table.Find("needle!!", 0, true, false);
        const double insensitive = Seconds(timer);

        const double gib = double(bigSize) / double(kGiB);
        std::printf("\n[find] 8-byte pattern at the end of 1 GiB (found at %lld, expected %lld)\n",
                    static_cast<long long>(hit.offset), static_cast<long long>(bigSize - 8));
        std::printf("[find] forward: %.3f s = %.2f GiB/s (goal >= 1 GiB/s)\n", ours, gib / ours);
        std::printf("[find] memmem over the mapped file: %.3f s = %.2f GiB/s (found at %lld)\n",
                    plain, gib / plain, static_cast<long long>(plainAt));
        std::printf("[find] ratio ours / memmem time: %.2f\n", ours / plain);
        std::printf("[find] backward, nothing before the end: %.3f s = %.2f GiB/s (found at %lld)\n",
                    backward, gib / backward, static_cast<long long>(back.offset));
        std::printf("[find] forward ignoring case: %.3f s = %.2f GiB/s (found at %lld)\n",
                    insensitive, gib / insensitive, static_cast<long long>(folded.offset));
    }

    // 3. Save with one byte changed, against cp of the same file.
    {
        const QString copy = dir.filePath(QStringLiteral("copy.bin"));
        const double cpSeconds = TimeProcess(QStringLiteral("cp"), {big, copy});
        QFile::remove(copy);
        const double cpSyncSeconds = [&] {
            QElapsedTimer timer;
            timer.start();
            if (TimeProcess(QStringLiteral("cp"), {big, copy}) < 0
                || TimeProcess(QStringLiteral("sync"), {copy}) < 0)
                return -1.0;
            return Seconds(timer);
        }();
        QFile::remove(copy);

        CPieceTable table;
        if (!table.Open(big, nullptr))
            return 1;
        table.Overwrite(bigSize / 2, "X");
        QElapsedTimer timer;
        timer.start();
        QString error;
        const bool saved = table.Save(big, true, &error);
        const double saveSeconds = Seconds(timer);
        if (!saved) {
            std::fprintf(stderr, "save failed: %s\n", qPrintable(error));
            return 1;
        }
        std::printf("\n[save] 1 GiB with one byte changed: %.3f s (includes fsync by QSaveFile)\n",
                    saveSeconds);
        std::printf("[save] cp of the same file: %.3f s; ratio save / cp: %.2f (goal <= 2)\n",
                    cpSeconds, saveSeconds / cpSeconds);
        std::printf("[save] cp + sync of the copy: %.3f s; ratio save / (cp + sync): %.2f\n",
                    cpSyncSeconds, saveSeconds / cpSyncSeconds);
        std::printf("[save] changed byte on disk: %s\n",
                    table.Read(bigSize / 2, 1) == "X" ? "ok" : "WRONG");
    }
    QFile::remove(big);
    return 0;
}
