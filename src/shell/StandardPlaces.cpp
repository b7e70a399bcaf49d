#include "StandardPlaces.h"

#include "shell/CMenuPlaces.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

namespace {
QString Tr(const char* text)
{
    return QCoreApplication::translate("MainMenu", text);
}
} // namespace

void DeclareStandardPlaces(CMenuPlaces& places)
{
    using namespace MenuGroup;
    places.DeclareMenu(MenuId::File, Tr("&File"),
                       {FileNew, FileOpen, FileSave, FileWorkspace, FileVersions, FilePrint,
                        FileRecent, FileExit});
    // "New" leads the Open group: no line between it and "Open...".
    places.DeclareMenu(MenuId::FileNew, Tr("&New"), {Default}, MenuId::File, FileOpen);
    places.DeclareMenu(MenuId::FileRecent, Tr("Recent F&iles"), {Default}, MenuId::File, FileRecent);

    places.DeclareMenu(MenuId::Edit, Tr("&Edit"),
                       {EditUndo, EditClipboard, EditSelect, EditSubMenus, EditLines, EditOther});
    places.DeclareMenu(MenuId::EditInsert, Tr("&Insert"), {Default}, MenuId::Edit, EditSubMenus);
    places.DeclareMenu(MenuId::EditLines, Tr("&Lines"), {LinesEdit, LinesMove}, MenuId::Edit,
                       EditSubMenus);
    places.DeclareMenu(MenuId::EditFormat, Tr("F&ormat"),
                       {FormatCase, FormatIndent, FormatComment, FormatSpaces}, MenuId::Edit,
                       EditSubMenus);

    places.DeclareMenu(MenuId::Search, Tr("&Search"),
                       {SearchFind, SearchFiles, SearchGoto, SearchBookmarks, SearchNavigate});
    places.DeclareMenu(MenuId::View, Tr("&View"),
                       {ViewAs, ViewToggles, ViewZoom, ViewFont, ViewBars, ViewCompare});
    places.DeclareMenu(MenuId::ViewAs, Tr("View &As"), {Default}, MenuId::View, ViewAs);
    // Tools shows once a subsystem puts something in it.
    places.DeclareMenu(MenuId::Tools, Tr("&Tools"),
                       {ToolsUser, ToolsRun, ToolsCustomise, ToolsOptions})
        ->menuAction()
        ->setVisible(false);
    places.DeclareMenu(MenuId::Window, Tr("&Window"), {WindowNew, WindowTabs, WindowList});
    places.DeclareMenu(MenuId::Help, Tr("&Help"), {HelpContents, HelpAbout});

    places.DeclareContextMenu(MenuId::EditorContext,
                              {ContextUndo, ContextClipboard, ContextAppend, ContextCase,
                               ContextInsert, ContextSelect, ContextTemplate});
    places.DeclareContextMenu(MenuId::TabContext, {Default});

    // A submenu shows once something is put in it.
    for (const char* submenu : {MenuId::FileNew, MenuId::FileRecent, MenuId::EditInsert,
                                MenuId::EditLines, MenuId::EditFormat, MenuId::ViewAs})
        places.Menu(QString::fromLatin1(submenu))->menuAction()->setVisible(false);

    places.DeclareToolBar(ToolBarId::Standard, Tr("Standard Buttons"),
                          {ToolBarGroup::File, ToolBarGroup::Clipboard, ToolBarGroup::Undo,
                           ToolBarGroup::Print, ToolBarGroup::Find, ToolBarGroup::Goto,
                           ToolBarGroup::Navigate, ToolBarGroup::View});
}
