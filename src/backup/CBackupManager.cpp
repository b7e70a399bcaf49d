#include "backup/CBackupManager.h"

#include "backup/CBackupHistoryDlg.h"
#include "backup/CBackupStore.h"
#include "backup/CPageVersion.h"
#include "compare/CCompareCommands.h"
#include "compare/CompareSource.h"
#include "framework/CChildFrame.h"
#include "framework/CDocument.h"
#include "framework/CommandIds.h"
#include "settings/AppPaths.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QsciScintillaBase* TextControl(CDocument* document)
{
    for (CChildFrame* frame : document->GetFrames()) {
        if (auto* control = frame->findChild<QsciScintillaBase*>())
            return control;
    }
    return nullptr;
}

} // namespace

CBackupManager::CBackupManager(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
{
    setObjectName(QStringLiteral("BackupManager"));
    connect(&shell.Events(), &CShellEvents::documentCreated, this, &CBackupManager::Watch);
    connect(&shell.Events(), &CShellEvents::firstIdle, this, [this] {
        // The default root is ours to make; a root the user chose is made when applied.
        const MainFrameSettings& settings = m_shell.Settings();
        if (settings.Enabled && QDir::cleanPath(settings.BackupFolder) == QDir::cleanPath(AppPaths::DefaultBackupFolder()))
            QDir().mkpath(settings.BackupFolder);
    });
    Register();
}

CBackupManager::~CBackupManager() = default;

CBackupManager* CBackupManager::Find(IShell& shell)
{
    return shell.Window() ? shell.Window()->findChild<CBackupManager*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

void CBackupManager::Watch(CDocument* document)
{
    if (!document || Store(document) || document->inherits("CHexDocument"))
        return;
    if (document->inherits("CCompareDoc")) {
        // A compare tab saves either side in place: each such save keeps a version too.
        connect(document, &CDocument::aboutToSave, this, &CBackupManager::OnSideAboutToSave,
                Qt::UniqueConnection);
        return;
    }
    auto store = std::make_shared<CBackupStore>(m_shell.Settings());
    store->SetFailureHandler([this](const QString& message) { ShowFailure(message); });
    m_stores.append({document, store});
    connect(document, &CDocument::aboutToSave, this, &CBackupManager::OnAboutToSave);
    connect(document, &CDocument::loaded, this, &CBackupManager::OnLoaded);
    connect(document, &CDocument::closing, this, &CBackupManager::OnClosing);
    connect(document, &QObject::destroyed, this, [this](QObject* gone) {
        for (qsizetype i = m_stores.size(); i-- > 0;) {
            if (!m_stores[i].first || m_stores[i].first == gone)
                m_stores.removeAt(i);
        }
    });
    // A document that has a file already (opened before we watched) attaches now.
    if (!document->GetPathName().isEmpty() && QFileInfo::exists(document->GetPathName()))
        store->Attach(document->GetPathName());
}

CBackupStore* CBackupManager::Store(CDocument* document) const
{
    for (const auto& [doc, store] : m_stores) {
        if (doc == document)
            return store.get();
    }
    return nullptr;
}

QList<CBackupStore*> CBackupManager::Stores() const
{
    QList<CBackupStore*> stores;
    for (const auto& entry : m_stores) {
        if (entry.first)
            stores << entry.second.get();
    }
    return stores;
}

void CBackupManager::OnAboutToSave(const QString& path)
{
    auto* document = qobject_cast<CDocument*>(sender());
    CBackupStore* store = Store(document);
    if (!store)
        return;
    // A save under the same name puts the old file aside; any other save only attaches.
    if (!document->GetPathName().isEmpty() && QFileInfo(path) == QFileInfo(document->GetPathName()) && store->IsActive())
        store->SaveVersion();
    else
        store->Attach(path);
    m_shell.RequestCommandUpdate();
}

void CBackupManager::OnSideAboutToSave(const QString& path)
{
    if (path.isEmpty() || !QFileInfo::exists(path))
        return;
    CBackupStore store(m_shell.Settings());
    store.SetFailureHandler([this](const QString& message) { ShowFailure(message); });
    store.Attach(path);
    if (store.IsActive())
        store.SaveVersion();
    // An editor of the same file lists the new version too.
    for (const auto& [doc, editorStore] : m_stores) {
        if (doc && editorStore->IsActive() && QFileInfo(editorStore->GetSourcePath()) == QFileInfo(path))
            editorStore->Attach(path);
    }
    m_shell.RequestCommandUpdate();
}

void CBackupManager::OnLoaded(const QString& path)
{
    if (CBackupStore* store = Store(qobject_cast<CDocument*>(sender())))
        store->Attach(path);
    m_shell.RequestCommandUpdate();
}

void CBackupManager::OnClosing()
{
    if (CBackupStore* store = Store(qobject_cast<CDocument*>(sender())))
        store->OnDocumentClose();
}

void CBackupManager::ShowFailure(const QString& message)
{
    QMessageBox box(QMessageBox::NoIcon, QApplication::applicationDisplayName(), message, QMessageBox::Ok,
                    m_shell.Window());
    box.exec();
}

void CBackupManager::ApplySettingsToAll()
{
    for (CBackupStore* store : Stores())
        store->ApplySettings();
    m_shell.RequestCommandUpdate();
}

void CBackupManager::DeleteAllVersions()
{
    for (CBackupStore* store : Stores())
        store->Reset();
    CBackupStore(m_shell.Settings()).DeleteAll();
    m_shell.RequestCommandUpdate();
}

void CBackupManager::Register()
{
    CCommandRegistry& commands = m_shell.Commands();
    CommandInfo cmd;
    cmd.id = Cmd::DocumentHistory;
    cmd.text = tr("View Documen&t History");
    cmd.category = QStringLiteral("File");
    cmd.iconName = QStringLiteral("document-open-recent");
    cmd.run = [this] { ShowHistory(); };
    cmd.update = [this](CCmdUI& ui) {
        const CBackupStore* store = Store(m_shell.ActiveDocument());
        ui.enabled = store && store->IsActive() && store->GetCount() > 0;
    };
    commands.Register(cmd);

    cmd = {};
    cmd.id = Cmd::BackupManager;
    cmd.text = tr("&Backup Manager...");
    cmd.category = QStringLiteral("File");
    cmd.run = [this] { ShowBackupManager(); };
    commands.Register(cmd);

    m_shell.Menus().AddCommand(MenuId::File, MenuGroup::FileVersions, Cmd::DocumentHistory);
    m_shell.Menus().AddCommand(MenuId::File, MenuGroup::FileVersions, Cmd::BackupManager);
    m_shell.AddPropertyPage(40, [this](QWidget* parent) -> IPropertyPage* {
        return new CPageVersion(*this, m_shell.Settings(), parent);
    });
}

void CBackupManager::ShowHistory()
{
    CDocument* document = m_shell.ActiveDocument();
    CBackupStore* store = Store(document);
    if (!store || !store->IsActive() || store->GetCount() == 0)
        return;
    QsciScintillaBase* control = TextControl(document);
    CBackupHistoryDlg dialog(*store, m_shell.Window());
    dialog.SetRestoreAllowed(control && !control->SendScintilla(QsciScintillaBase::SCI_GETREADONLY));
    const int result = dialog.exec();
    if (result == CBackupHistoryDlg::RestoreResult) {
        Restore(document, store->GetEntry(int(dialog.GetFirst())).m_path);
        return;
    }
    if (result != QDialog::Accepted || dialog.GetFirst() == dialog.GetSecond())
        return;
    auto pathOf = [store](quint32 data) {
        return data == CBackupHistoryDlg::CurrentRow ? store->GetSourcePath() : store->GetEntry(int(data)).m_path;
    };
    const QString first = pathOf(dialog.GetFirst());
    const QString second = pathOf(dialog.GetSecond());
    if (first.isEmpty() || second.isEmpty() || !QFileInfo::exists(first) || !QFileInfo::exists(second))
        return;
    OpenCompare(m_shell, first, second);
}

bool CBackupManager::Restore(CDocument* document, const QString& versionPath)
{
    QsciScintillaBase* control = document ? TextControl(document) : nullptr;
    if (!control || control->SendScintilla(QsciScintillaBase::SCI_GETREADONLY))
        return false;
    const CompareSource version = CompareSource::Read(versionPath);
    if (!version.ok() || version.binary)
        return false;
    control->SendScintilla(QsciScintillaBase::SCI_BEGINUNDOACTION);
    control->SendScintilla(QsciScintillaBase::SCI_SETTARGETSTART, 0UL);
    control->SendScintilla(QsciScintillaBase::SCI_SETTARGETEND,
                           static_cast<unsigned long>(control->SendScintilla(QsciScintillaBase::SCI_GETLENGTH)));
    control->SendScintilla(QsciScintillaBase::SCI_REPLACETARGET, static_cast<unsigned long>(version.text.size()),
                           version.text.constData());
    control->SendScintilla(QsciScintillaBase::SCI_ENDUNDOACTION);
    return true;
}

void CBackupManager::ShowBackupManager()
{
    // The page on its own until the properties sheet hosts it.
    QDialog dialog(m_shell.Window());
    dialog.setWindowTitle(tr("Backup Manager"));
    auto* layout = new QVBoxLayout(&dialog);
    auto* page = new CPageVersion(*this, m_shell.Settings(), &dialog);
    layout->addWidget(page->Widget());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, &dialog);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, [&] {
        page->Apply();
        dialog.accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, &dialog, [page] { page->Apply(); });
    dialog.exec();
}

void InstallVersions(IShell& shell)
{
    if (!CBackupManager::Find(shell))
        new CBackupManager(shell);
}
