#pragma once

#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <memory>

class CBackupStore;
class CDocument;
class IShell;

// Keeps a backup store for every open text document and drives it from the document's
// signals: a load attaches, a save puts the old file aside before the write, a close
// carries out "delete on exit". Hex and compare documents have no versions.
class CBackupManager : public QObject
{
    Q_OBJECT
public:
    explicit CBackupManager(IShell& shell);
    ~CBackupManager() override;

    static CBackupManager* Find(IShell& shell);

    // Starts watching a document; documents of other kinds are left alone.
    void Watch(CDocument* document);
    CBackupStore* Store(CDocument* document) const;
    // The stores of the open documents, in the order the documents were made.
    QList<CBackupStore*> Stores() const;

    // The Backup Manager's "Delete Files...": every store detaches, then all goes.
    void DeleteAllVersions();
    void ApplySettingsToAll();

    void ShowHistory();
    void ShowBackupManager();
    // Replaces the document's text with a version, as one undoable step.
    bool Restore(CDocument* document, const QString& versionPath);

private Q_SLOTS:
    void OnSideAboutToSave(const QString& path);
    void OnAboutToSave(const QString& path);
    void OnLoaded(const QString& path);
    void OnClosing();

private:
    void Register();
    void ShowFailure(const QString& message);

    IShell& m_shell;
    QList<QPair<QPointer<CDocument>, std::shared_ptr<CBackupStore>>> m_stores;
};

// Installs the backup store's hooks, "View Document History" and the Backup Manager.
void InstallVersions(IShell& shell);
