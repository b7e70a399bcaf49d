#pragma once

// What IExplorerPage::PageKind() answers for each page of the explorer bar. The bar's
// toggles, its saved order and its tool strip go by these.
namespace ExplorerPageKind {
inline constexpr int Project = 0;     // "Project Explorer"
inline constexpr int File = 1;        // "File Explorer"
inline constexpr int List = 2;        // "List Explorer"
inline constexpr int CodeLibrary = 3; // "Code Library"; also what an unknown page counts as
inline constexpr int Count = 4;
} // namespace ExplorerPageKind
