#pragma once

// Command ids. Menus, toolbars and shortcuts are QActions that carry these ids; the
// command registry offers each command to the active child frame first, then runs the
// handler of the subsystem that registered it (see CChildFrame::OnCmdMsg).
namespace Cmd {

enum Id : int {
    // File
    FileNew = 57600,
    FileOpen = 57601,
    FileClose = 57602,
    FileSave = 57603,
    FileSaveAs = 57604,
    FileSaveAll = 32806,
    FileOpenAsHex = 32790,
    FileNewFromTemplate = 32774,
    FilePrint = 57607,
    FilePrintDirect = 57608,
    FilePrintPreview = 57609,
    FilePageSetup = 57606,
    FileExportPdf = 36800,
    FileMruFirst = 57616, // four entries
    AppExit = 57665,
    AppAbout = 57664,

    // Edit
    EditUndo = 57643,
    EditRedo = 57644,
    EditCut = 57635,
    EditCopy = 57634,
    EditPaste = 57637,
    EditClear = 57632,
    EditSelectAll = 57642,
    EditFind = 57636,
    EditReplace = 57641,
    EditFindNext = 149,
    EditFindPrevious = 32841,
    EditGoto = 161,
    EditCutAppend = 32851,
    EditCopyAppend = 32852,
    EditSelectWord = 32843,
    EditSelectLine = 32844,
    EditInsertDate = 32849,
    EditInsertTime = 32850,
    EditInsertFileName = 32799,
    EditUpperCase = 32846,
    EditLowerCase = 32847,
    EditIndentRight = 32821,
    EditIndentLeft = 32822,
    EditComment = 32825,
    EditUncomment = 32826,
    EditSwapLines = 32792,
    EditCutLine = 32794,
    EditCopyLine = 32781,
    EditDeleteWord = 32786,
    EditDeleteToEol = 7001,
    EditDeleteLine = 32785,
    EditTabsToSpaces = 9005,
    EditSpacesToTabs = 9006,
    EditTrimTrailing = 9007,
    BookmarkToggle = 5007,
    BookmarkNext = 5009,
    BookmarkPrevious = 5010,
    BookmarkClear = 5011,
    CreateTemplateFromSelection = 32780,
    CopyFilePath = 28000,
    OpenContainingFolder = 28001,

    // View
    ViewWordWrap = 31001,
    ViewWhitespace = 31000,
    ViewLineEndings = 31002,
    ViewCaretLine = 32787,
    ViewLineNumbers = 213,
    ViewCodeFolding = 32788,
    ViewBlockSelect = 9008,
    ViewMatchBracket = 32789,
    ViewFont = 32820,
    ViewAsFirst = 25102,
    ViewAsLast = 25127,
    ViewAsMore = 25128,
    ViewOutputBar = 59590,
    ViewExplorerBar = 59587,
    NavigateBack = 9001,
    NavigateForward = 9002,
    FindInFiles = 9000,

    // Window and tabs
    TabsLeft = 32801,
    TabsTop = 32803,
    TabsRight = 32802,
    TabsBottom = 32804,
    TabsToggle = 32805,
    CloseAllButSelected = 28002,
    WindowNew = 57648,
    CheckForUpdates = 250,
    HelpTopics = 32827,
    HelpContents = 32828,
    HelpIndex = 57666,
    HelpSearch = 32830,
    HelpContext = 57670, // F1: the page of the window or dialog in front
    DocumentProperties = 38806,
    DocumentHistory = 7500,

    // File versions and compare
    CompareFiles = 36400,
    CompareWithSaved = 36401,
    CompareNextDifference = 36402,
    ComparePreviousDifference = 36403,
    CompareCopyToLeft = 36404,
    CompareCopyToRight = 36405,
    CompareSwapSides = 36406,
    CompareRecompare = 36407,
    CompareIgnoreWhitespace = 36408,
    CompareIgnoreCase = 36409,
    BackupManager = 36410,
    // File explorer page (tool strip)
    RefreshFileSystemView = 6011,
    FileExplorerShowHidden = 36600,
    // Tools: the user's tools are 53000 to 53250, Stop Tool 651.
    CustomiseToolBars = 34020,
    CustomiseKeyboard = 34021,
    CustomiseTools = 34022,
    CustomiseOptions = 34023,
    NextToolResult = 36700,
    PreviousToolResult = 36701,

    // Line commands and typing help
    EditMoveLinesUp = 36000,
    EditMoveLinesDown = 36001,
    EditDuplicate = 36002,
    EditJoinLines = 36003,
    EditSortAscending = 36004,
    EditSortDescending = 36005,
    EditSortCaseInsensitive = 36006,
    EditSortUnique = 36007,
    EditAutoClose = 36008,
    EditToggleBlockComment = 36009,
    // Several carets and typing help
    EditSelectNextOccurrence = 37200,
    EditSelectAllOccurrences = 37201,
    EditCompleteWord = 37202,
    EditAutoIndentBrace = 37203,
    EditAutoComplete = 37204,
    ViewHighlightOccurrences = 37205,
    // Edit > Convert Line Endings (36300-36399: document format)
    ConvertToWindows = 36300,
    ConvertToUnix = 36301,
    ConvertToMacintosh = 36302,
    // View > Zoom
    ViewZoomIn = 36310,
    ViewZoomOut = 36311,
    ViewZoomReset = 36312,
    // View > Theme
    ViewThemeLight = 37300,
    ViewThemeDark = 37301,
    ViewThemeDesktop = 37302,

    // Search > Incremental Find, Replace in Files, status bar panes (37250-37299)
    EditIncrementalFind = 37250,
};

} // namespace Cmd
