#pragma once

#include "editor/CScrivelView.h"

#include "settings/NavigationHistory.h"

#include <QList>
#include <QObject>
#include <QPointer>

class CChildFrame;
class CScrivelFrame;
class CSyntaxParserList;
class IShell;
class QAction;
class QFont;
class QMenu;
struct MainFrameSettings;
struct ViewSettings;

// The text editor's part of the program: its commands (editing, the display toggles,
// the font, Goto, bookmarks, Back and Forward), the context menu, and what every text
// view shares. Each new text view is handed this object as its host.
class CEditorCommands : public QObject
{
    Q_OBJECT
public:
    CEditorCommands(IShell& shell, const CSyntaxParserList& parsers);
    ~CEditorCommands() override;

    // The object InstallEditor made for this shell, or null.
    static CEditorCommands* Of(IShell& shell);

    IShell& Shell() const { return m_shell; }
    // The display settings every view works by.
    const ViewSettings& View() const;
    const MainFrameSettings& FrameSettings() const;
    NavigationHistory& Navigation() { return m_navigation; }
    const CSyntaxParserList& Parsers() const { return m_parsers; }

    // The views of every text frame; other kinds of child are left out.
    QList<CScrivelView*> TextViews() const;
    // The active child when it is a text frame, else null.
    CScrivelFrame* ActiveTextFrame() const;
    // The view that last had the keyboard focus.
    CScrivelView* ActiveView() const { return m_activeView; }
    void SetActiveView(CScrivelView* view) { m_activeView = view; }

    // Flips one display setting and shows the change in every text view.
    void ToggleViewSetting(int id);
    // Takes face (at most 31 characters), weight, slant and size of `font` into the view
    // settings and gives them to every text view.
    void ApplyFont(const QFont& font);
    void Navigate(bool forward);
    void Goto();

    // A new context menu of the shared actions for `view`; the caller owns it.
    QMenu* CreateContextMenu();

private:
    void RegisterCommands();
    void AttachFrame(CChildFrame* frame);
    void OnViewFont();

    IShell& m_shell;
    const CSyntaxParserList& m_parsers;
    NavigationHistory m_navigation;
    QPointer<CScrivelView> m_activeView;
    // "Delete" in the context menu carries the template command's id under its own text.
    QAction* m_contextDelete = nullptr;
};

// Registers the editor's commands and menus and hands every new text view its host.
CEditorCommands* InstallEditor(IShell& shell, const CSyntaxParserList& parsers);
