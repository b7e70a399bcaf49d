#include "HelpLocator.h"

#include "settings/AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QWidget>

namespace HelpLocator {

QString ShippedFolder()
{
    QStringList candidates;
    const QString fromEnv = qEnvironmentVariable("MORVANE_HELP_DIR");
    if (!fromEnv.isEmpty())
        candidates << fromEnv;
    if (QCoreApplication::instance()) {
        const QDir exe(QCoreApplication::applicationDirPath());
        candidates << exe.filePath(QStringLiteral("help"))
                   << exe.filePath(QStringLiteral("../share/morvane/help"));
    }
    candidates << QStringLiteral(MORVANE_HELP_DIR_INSTALLED) << QStringLiteral(MORVANE_HELP_DIR_BUILD);
    for (const QString& candidate : std::as_const(candidates)) {
        if (QFileInfo::exists(QDir(candidate).filePath(QLatin1String(CollectionName))))
            return QDir(candidate).absolutePath();
    }
    return {};
}

QString UserCollection()
{
    const QString shipped = ShippedFolder();
    if (shipped.isEmpty())
        return {};
    const QDir target(QDir(AppPaths::AppDataLocation()).filePath(QStringLiteral("help")));
    if (!QDir().mkpath(target.path()))
        return QDir(shipped).filePath(QLatin1String(CollectionName));
    bool fresh = true;
    for (const QString& name : {QStringLiteral("morvane.qch"), QString::fromLatin1(CollectionName)}) {
        const QFileInfo from(QDir(shipped).filePath(name));
        const QFileInfo to(target.filePath(name));
        if (!to.exists() || to.size() != from.size() || to.lastModified() < from.lastModified())
            fresh = false;
    }
    if (!fresh) {
        // The old search index belongs to the old pages.
        QDir(target.filePath(QStringLiteral(".morvane"))).removeRecursively();
        for (const QString& name : {QStringLiteral("morvane.qch"), QString::fromLatin1(CollectionName)}) {
            QFile::remove(target.filePath(name));
            if (!QFile::copy(QDir(shipped).filePath(name), target.filePath(name)))
                return QDir(shipped).filePath(QLatin1String(CollectionName));
            QFile::setPermissions(target.filePath(name), QFile::ReadOwner | QFile::WriteOwner);
        }
    }
    return target.filePath(QLatin1String(CollectionName));
}

QString PageUrl(const QString& page)
{
    return QStringLiteral("qthelp://%1/manual/%2").arg(QLatin1String(Namespace), page);
}

QString PageFor(const QWidget* window, const QWidget* focus)
{
    for (const QWidget* widget = focus; widget; widget = widget->parentWidget()) {
        const QVariant page = widget->property("helpPage");
        if (page.isValid() && !page.toString().isEmpty())
            return page.toString();
        if (widget == window)
            break;
    }
    if (window) {
        const QVariant page = window->property("helpPage");
        if (page.isValid() && !page.toString().isEmpty())
            return page.toString();
        // Dialogs that don't name a page, by their class.
        static const QHash<QString, QString> byClass{
            {QStringLiteral("CFindDialog"), QStringLiteral("search.html#find")},
            {QStringLiteral("CReplaceDialog"), QStringLiteral("search.html#replace")},
            {QStringLiteral("CFindInFilesDialog"), QStringLiteral("search.html#files")},
            {QStringLiteral("CGotoDialog"), QStringLiteral("search.html#goto")},
            {QStringLiteral("CFileDialogEx"), QStringLiteral("file.html#open")},
            {QStringLiteral("CViewAsManagerDialog"), QStringLiteral("view.html#viewas")},
            {QStringLiteral("CHexFindDialog"), QStringLiteral("hex.html#hex")},
            {QStringLiteral("CHexGotoDialog"), QStringLiteral("hex.html#hex")},
            {QStringLiteral("QPrintDialog"), QStringLiteral("printing.html#print")},
            {QStringLiteral("QPrintPreviewDialog"), QStringLiteral("printing.html#preview")},
            {QStringLiteral("QPageSetupDialog"), QStringLiteral("printing.html#setup")},
            {QStringLiteral("CPropertiesSheet"), QStringLiteral("properties.html")},
        };
        for (const QMetaObject* meta = window->metaObject(); meta; meta = meta->superClass()) {
            const auto it = byClass.constFind(QString::fromLatin1(meta->className()));
            if (it != byClass.cend())
                return *it;
        }
    }
    // In the main window: the editor's commands for a text window, else the contents.
    for (const QWidget* widget = focus; widget; widget = widget->parentWidget()) {
        const QString name = QString::fromLatin1(widget->metaObject()->className());
        if (name == QLatin1String("CScrivelView") || name == QLatin1String("CMFCScintilla"))
            return QStringLiteral("edit.html");
        if (name.startsWith(QLatin1String("CHex")))
            return QStringLiteral("hex.html");
    }
    return QStringLiteral("index.html");
}

} // namespace HelpLocator
