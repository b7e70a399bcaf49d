#pragma once

#include "framework/CommandIds.h"

// Commands of the explorer bar and the workspace.
namespace ExplorerCmd {
enum Id : int {
    // The project tree's tool strip ("Control Center").
    AddFolder = 6000,
    DeleteFolder = 6001,
    RenameFolder = 6002,
    // The file explorer's tool strip; the file explorer page registers it.
    RefreshFileSystem = 6011,

    // File menu.
    WorkspaceNew = 32775,
    WorkspaceOpen = 32777,
    WorkspaceSave = 32807,
    WorkspaceClose = 32778,

    // The project tree's item menu.
    ItemOpen = 32772,
    ItemRemove = 32779,
    ItemProperties = 32773,

    // Page toggles of the View menu and the bar's context menu.
    ViewFileExplorer = 59585,
    ViewProjectExplorer = 59586,
    ViewCodeLibrary = 59588,
    ViewListExplorer = 59510,
    ViewExplorerBar = Cmd::ViewExplorerBar, // 59587
};
} // namespace ExplorerCmd
