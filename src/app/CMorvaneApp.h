#pragma once

#include "CMainFrame.h"
#include "framework/OpenOptions.h"
#include "settings/RecentFileList.h"

#include <QApplication>
#include <QPointer>

class CChildFrame;
class CDocTemplate;
class CDocument;
class FileHandOff;

// The application object: document templates, the pending open request, the recent
// files, and the one routine through which every file of the program is opened.
class CMorvaneApp : public QApplication
{
    Q_OBJECT
public:
    CMorvaneApp(int& argc, char** argv);
    ~CMorvaneApp() override;

    static CMorvaneApp* Instance();
    // The main frame of the running application, for the application's own start-up
    // and tests; subsystems are handed the shell instead.
    static CMainFrame* MainFrame();

    // Start-up: settings, templates, main frame, files from the command line and from
    // other processes. False when the program can't start.
    bool InitInstance(const QStringList& files);
    void ExitInstance();
    // Releases the main frame, the documents and the templates; InitInstance may run
    // again afterwards.
    void Shutdown();

    // The open of a single path with options reset to "detect".
    CDocument* OpenDocumentFile(const QString& path);
    // The common open routine: activates an open document, or probes the file and opens
    // it in the text or the hex view as `m_openOptions` and the probe decide.
    CDocument* RouteOpenFile(const QString& path);
    CDocument* OpenAsHex(const QString& path);
    CDocument* OpenDetected(const QString& path);
    // A new empty text document.
    CDocument* NewDocument();

    bool HasPendingFiles() const;
    void OpenPendingFiles();
    void CheckPendingFiles();

    OpenOptions& GetOpenOptions() { return m_openOptions; }
    void SetOpenMode(int mode) { m_openOptions.mode = mode; }
    int GetOpenMode() const { return m_openOptions.mode; }
    QPair<int, int> GetOpenEncoding() const { return {m_openOptions.encoding, m_openOptions.bomLength}; }
    bool GetOpenReadOnly() const { return m_openOptions.readOnly; }
    // The mode the last route chose (0 text, 1 hex): what tests and the status need.
    int LastRouteMode() const { return m_lastRouteMode; }

    CDocTemplate* GetTextTemplate() const { return m_pTextTemplate; }
    CDocTemplate* GetHexTemplate() const { return m_pHexTemplate; }
    RecentFileList& GetRecentFiles() { return m_recentFiles; }

    CMainFrame* GetMainFrame() const { return m_pMainFrame; }

    // Commands of the application.
    void OnFileNew();
    void OnFileOpen();
    void OnFileSaveAll();
    void OnAppAbout();

Q_SIGNALS:
    void recentFilesChanged();

private:
    void AddToRecentFiles(const QString& path);
    void WriteInstallPath();
    void WatchDocuments(CDocTemplate* docTemplate);

    QPointer<CMainFrame> m_pMainFrame;
    CDocTemplate* m_pTextTemplate = nullptr;
    CDocTemplate* m_pHexTemplate = nullptr;
    OpenOptions m_openOptions;
    RecentFileList m_recentFiles{4};
    FileHandOff* m_handOff = nullptr;
    int m_lastRouteMode = -1;
};
