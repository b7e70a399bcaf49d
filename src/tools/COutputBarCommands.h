#pragma once

#include "tools/COutputBar.h"

#include <QDockWidget>
#include <QObject>
#include <QPointer>

class CToolResultsPage;
class IShell;

// The Output bar in the window: a dock at the bottom holding every page the shell was
// given, and the command that shows and hides it.
class COutputBarCommands : public QObject
{
    Q_OBJECT
public:
    explicit COutputBarCommands(IShell& shell);

    COutputBar* Bar() const { return m_bar; }
    QDockWidget* Dock() const { return m_dock; }
    CToolResultsPage* ToolResults() const { return m_toolResults; }

    static COutputBarCommands* Of(IShell& shell);

private:
    IShell& m_shell;
    QPointer<COutputBar> m_bar;
    QPointer<QDockWidget> m_dock;
    CToolResultsPage* m_toolResults = nullptr;
};

// Docks the Output bar, hidden, and registers View > Output Bar.
COutputBarCommands* InstallOutputBar(IShell& shell);
