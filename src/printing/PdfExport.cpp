#include "PdfExport.h"

#include "editor/DiskSync.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageSize>
#include <QPrinter>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

namespace PdfExport {

namespace {

// The PDF engine doesn't report a failed write, and a file missing a piece still ends
// like a PDF; but its cross-reference table, which gives the place of every object, no
// longer matches the bytes around it.
bool IsWhole(const QByteArray& pdf)
{
    if (!pdf.startsWith("%PDF-") || !pdf.trimmed().endsWith("%%EOF"))
        return false;
    const qsizetype mark = pdf.lastIndexOf("startxref");
    bool ok = false;
    const qsizetype table = mark < 0 ? -1 : pdf.mid(mark + 9, 24).trimmed().split('\n').value(0).toLongLong(&ok);
    if (!ok || table <= 0 || table >= mark || !pdf.mid(table, 4).startsWith("xref"))
        return false;
    const QList<QByteArray> lines = pdf.mid(table, mark - table).split('\n');
    const QList<QByteArray> section = lines.value(1).trimmed().split(' ');
    const int count = section.value(1).toInt(&ok);
    if (!ok || section.value(0) != "0" || count < 1 || lines.size() < count + 3)
        return false;
    for (int i = 0; i < count; ++i) {
        const QByteArray entry = lines.at(i + 2).trimmed();
        if (entry.endsWith(" f"))
            continue;
        const qsizetype at = entry.left(10).toLongLong(&ok);
        if (!ok || !entry.endsWith(" n") || !pdf.mid(at, 24).startsWith(QByteArray::number(i) + " 0 obj"))
            return false;
    }
    return lines.at(count + 2).trimmed().startsWith("trailer");
}

// Reads back what the engine wrote and puts it on the disk; the reason when it isn't
// whole or can't be synced.
QString Confirm(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    if (!IsWhole(file.readAll()))
        return QCoreApplication::translate("PdfExport", "The file could not be written whole.");
    QString reason;
    return SyncToDisk(file.handle(), &reason) ? QString() : reason;
}

} // namespace

bool Write(QsciScintillaBase& editor, const PrintOptions& options, const QString& headerName,
           const QString& path, const CPrintJob::Progress& progress, QString* error,
           long rangeStart, long rangeEnd)
{
    const QFileInfo target(path);
    QTemporaryFile temp(QDir(target.absolutePath()).filePath(QStringLiteral(".%1.XXXXXX").arg(target.fileName())));
    if (!temp.open()) {
        if (error)
            *error = temp.errorString();
        return false;
    }
    temp.close();

    bool ok = false;
    {
        // 300 dots an inch places text finely enough; the engine's full resolution
        // only makes every page slower to lay out.
        QPrinter printer(QPrinter::ScreenResolution);
        printer.setResolution(300);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(temp.fileName());
        printer.setPageSize(options.paper.isValid() ? options.paper
                                                    : QPageSize(options.metric ? QPageSize::A4 : QPageSize::Letter));
        printer.setPageMargins(QMarginsF(0, 0, 0, 0));
        printer.setDocName(headerName);
        printer.setCreator(QCoreApplication::applicationName());
        CPrintJob job(editor, options, headerName);
        job.SetRange(rangeStart, rangeEnd);
        ok = job.Print(printer, progress);
        if (!ok && error)
            *error = QCoreApplication::translate("PdfExport", "The export was cancelled.");
    }
    if (!ok)
        return false;
    if (QFileInfo(temp.fileName()).size() == 0) {
        if (error)
            *error = QCoreApplication::translate("PdfExport", "Nothing could be written.");
        return false;
    }
    // What replaces an earlier export must have reached the disk whole.
    if (const QString reason = Confirm(temp.fileName()); !reason.isEmpty()) {
        if (error)
            *error = reason;
        return false;
    }
    std::error_code code;
    std::filesystem::rename(QFile::encodeName(temp.fileName()).toStdString(),
                            QFile::encodeName(target.absoluteFilePath()).toStdString(), code);
    if (code) {
        if (error)
            *error = QString::fromStdString(code.message());
        return false;
    }
    temp.setAutoRemove(false);
    QFile::setPermissions(target.absoluteFilePath(), QFile::ReadOwner | QFile::WriteOwner
                                                         | QFile::ReadGroup | QFile::ReadOther);
    return true;
}

} // namespace PdfExport

#if defined(__linux__) && defined(__ELF__)
#include <zlib.h>

// Qt's PDF writer deflates every page at zlib's default level. A printed program is
// hundreds of megabytes of small drawing commands before compression, and at the
// default level squeezing them costs a fifth of a long export; level 3 takes half that
// time for a file about a sixth larger. The writer offers no setting, so the program
// provides zlib's own entry point, which the dynamic linker binds in place of the
// library's: streams asked for at the default level get level 3, an explicit level is
// kept, and nothing else about the stream changes.
extern "C" int deflateInit_(z_streamp stream, int level, const char* version, int streamSize)
{
    const int chosen = level == Z_DEFAULT_COMPRESSION ? 3 : level;
    return deflateInit2_(stream, chosen, Z_DEFLATED, MAX_WBITS, 8, Z_DEFAULT_STRATEGY, version, streamSize);
}
#endif
