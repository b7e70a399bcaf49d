#include "PdfExport.h"

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
