#pragma once

#include "usertools/CToolRunner.h"
#include "usertools/ToolCommandLine.h"
#include "usertools/UserTool.h"

#include <QObject>
#include <QPointer>

class CScrivelDoc;
class CToolOutputPage;
class IShell;
struct OutputLink;

// The user's tools as commands of the Tools menu, and their runs: output to the "Tool
// Results" page, into a new document, or a plain launch. One tool runs at a time.
class CUserToolsManager : public QObject
{
    Q_OBJECT
public:
    explicit CUserToolsManager(IShell& shell, QObject* parent = nullptr);
    ~CUserToolsManager() override;

    const QList<UserTool>& Tools() const { return m_tools; }
    // Takes a new list: commands 53000 onwards follow it, and it is stored at once.
    void SetTools(const QList<UserTool>& tools);

    // Runs the tool at `index`; asks first when another is still running.
    void Run(int index);
    void Stop();
    bool IsRunning() const { return m_runner.IsRunning(); }

    // What the variables stand for now, from the active document.
    ToolContext CurrentContext() const;
    CToolOutputPage* Page() const { return m_page; }
    CToolRunner& Runner() { return m_runner; }
    // Opens the file a line of output names, at its line and column.
    void OpenLink(const OutputLink& link);

Q_SIGNALS:
    void toolsChanged();

private:
    void RegisterToolCommands();
    void StartRun(int index);
    void WriteToDocument(const QStringList& lines);

    IShell& m_shell;
    QList<UserTool> m_tools;
    int m_registeredCount = 0;
    CToolRunner m_runner;
    CToolOutputPage* m_page;
    QPointer<CScrivelDoc> m_targetDocument; // output of a kind 1 run
    bool m_toDocument = false;              // the run writes into m_targetDocument
    int m_pendingTool = -1; // waits for the running tool to stop
};
