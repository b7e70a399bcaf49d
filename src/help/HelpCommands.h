#pragma once

class IShell;

// Help Topics, Contents, the index and search, F1 for the window in front, and About.
void InstallHelp(IShell& shell);
