// Load and save of large text files against a bare control load of the same bytes.
//
//   bench_textio [size-in-MB]      (default 100)
//
// Each measurement runs in a child process of its own, so that its peak memory is its
// own. Figures: seconds, peak memory added by the step, and ratios.

#include "editor/CMFCScintilla.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"
#include "editor/TextLoader.h"
#include "editor/TextSaver.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTextStream>
#include <cstdio>

namespace {

constexpr int kRuns = 3;

qint64 StatusKb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

// Lines of mixed ASCII and multi-byte text, about 70 bytes each in UTF-8.
QString SampleLines()
{
    QString text;
    for (int i = 0; i < 64; ++i) {
        text += QString::fromUtf8("%1 caf\xC3\xA9 na\xC3\xAFve \xE4\xB8\xAD\xE6\x96\x87 "
                                  "\xCE\xB1\xCE\xB2\xCE\xB3 the quick brown fox %2\n")
                    .arg(i, 4).arg(i * 7919);
    }
    return text;
}

bool Generate(const QString& path, int encoding, qint64 bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray block;
    if (encoding == TextEncoding::Ansi) {
        for (int i = 0; i < 64; ++i)
            block += QByteArray("caf\xE9 na\xEFve \xA9 line ") + QByteArray::number(i * 7919) + " of plain text\r\n";
    } else {
        const QStringConverter::Encoding form = encoding == TextEncoding::Utf16LE
            ? QStringConverter::Utf16LE : QStringConverter::Utf8;
        QStringEncoder encoder(form);
        block = encoder.encode(SampleLines());
        if (encoding == TextEncoding::Utf16LE)
            file.write("\xFF\xFE", 2);
    }
    while (file.size() < bytes)
        file.write(block);
    return true;
}

int RunBare(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 1;
    const QByteArray bytes = file.readAll();
    CMFCScintilla editor;
    editor.SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL);
    editor.SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 0UL);
    const qint64 before = StatusKb("VmRSS:");
    QElapsedTimer timer;
    timer.start();
    editor.AddText(bytes.constData(), long(bytes.size()));
    const double seconds = timer.nsecsElapsed() / 1e9;
    std::printf("bare %.4f %lld\n", seconds, (StatusKb("VmHWM:") - before) * 1024);
    return 0;
}

int RunDocument(const QString& path)
{
    CMFCScintilla editor;
    editor.Setup();
    const qint64 before = StatusKb("VmRSS:");
    QElapsedTimer timer;
    timer.start();
    TextFileDetector detector;
    if (!detector.Examine(path))
        return 1;
    const TextLoader::Result loaded
        = TextLoader::Load(editor, path, detector.Encoding(), detector.BomLength());
    const double loadSeconds = timer.nsecsElapsed() / 1e9;
    if (!loaded.ok)
        return 1;
    const qint64 loadPeak = (StatusKb("VmHWM:") - before) * 1024;

    const QString out = path + QStringLiteral(".saved");
    timer.restart();
    const TextSaver::Result saved = TextSaver::Save(editor, out, detector.Encoding(), detector.BomLength() > 0);
    const double saveSeconds = timer.nsecsElapsed() / 1e9;
    QFile::remove(out);
    if (!saved.ok)
        return 1;
    std::printf("doc %.4f %lld %.4f %ld %d\n", loadSeconds, loadPeak, saveSeconds,
                editor.GetLength(), editor.CanUndo() ? 1 : 0);
    return 0;
}

QList<QByteArray> RunChild(const QString& mode, const QString& path)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {mode, path});
    child.waitForFinished(-1);
    return child.readAllStandardOutput().trimmed().split(' ');
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 3 && args[1] == QStringLiteral("--bare"))
        return RunBare(args[2]);
    if (args.size() == 3 && args[1] == QStringLiteral("--doc"))
        return RunDocument(args[2]);

    const qint64 megabytes = args.size() > 1 ? args[1].toLongLong() : 100;
    const qint64 size = megabytes * 1000 * 1000;
    QTemporaryDir dir;
    std::printf("Text load and save, %lld MB files; each step in a process of its own.\n", megabytes);
    std::printf("%-8s %9s %9s %7s %11s %9s %9s %9s\n", "file", "bare s", "load s", "ratio",
                "peak/size", "save s", "target", "ok");
    struct Case { const char* name; int encoding; double target; };
    for (const Case& c : {Case{"utf-8", TextEncoding::Utf8, 1.3}, Case{"ansi", TextEncoding::Ansi, 1.3},
                          Case{"utf-16le", TextEncoding::Utf16LE, 2.0}}) {
        const QString path = dir.filePath(QString::fromLatin1(c.name));
        if (!Generate(path, c.encoding, size)) {
            std::printf("%-8s could not write the file\n", c.name);
            continue;
        }
        const qint64 fileSize = QFile(path).size();
        // The best of three runs each, so that a busy machine disturbs the ratios less;
        // the peak is the largest seen.
        double bareSeconds = 1e9, loadSeconds = 1e9, saveSeconds = 1e9, peak = 0;
        QList<QByteArray> doc;
        bool failed = false;
        for (int run = 0; run < kRuns && !failed; ++run) {
            const QList<QByteArray> bare = RunChild(QStringLiteral("--bare"), path);
            doc = RunChild(QStringLiteral("--doc"), path);
            if (bare.size() < 3 || doc.size() < 6) {
                failed = true;
                break;
            }
            bareSeconds = std::min(bareSeconds, bare[1].toDouble());
            loadSeconds = std::min(loadSeconds, doc[1].toDouble());
            saveSeconds = std::min(saveSeconds, doc[3].toDouble());
            peak = std::max(peak, doc[2].toDouble() / double(fileSize));
        }
        QFile::remove(path);
        if (failed) {
            std::printf("%-8s a step failed\n", c.name);
            continue;
        }
        const double ratio = loadSeconds / bareSeconds;
        const bool ok = ratio <= c.target && peak < 2.6 && saveSeconds < 0.5 * double(megabytes) / 100.0
            && doc[5] == "0";
        std::printf("%-8s %9.3f %9.3f %7.2f %11.2f %9.3f %9.1f %9s\n", c.name, bareSeconds,
                    loadSeconds, ratio, peak, saveSeconds, c.target, ok ? "yes" : "NO");
    }
    std::printf("targets: load within the ratio of the bare load, peak under 2.6 x file size, "
                "save of 100 MB under 0.5 s, nothing to undo after loading; best of %d runs\n", kRuns);
    return 0;
}
