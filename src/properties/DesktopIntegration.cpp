#include "DesktopIntegration.h"

#include "editor/DiskSync.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace DesktopIntegration {

namespace {

QString DataHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

// Makes a folder with its parents and adds those that were missing to `made`, outermost
// first, so that a failed install can take them away again.
bool MakeFolders(const QString& folder, QStringList& made, QString* error)
{
    QStringList missing;
    for (QString path = QDir::cleanPath(folder); !QFileInfo::exists(path);) {
        missing.prepend(path);
        const QString parent = QFileInfo(path).path();
        if (parent == path)
            break;
        path = parent;
    }
    made += missing;
    if (QDir().mkpath(folder))
        return true;
    if (error)
        *error = QStringLiteral("Cannot create the folder \"%1\"").arg(folder);
    return false;
}

// Writes the bytes beside the file and syncs them, without replacing the file yet.
bool Stage(QSaveFile& file, const QByteArray& bytes, QString* error)
{
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) {
        if (SyncToDisk(file.handle(), error))
            return true;
    } else if (error) {
        *error = file.errorString();
    }
    file.cancelWriting();
    return false;
}

bool WriteFile(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile file(path);
    return Stage(file, bytes, error) && CommitToDisk(file, error);
}

// The desktop's caches; without the tools the files are still found at the next login.
void Refresh(const QString& folder, const char* tool)
{
    const QString program = QStandardPaths::findExecutable(QString::fromLatin1(tool));
    if (program.isEmpty())
        return;
    // Quick tools; waiting for them keeps the caches whole when the program ends soon.
    QProcess process;
    process.start(program, {folder});
    process.waitForFinished(5000);
}

// A path in an Exec line: quoted when it holds anything the format treats specially.
QString ExecArgument(const QString& path)
{
    static const QString special = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool quote = false;
    for (const QChar c : path)
        quote = quote || special.contains(c);
    if (!quote)
        return path;
    QString escaped;
    for (const QChar c : path) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\")); // the entry's own escaping
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

} // namespace

QString EntryPath()
{
    return QDir(DataHome()).filePath(QStringLiteral("applications/") + QLatin1String(EntryName));
}

QString MimePackagePath()
{
    return QDir(DataHome()).filePath(QStringLiteral("mime/packages/morvane.xml"));
}

QString EntryText(const QString& executable)
{
    return QStringLiteral(
               "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=Morvane\n"
               "GenericName=Text Editor\n"
               "Comment=Edit text files and source code\n"
               "Exec=%1 --reuse %F\n"
               "Icon=morvane\n"
               "Terminal=false\n"
               "Categories=Development;TextEditor;Utility;\n"
               "Keywords=text;editor;code;programming;\n"
               "MimeType=text/plain;text/x-csrc;text/x-chdr;text/x-c++src;text/x-c++hdr;"
               "text/x-python;text/x-java;text/html;text/css;text/javascript;application/xml;"
               "application/json;application/x-shellscript;text/markdown;%2;\n"
               "StartupNotify=true\n")
        .arg(ExecArgument(executable), QLatin1String(WorkspaceMimeType));
}

QString MimePackageText()
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
               "  <mime-type type=\"%1\">\n"
               "    <comment>Morvane workspace</comment>\n"
               "    <sub-class-of type=\"application/xml\"/>\n"
               "    <glob pattern=\"*.spf\"/>\n"
               "  </mime-type>\n"
               "</mime-info>\n")
        .arg(QLatin1String(WorkspaceMimeType));
}

bool IsInstalled()
{
    return QFileInfo::exists(EntryPath());
}

bool Install(const QString& executable, QString* error)
{
    // Both files or neither: both are written and synced before either replaces the old
    // one, and a package that went in before the entry failed is taken back.
    const QString packagePath = MimePackagePath();
    const bool hadPackage = QFileInfo::exists(packagePath);
    QByteArray oldPackage;
    if (hadPackage) {
        QFile old(packagePath);
        if (!old.open(QIODevice::ReadOnly)) {
            if (error)
                *error = old.errorString();
            return false;
        }
        oldPackage = old.readAll();
    }
    QStringList made;
    QSaveFile package(packagePath);
    QSaveFile entry(EntryPath());
    bool ok = MakeFolders(QFileInfo(packagePath).absolutePath(), made, error)
        && MakeFolders(QFileInfo(EntryPath()).absolutePath(), made, error)
        && Stage(package, MimePackageText().toUtf8(), error) && Stage(entry, EntryText(executable).toUtf8(), error);
    if (ok && !CommitToDisk(package, error)) {
        entry.cancelWriting();
        ok = false;
    } else if (ok && !CommitToDisk(entry, error)) {
        if (hadPackage)
            WriteFile(packagePath, oldPackage, nullptr);
        else
            QFile::remove(packagePath);
        ok = false;
    }
    if (!ok) {
        for (auto it = made.crbegin(); it != made.crend(); ++it)
            QDir().rmdir(*it);
        return false;
    }
    Refresh(QDir(DataHome()).filePath(QStringLiteral("mime")), "update-mime-database");
    Refresh(QFileInfo(EntryPath()).absolutePath(), "update-desktop-database");
    return true;
}

bool Remove(QString* error)
{
    for (const QString& path : {EntryPath(), MimePackagePath()}) {
        if (QFileInfo::exists(path) && !QFile::remove(path)) {
            if (error)
                *error = QStringLiteral("Cannot remove \"%1\"").arg(path);
            return false;
        }
    }
    Refresh(QDir(DataHome()).filePath(QStringLiteral("mime")), "update-mime-database");
    Refresh(QFileInfo(EntryPath()).absolutePath(), "update-desktop-database");
    return true;
}

} // namespace DesktopIntegration
