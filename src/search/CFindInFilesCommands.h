#pragma once

#include <QObject>
#include <QPointer>

class CFindInFilesRunner;
class CMainFrame;
#include "tools/COutputBar.h"

// Find in Files for the main window: the Output bar docked at the bottom, command 9000
// with its dialog, command 59590 that shows and hides the bar, and the way from a
// result back to its file, line and column.
class CFindInFilesCommands : public QObject
{
    Q_OBJECT
public:
    explicit CFindInFilesCommands(CMainFrame* frame);

    // Docks the bar and registers the commands; returns the object, a child of the frame.
    static CFindInFilesCommands* Install(CMainFrame* frame);

    COutputBar* OutputBar() const { return m_bar; }
    CFindInFilesRunner* Runner() const { return m_runner; }

    void OnFindInFiles();
    // Opens `path` (or brings it forward when it is open) and puts the caret on the
    // line (from 1) and column.
    void OpenLocation(const QString& path, int line, int column);

private:
    CMainFrame* m_frame;
    QPointer<COutputBar> m_bar;
    CFindInFilesRunner* m_runner = nullptr;
};
