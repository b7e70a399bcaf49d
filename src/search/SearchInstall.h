#pragma once

class IShell;

// Find, Replace, Find Next and Previous with the toolbar's find box, and Find in Files
// with its Find Results page.
void InstallSearch(IShell& shell);
