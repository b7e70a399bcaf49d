// Large files through the whole text document: a generated UTF-8 log (1 GB unless a
// size in MB is given) and a 20 MB file that is one line.
//
//   bench_largefile [log-size-in-MB]
//
// Each load runs in a child process of its own so that its peak memory is its own. The
// generated files live in a temporary folder under /tmp and are removed at the end.

#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CTextSearch.h"
#include "editor/LargeFileMode.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"
#include "framework/CDocTemplate.h"
#include "framework/IStatusSink.h"
#include "framework/OpenOptions.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>
#include <ctime>

namespace {

const QByteArray kWordAtEnd = "zyzzyva";

qint64 PeakKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

double Seconds(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

// Processor time of the whole process since `start`: on a busy machine it says what the
// wall clock cannot.
double CpuSince(std::clock_t start)
{
    return double(std::clock() - start) / CLOCKS_PER_SEC;
}

// A log with a few UTF-8 words on every line; with `ascii`, the same lines in plain ASCII,
// which the program opens as "Ansi", as most server logs are.
bool GenerateLog(const QString& path, qint64 bytes, bool ascii = false)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray block;
    for (int i = 0; block.size() < (4 << 20); ++i) {
        block += "2026-11-22T21:" + QByteArray::number(10 + i % 50) + ":00.123 INFO worker-"
                 + QByteArray::number(i % 16) + (ascii ? " cafe zhongwen request " : " caf\xC3\xA9 \xE4\xB8\xAD\xE6\x96\x87 request ")
                 + QByteArray::number(i * 7919) + " served in " + QByteArray::number(i % 997) + " ms\n";
    }
    qint64 written = 0;
    while (written + block.size() < bytes) {
        if (file.write(block) != block.size())
            return false;
        written += block.size();
    }
    return file.write("last line holds the word " + kWordAtEnd + "\n") > 0;
}

bool GenerateSingleLine(const QString& path, qint64 bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray block;
    for (int i = 0; block.size() < (1 << 20); ++i)
        block += "{\"id\":" + QByteArray::number(i) + ",\"name\":\"item\",\"tags\":[\"a\",\"b\"]},";
    qint64 written = 0;
    while (written + block.size() < bytes) {
        file.write(block);
        written += block.size();
    }
    return file.write("\"" + kWordAtEnd + "\"") > 0;
}

// The progress of a load, as the status bar would show it; never cancels.
class Progress : public IProgressSink
{
public:
    void StartProgress(qint64) override {}
    void SetProgress(qint64) override {}
    void StopProgress() override {}
};

// Draws the visible text now, as the screen would: repaint() alone may be put off.
void Paint(CMFCScintilla* editor)
{
    editor->viewport()->grab();
}

// Child: the bytes straight into a bare control, in the control's own large steps.
int BareLoad(const QString& path)
{
    CMFCScintilla editor;
    const qint64 size = QFileInfo(path).size();
    QElapsedTimer timer;
    timer.start();
    void* document = reinterpret_cast<void*>(editor.SendScintilla(
        // With room to spare: storage filled exactly is copied whole into a bigger one.
        QsciScintillaBase::SCI_CREATEDOCUMENT, static_cast<unsigned long>(size + 1000),
        static_cast<long>(LargeFileMode::DocumentOptions(size, false))));
    editor.SetDocPointer(document);
    editor.SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, document);
    editor.SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 0UL);
    editor.SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL);
    editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 1;
    QByteArray chunk;
    while (!(chunk = file.read(16 << 20)).isEmpty())
        editor.AddText(chunk.constData(), chunk.size());
    std::printf("bare %.3f %lld\n", Seconds(timer), PeakKb());
    return editor.GetLength() == size ? 0 : 1;
}

// Child: the document's own open, then the work a user does with the file.
int DocumentRun(const QString& path, const QString& savePath, bool detect)
{
    OpenOptions options;
    options.encoding = TextEncoding::Utf8;
    // As the program opens a file: its encoding as the detector reads it.
    TextFileDetector probe;
    if (detect && probe.Examine(path)) {
        options.encoding = probe.Encoding();
        options.bomLength = probe.BomLength();
    }
    Progress progress;
    CDocTemplate docTemplate(
        QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
        [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
    docTemplate.SetOpenOptions(&options);
    docTemplate.SetProgressSink(&progress);

    QElapsedTimer timer;
    timer.start();
    const std::clock_t openClock = std::clock();
    auto* document = static_cast<CScrivelDoc*>(docTemplate.OpenDocumentFile(path, false));
    if (!document)
        return 1;
    auto* frame = static_cast<CScrivelFrame*>(document->GetFrames().first());
    frame->resize(1000, 700);
    frame->show();
    CMFCScintilla* editor = document->GetEditor();
    Paint(editor);
    const double open = Seconds(timer);
    const double openCpu = CpuSince(openClock);
    const qint64 peak = PeakKb();

    timer.restart();
    editor->GotoPos(editor->GetLength());
    editor->ScrollCaret();
    Paint(editor);
    const double end = Seconds(timer);

    timer.restart();
    const std::clock_t typeClock = std::clock();
    editor->AddText("x", 1);
    Paint(editor);
    const double type = Seconds(timer);
    const double typeCpu = CpuSince(typeClock);

    editor->GotoPos(0);
    timer.restart();
    const long found = CTextSearch(editor).FindText(QString::fromLatin1(kWordAtEnd), false, false);
    Paint(editor);
    const double find = Seconds(timer);

    double save = -1;
    double again = -1;
    if (!savePath.isEmpty()) {
        timer.restart();
        save = document->DoSave(savePath) ? Seconds(timer) : -1;
        // The first save is also the first time the system reads the text's memory; in a
        // virtual machine that costs more than the write. A user saves again and again.
        editor->AddText("y", 1);
        timer.restart();
        again = document->DoSave(savePath) ? Seconds(timer) : -1;
    }
    std::printf("document %.3f %lld %.3f %.3f %.3f %.3f %d %lld %.3f %.3f %.3f %d\n", open, peak, end, type, find, save,
                found > 0 ? 1 : 0, PeakKb(), openCpu, typeCpu, again, document->Encoding);
    document->SetModifiedFlag(false);
    return 0;
}

// Child: Replace All of a million matches in 3 MB, then its undo.
int ReplaceRun()
{
    CMFCScintilla editor;
    editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
    const QByteArray text = QByteArray("ab ").repeated(1000000);
    editor.AddText(text.constData(), text.size());
    CTextSearch search(&editor);
    search.SetSearchFlags(true, false, false);
    QElapsedTimer timer;
    timer.start();
    const long count = search.ReplaceAll(QStringLiteral("ab"), QStringLiteral("xyz"), false, false);
    const double replace = Seconds(timer);
    timer.restart();
    editor.Undo();
    std::printf("replace %.3f %.3f %ld\n", replace, Seconds(timer), count);
    return 0;
}

QStringList RunChild(const QStringList& arguments, const QString& home)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    environment.insert(QStringLiteral("MORVANE_MEMAVAILABLE"), QString::number(1LL << 40));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), arguments);
    child.waitForFinished(-1);
    return QString::fromLatin1(child.readAllStandardOutput()).trimmed().split(QLatin1Char(' '));
}

// A plain copy; with `durable`, also put on the disk before it counts as done, as a save
// does before it replaces the old file.
double Cp(const QString& from, const QString& to, bool durable = false)
{
    QElapsedTimer timer;
    timer.start();
    QProcess::execute(QStringLiteral("cp"), {from, to});
    if (durable)
        QProcess::execute(QStringLiteral("sync"), {to});
    const double seconds = Seconds(timer);
    QFile::remove(to);
    return seconds;
}

// Touches `bytes` of memory and gives it back. In a virtual machine the host backs the
// guest's memory on first touch, which costs the first writer of a gigabyte about a second
// more than any later one; warmed once, every contender below starts alike.
void WarmMemory(qint64 bytes)
{
    constexpr qint64 kPiece = 256LL << 20;
    std::vector<std::unique_ptr<char[]>> pieces;
    for (qint64 done = 0; done < bytes; done += kPiece) {
        pieces.push_back(std::make_unique_for_overwrite<char[]>(std::size_t(kPiece)));
        std::memset(pieces.back().get(), 1, std::size_t(kPiece));
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.value(1) == QLatin1String("--bare"))
        return BareLoad(args.value(2));
    if (args.value(1) == QLatin1String("--replace"))
        return ReplaceRun();
    if (args.value(1) == QLatin1String("--document"))
        return DocumentRun(args.value(2), args.value(3), args.value(4) == QLatin1String("detect"));

    const qint64 megabytes = args.size() > 1 ? args.value(1).toLongLong() : 1024;
    const qint64 bytes = megabytes << 20;
    QTemporaryDir dir(QStringLiteral("/tmp/morvane-largefile-XXXXXX"));
    if (QStorageInfo(dir.path()).bytesAvailable() < bytes * 4 + (1LL << 30)) {
        std::printf("not enough room in /tmp for %lld MB four times over\n", megabytes);
        return 1;
    }
    const QString log = dir.filePath(QStringLiteral("log.txt"));
    const QString line = dir.filePath(QStringLiteral("line.json"));
    const QString asciiLog = dir.filePath(QStringLiteral("ascii.log"));
    if (!GenerateLog(log, bytes) || !GenerateLog(asciiLog, bytes, true) || !GenerateSingleLine(line, 20 << 20)) {
        std::printf("could not write the test files\n");
        return 1;
    }
    const double fileMb = double(QFileInfo(log).size()) / (1 << 20);
    const QString home = dir.filePath(QStringLiteral("home"));
    QDir().mkpath(home);

    // Warm the page cache and the memory the same way for every contender.
    WarmMemory(bytes * 6);
    Cp(log, dir.filePath(QStringLiteral("warm")));
    const double cpBefore = Cp(log, dir.filePath(QStringLiteral("copy")));
    const QStringList bare = RunChild({QStringLiteral("--bare"), log}, home);
    const QStringList doc = RunChild({QStringLiteral("--document"), log, dir.filePath(QStringLiteral("saved.txt"))}, home);
    const double cp = Cp(log, dir.filePath(QStringLiteral("copy")));
    const double cpSync = Cp(log, dir.filePath(QStringLiteral("copy")), true);
    QFile::remove(dir.filePath(QStringLiteral("saved.txt")));
    const QStringList ascii = RunChild({QStringLiteral("--document"), asciiLog, dir.filePath(QStringLiteral("saved.txt")),
                                        QStringLiteral("detect")},
                                       home);
    QFile::remove(dir.filePath(QStringLiteral("saved.txt")));
    const QStringList single = RunChild({QStringLiteral("--document"), line, QString()}, home);
    const QStringList replace = RunChild({QStringLiteral("--replace")}, home);
    if (bare.size() < 3 || doc.size() < 13 || ascii.size() < 13 || single.size() < 11 || replace.size() < 4) {
        std::printf("a child failed\n");
        return 1;
    }

    const double bareLoad = bare[1].toDouble();
    const double docLoad = doc[1].toDouble();
    const double peakMb = doc[2].toDouble() / 1024;
    const double find = doc[5].toDouble();
    const double save = doc[6].toDouble();
    std::printf("UTF-8 log of %.0f MB (large-file mode)\n", fileMb);
    std::printf("  bare control load      %8.3f s\n", bareLoad);
    std::printf("  document load + paint  %8.3f s   ratio %.2f (target 1.3, under 8 s)\n", docLoad, docLoad / bareLoad);
    std::printf("  peak memory            %8.0f MB  ratio %.2f of the file (target 1.6)\n", peakMb, peakMb / fileMb);
    std::printf("  peak after find + save %8.0f MB  ratio %.2f of the file\n", doc[8].toDouble() / 1024,
                doc[8].toDouble() / 1024 / fileMb);
    std::printf("  bare peak memory       %8.0f MB\n", bare[2].toDouble() / 1024);
    std::printf("  scroll to end + paint  %8.3f s\n", doc[3].toDouble());
    std::printf("  type at end + paint    %8.3f s\n", doc[4].toDouble());
    std::printf("  find word at end       %8.3f s   %.2f GB/s (target 1)\n", find, fileMb / 1024 / find);
    std::printf("  save                   %8.3f s   cp %.3f s (%.3f s before the loads), ratio %.2f (target 2)\n",
                save, cp, cpBefore, save / cp);
    std::printf("                                     cp + sync %.3f s, ratio %.2f (a save syncs)\n", cpSync,
                save / cpSync);
    std::printf("  save again             %8.3f s   ratio %.2f of cp, %.2f of cp + sync\n", doc[11].toDouble(),
                doc[11].toDouble() / cp, doc[11].toDouble() / cpSync);
    std::printf("ASCII log of the same size, opened as detected (%s)\n",
                TextEncoding::DisplayName(ascii[12].toInt()).toUtf8().constData());
    std::printf("  document load + paint  %8.3f s   ratio %.2f of the bare load of the UTF-8 log\n", ascii[1].toDouble(),
                ascii[1].toDouble() / bareLoad);
    std::printf("  find word at end       %8.3f s   %.2f GB/s\n", ascii[5].toDouble(),
                fileMb / 1024 / ascii[5].toDouble());
    std::printf("  save                   %8.3f s   ratio %.2f of cp + sync\n", ascii[6].toDouble(),
                ascii[6].toDouble() / cpSync);
    std::printf("  save again             %8.3f s   ratio %.2f of cp + sync\n", ascii[11].toDouble(),
                ascii[11].toDouble() / cpSync);
    std::printf("20 MB single line (%s)\n", "JSON-like");
    std::printf("  open + paint           %8.3f s   (target under 2 s), processor %.3f s\n", single[1].toDouble(),
                single[9].toDouble());
    std::printf("  go to end + paint      %8.3f s\n", single[3].toDouble());
    std::printf("  type + paint           %8.3f s   (target under 0.1 s), processor %.3f s\n", single[4].toDouble(),
                single[10].toDouble());
    std::printf("  find word at end       %8.3f s\n", single[5].toDouble());
    std::printf("Replace All of %s matches in 3 MB   %8.3f s, its undo %.3f s\n",
                replace[3].toLatin1().constData(), replace[1].toDouble(), replace[2].toDouble());
    std::printf("  found all: %s\n",
                doc[7] == QLatin1String("1") && ascii[7] == QLatin1String("1") && single[7] == QLatin1String("1") ? "yes"
                                                                                                                 : "NO");
    return 0;
}
