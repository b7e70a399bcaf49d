#pragma once

#include <QObject>
#include <QString>

class CChildFrame;
class CDocument;
class IExplorerPage;
class IOutputPage;

// What the main window announces to the subsystems. Subsystems connect here instead of
// reaching for the window; the window emits these in the order their comments give.
class CShellEvents : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    // A child frame was made and shows its document (text, hex, compare ...).
    void frameCreated(CChildFrame* frame);
    // A document was made, before its file is read: subsystems that listen to its load
    // and save signals connect here.
    void documentCreated(CDocument* document);
    // The active child changed; null when the last one closed.
    void activeChildChanged(CChildFrame* frame);
    // The window is on screen and the event loop idle for the first time: work that can
    // wait (filling a tree, reading a store) starts here, not before the window shows.
    void firstIdle();
    // The close order: modeless windows are gone, then `closing`, then `saveSettings`
    // (each subsystem writes its own section), then the documents are asked about their
    // unsaved changes. A Cancel there stops the close after these have run.
    void closing();
    void saveSettings();
    // Every document has been saved or let go; the program is about to end.
    void aboutToQuit();

    // The properties sheet changed settings in IShell::Settings(): whoever shows them
    // (check marks, toolbar images) refreshes. The sheet itself re-applies the views.
    void viewSettingsChanged();
    // Syntax definition files were rewritten on disk: the holder of the parser list
    // reloads it, so that later choices (View As) see the new colours.
    void syntaxDefinitionsChanged();

    // Pages announced by the subsystems that own them, for the bars that host them.
    void outputPageAdded(IOutputPage* page);
    void showOutputPage(IOutputPage* page);
    void explorerPageAdded(IExplorerPage* page);
    void showExplorerPage(IExplorerPage* page);
};
