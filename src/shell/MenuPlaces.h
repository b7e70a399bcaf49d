#pragma once

// Named places in the menus and toolbars. A subsystem puts its commands into a group
// of a menu; groups keep their declared order and are separated by a line.
namespace MenuId {
inline constexpr char File[] = "File";
inline constexpr char FileNew[] = "File.New";
inline constexpr char FileRecent[] = "File.Recent";
inline constexpr char Edit[] = "Edit";
inline constexpr char EditInsert[] = "Edit.Insert";
inline constexpr char EditLines[] = "Edit.Lines";
inline constexpr char EditFormat[] = "Edit.Format";
inline constexpr char Search[] = "Search";
inline constexpr char View[] = "View";
inline constexpr char ViewAs[] = "View.ViewAs";
inline constexpr char Tools[] = "Tools";
inline constexpr char Window[] = "Window";
inline constexpr char Help[] = "Help";
// Context menus that others add to.
inline constexpr char EditorContext[] = "Context.Editor";
inline constexpr char TabContext[] = "Context.Tab";
} // namespace MenuId

namespace MenuGroup {
// File
inline constexpr char FileNew[] = "New";
inline constexpr char FileOpen[] = "Open";
inline constexpr char FileSave[] = "Save";
inline constexpr char FileWorkspace[] = "Workspace";
inline constexpr char FileVersions[] = "Versions";
inline constexpr char FilePrint[] = "Print";
inline constexpr char FileRecent[] = "Recent";
inline constexpr char FileExit[] = "Exit";
// Edit
inline constexpr char EditUndo[] = "Undo";
inline constexpr char EditClipboard[] = "Clipboard";
inline constexpr char EditSelect[] = "Select";
inline constexpr char EditSubMenus[] = "SubMenus";
inline constexpr char EditLines[] = "Lines";
inline constexpr char EditOther[] = "Other";
// Edit > Lines and Edit > Format
inline constexpr char LinesEdit[] = "LinesEdit";
inline constexpr char LinesMove[] = "LinesMove";
inline constexpr char FormatCase[] = "Case";
inline constexpr char FormatIndent[] = "Indent";
inline constexpr char FormatComment[] = "Comment";
inline constexpr char FormatSpaces[] = "Spaces";
// The editor's context menu
inline constexpr char ContextUndo[] = "Undo";
inline constexpr char ContextClipboard[] = "Clipboard";
inline constexpr char ContextAppend[] = "Append";
inline constexpr char ContextCase[] = "Case";
inline constexpr char ContextInsert[] = "Insert";
inline constexpr char ContextSelect[] = "Select";
inline constexpr char ContextTemplate[] = "Template";
// Search
inline constexpr char SearchFind[] = "Find";
inline constexpr char SearchFiles[] = "Files";
inline constexpr char SearchGoto[] = "Goto";
inline constexpr char SearchBookmarks[] = "Bookmarks";
inline constexpr char SearchNavigate[] = "Navigate";
// View
inline constexpr char ViewAs[] = "ViewAs";
inline constexpr char ViewToggles[] = "Toggles";
inline constexpr char ViewZoom[] = "Zoom";
inline constexpr char ViewFont[] = "Font";
inline constexpr char ViewBars[] = "Bars";
inline constexpr char ViewCompare[] = "Compare";
// Tools
inline constexpr char ToolsUser[] = "User";
inline constexpr char ToolsRun[] = "Run";
inline constexpr char ToolsCustomise[] = "Customise";
inline constexpr char ToolsOptions[] = "Options";
// Window
inline constexpr char WindowNew[] = "New";
inline constexpr char WindowTabs[] = "Tabs";
inline constexpr char WindowList[] = "List";
// Help
inline constexpr char HelpContents[] = "Contents";
inline constexpr char HelpAbout[] = "About";
// Any menu's default group.
inline constexpr char Default[] = "Default";
} // namespace MenuGroup

namespace ToolBarId {
inline constexpr char Standard[] = "Standard";
} // namespace ToolBarId

namespace ToolBarGroup {
inline constexpr char File[] = "File";
inline constexpr char Clipboard[] = "Clipboard";
inline constexpr char Undo[] = "Undo";
inline constexpr char Print[] = "Print";
inline constexpr char Find[] = "Find";
inline constexpr char Goto[] = "Goto";
inline constexpr char Navigate[] = "Navigate";
inline constexpr char View[] = "View";
} // namespace ToolBarGroup
