#pragma once

class IShell;

// "Document Properties" (the command and the sheet) with the pages General, File
// Filters, Syntax Coloring and General More; other subsystems add their own pages.
void InstallProperties(IShell& shell);

// The order of this subsystem's pages among all of the sheet's.
namespace PropertyPageOrder {
inline constexpr int General = 10;
inline constexpr int FileFilters = 20;
inline constexpr int SyntaxColouring = 30;
inline constexpr int BackupManager = 40;
inline constexpr int GeneralMore = 50;
} // namespace PropertyPageOrder
