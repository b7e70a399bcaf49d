#pragma once

class CToolBarCustomiser;
class CUserToolsManager;
class IShell;

// External tools (Tools menu, Stop Tool, the "Tool Results" page) and the customise
// sheet with its commands. Returns what it made, owned by the window, for tests.
struct InstalledTools
{
    CUserToolsManager* tools = nullptr;
    CToolBarCustomiser* toolBars = nullptr;
};

InstalledTools InstallTools(IShell& shell);

// Opens the customise sheet on `page` (0 Create Toolbars ... 4 Presentation Options),
// after writing it as the sheet's "Active Page".
void OpenCustomiseSheet(IShell& shell, const InstalledTools& installed, int page);
