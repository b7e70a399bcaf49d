#pragma once

#include "search/CFindResultsPage.h"

#include <QObject>
#include <QPointer>

class CFindInFilesRunner;
class IShell;

// Find in Files: command 9000 with its dialog, the Find Results page it fills, and the
// way from a result back to its file, line and column.
class CFindInFilesCommands : public QObject
{
    Q_OBJECT
public:
    explicit CFindInFilesCommands(IShell& shell);

    CFindResultsPage* ResultsPage() const { return m_page; }
    CFindInFilesRunner* Runner() const { return m_runner; }

    void OnFindInFiles();
    // Opens `path` (or brings it forward when it is open) and puts the caret on the
    // line (from 1) and column.
    void OpenLocation(const QString& path, int line, int column);

    static CFindInFilesCommands* Of(IShell& shell);

private:
    IShell& m_shell;
    QPointer<CFindResultsPage> m_page;
    CFindInFilesRunner* m_runner = nullptr;
};
