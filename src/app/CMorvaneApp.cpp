#include "CMorvaneApp.h"

#include "CommandIcons.h"

#include "settings/AppPaths.h"
#include "framework/CDocTemplate.h"
#include "framework/CChildFrame.h"
#include "framework/CDocument.h"
#include "CMainFrame.h"
#include "settings/CRegistryStore.h"
#include "FileHandOff.h"
#include "editor/CFileDialogEx.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/TextFileDetector.h"
#include "explorer/ExplorerInstall.h"
#include "hex/HexTemplate.h"
#include "compare/CCompareCommands.h"
#include "compare/CompareArguments.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMessageBox>
#include <QWindow>

CMorvaneApp::CMorvaneApp(int& argc, char** argv)
    : QApplication(argc, argv)
{
    setOrganizationName(QStringLiteral("Brackwyn"));
    setApplicationName(QStringLiteral("Morvane"));
    setApplicationDisplayName(QStringLiteral("Morvane"));
    setApplicationVersion(QStringLiteral(MORVANE_VERSION));
}

CMorvaneApp::~CMorvaneApp()
{
    Shutdown();
}

void CMorvaneApp::Shutdown()
{
    if (m_pMainFrame) {
        // Documents go without a question: whoever shuts down has asked already.
        const auto frames = m_pMainFrame->ChildFrames();
        for (CChildFrame* frame : frames) {
            if (CDocument* document = frame->GetDocument())
                document->SetModifiedFlag(false);
        }
        m_pMainFrame->MdiArea()->closeAllSubWindows();
        delete m_pMainFrame;
    }
    delete m_pTextTemplate;
    m_pTextTemplate = nullptr;
    delete m_pHexTemplate;
    m_pHexTemplate = nullptr;
    delete m_handOff;
    m_handOff = nullptr;
    m_openOptions = OpenOptions::defaults();
}

CMorvaneApp* CMorvaneApp::Instance()
{
    return qobject_cast<CMorvaneApp*>(QCoreApplication::instance());
}

CMainFrame* CMorvaneApp::MainFrame()
{
    CMorvaneApp* app = Instance();
    return app ? app->m_pMainFrame.data() : nullptr;
}

void CMorvaneApp::WriteInstallPath()
{
    // Other programs find us here; a store that refuses the write is no reason to stop.
    CRegistryStore(CRegistryStore::LocalMachine)
        .WriteProfileString(QString(), QStringLiteral("MorvanePath"),
                            QDir::toNativeSeparators(applicationFilePath()));
}

void CMorvaneApp::WatchDocuments(CDocTemplate* docTemplate)
{
    docTemplate->SetOpenOptions(&m_openOptions);
    connect(docTemplate, &CDocTemplate::documentOpened, this, [this](CDocument* document) {
        if (!document->GetPathName().isEmpty())
            AddToRecentFiles(document->GetPathName());
        connect(document, &CDocument::pathNameChanged, this,
                [this](const QString& path, bool addToRecent) {
                    if (addToRecent)
                        AddToRecentFiles(path);
                });
    });
}

bool CMorvaneApp::InitInstance(const QStringList& files)
{
    m_recentFiles.Load();
    WriteInstallPath();

    // Syntax definitions and templates start from what we ship.
    const QString configPath = CRegistryStore().GetProfileString(QStringLiteral("Settings"),
                                                                 QStringLiteral("ConfigPath"));
    if (configPath.isEmpty())
        AppPaths::FillFromShipped(AppPaths::DefaultSyntaxFolder(), QStringLiteral("syntax"));
    const QString templates = CRegistryStore().GetProfileString(QStringLiteral("TemplateSettings"),
                                                                QStringLiteral("Directory"));
    if (templates.isEmpty())
        AppPaths::FillFromShipped(AppPaths::DefaultTemplatesFolder(), QStringLiteral("templates"));

    m_pTextTemplate = new CDocTemplate(
        tr("Untitled"), [] { return new CScrivelDoc(); },
        [](CDocument* document) { return new CScrivelFrame(static_cast<CScrivelDoc*>(document)); },
        this);
    WatchDocuments(m_pTextTemplate);
    m_pHexTemplate = CreateHexTemplate(this);
    WatchDocuments(m_pHexTemplate);

    CommandIcons::UseDesktopTheme();
    m_pMainFrame = new CMainFrame(this);
    if (!m_pMainFrame->Create())
        return false;
    for (CDocTemplate* docTemplate : {m_pTextTemplate, m_pHexTemplate}) {
        if (!docTemplate)
            continue;
        connect(docTemplate, &CDocTemplate::documentCreated, m_pMainFrame, &CMainFrame::OnDocumentCreated);
        connect(docTemplate, &CDocTemplate::frameCreated, m_pMainFrame, &CMainFrame::OnFrameCreated);
        docTemplate->SetMdiArea(m_pMainFrame->MdiArea());
        docTemplate->SetProgressSink(m_pMainFrame);
    }

    m_handOff = new FileHandOff(this);
    connect(m_handOff, &FileHandOff::filesPending, this, &CMorvaneApp::CheckPendingFiles);
    m_handOff->Listen();

    // The window shows before the files load, so that a long load's progress and Cancel
    // are seen; what waits for the first idle moment (offers of recovery among them)
    // waits for the files too.
    m_pMainFrame->ShowMainWindow(false);
    if (!files.isEmpty()) {
        // On screen and painted before a long load holds the event loop.
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 500 && m_pMainFrame->windowHandle()
               && !m_pMainFrame->windowHandle()->isExposed())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::processEvents();
    }
    bool opened = false;
    // "--compare LEFT RIGHT" (or "-d"), as git difftool passes it, opens a compare tab.
    QStringList paths = files;
    const CompareArguments compare = CompareArguments::Take(paths);
    if (!compare.IsEmpty() && OpenCompare(*m_pMainFrame, compare.left, compare.right))
        opened = true;
    for (const QString& file : paths) {
        if (!QFileInfo::exists(file)) {
            // A name that isn't there yet is a new file to be written on the first save.
            if (CDocument* document = NewDocument()) {
                document->SetPathName(QFileInfo(file).absoluteFilePath(), false);
                opened = true;
            }
            continue;
        }
        if (OpenDocumentFile(file) || m_pMainFrame->ActivateOpenDocument(file))
            opened = true;
    }
    if (HasPendingFiles()) {
        OpenPendingFiles();
        opened = opened || !m_pMainFrame->MdiArea()->subWindowList().isEmpty();
    }
    if (!opened && m_pMainFrame->MdiArea()->subWindowList().isEmpty())
        NewDocument();

    m_pMainFrame->AnnounceFirstIdle();
    return true;
}

void CMorvaneApp::ExitInstance()
{
    m_recentFiles.Save();
}

CDocument* CMorvaneApp::NewDocument()
{
    return m_pTextTemplate ? m_pTextTemplate->OpenDocumentFile(QString()) : nullptr;
}

CDocument* CMorvaneApp::OpenDocumentFile(const QString& path)
{
    m_openOptions = OpenOptions::defaults();
    return RouteOpenFile(path);
}

CDocument* CMorvaneApp::RouteOpenFile(const QString& path)
{
    if (m_openOptions.mode == OpenOptions::Compare)
        return nullptr; // the compare view arrives with its own work
    if (path.isEmpty())
        return NewDocument();
    if (m_pMainFrame && m_pMainFrame->ActivateOpenDocument(path))
        return nullptr;
    // A workspace file opens as the workspace, not as a document.
    if (m_pMainFrame && OpenWorkspaceIfProjectFile(*m_pMainFrame, path))
        return nullptr;

    TextFileDetector probe;
    if (probe.Examine(path) && m_openOptions.encoding == TextEncoding::Auto) {
        m_openOptions.encoding = probe.Encoding();
        m_openOptions.bomLength = probe.BomLength();
    }
    if (m_openOptions.mode == OpenOptions::Detect)
        m_openOptions.mode = probe.IsBinary() ? OpenOptions::Hex : OpenOptions::Text;
    m_lastRouteMode = m_openOptions.mode;

    const QString full = QFileInfo(path).absoluteFilePath();
    if (m_openOptions.mode == OpenOptions::Hex && m_pHexTemplate)
        return m_pHexTemplate->OpenDocumentFile(full);
    return m_pTextTemplate ? m_pTextTemplate->OpenDocumentFile(full) : nullptr;
}

CDocument* CMorvaneApp::OpenAsHex(const QString& path)
{
    m_openOptions.mode = OpenOptions::Hex;
    return RouteOpenFile(path);
}

CDocument* CMorvaneApp::OpenDetected(const QString& path)
{
    m_openOptions = OpenOptions::defaults();
    const QFileInfo info(path);
    m_openOptions.readOnly = info.exists() && !info.isWritable();
    CDocument* document = RouteOpenFile(path);
    return document;
}

bool CMorvaneApp::HasPendingFiles() const
{
    return FileHandOff::HasPending();
}

void CMorvaneApp::OpenPendingFiles()
{
    const QStringList paths = FileHandOff::PendingPaths();
    // The list goes first, so that a file that fails to open isn't offered again.
    FileHandOff::ClearPending();
    for (const QString& path : paths) {
        m_openOptions = OpenOptions::defaults();
        RouteOpenFile(path);
    }
}

void CMorvaneApp::CheckPendingFiles()
{
    if (HasPendingFiles())
        OpenPendingFiles();
}

void CMorvaneApp::AddToRecentFiles(const QString& path)
{
    m_recentFiles.Add(path);
    m_recentFiles.Save();
    Q_EMIT recentFilesChanged();
}

void CMorvaneApp::OnFileNew()
{
    NewDocument();
}

void CMorvaneApp::OnFileOpen()
{
    // Start beside the active document, else where the user last was.
    QString activePath;
    if (CChildFrame* active = m_pMainFrame ? m_pMainFrame->ActiveChild() : nullptr; active && active->GetDocument())
        activePath = active->GetDocument()->GetPathName();
    CFileDialogEx dialog(true, QString(), m_pMainFrame, CFileDialogEx::FolderOf(activePath));
    if (dialog.DoModal() != QDialog::Accepted)
        return;
    OpenOptions options;
    options.encoding = dialog.GetEncoding();
    options.bomLength = TextEncoding::MarkLength(options.encoding);
    options.mode = dialog.GetViewAs();
    options.readOnly = dialog.GetReadOnly();
    const QStringList paths = dialog.GetPathNames();
    for (const QString& path : paths) {
        m_openOptions = options;
        RouteOpenFile(path);
    }
}

void CMorvaneApp::OnFileSaveAll()
{
    // Text documents only: hex and compare documents are saved on their own.
    if (m_pTextTemplate)
        m_pTextTemplate->SaveAllModified();
}

void CMorvaneApp::OnAppAbout()
{
    QMessageBox::about(m_pMainFrame, tr("About Morvane"),
                       tr("<h3>Morvane %1</h3><p>A programmer's text editor.</p>"
                          "<p>Qt %2, QScintilla.</p>")
                           .arg(applicationVersion(), QString::fromLatin1(qVersion())));
}
