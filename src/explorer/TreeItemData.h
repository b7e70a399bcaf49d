#pragma once

#include <QString>

// The record behind each item of the project tree and the code library tree: what ties
// an item to its file. The item's displayed text is separate and may carry marks.
struct TreeItemData
{
    // Display name: a file's name with extension, or a folder's name.
    QString label;
    // Full path exactly as it was given; empty for a folder.
    QString pathname;
    // Encoding code of the file; 4 for folders and where nothing better is known.
    int encoding = 4;
    // 1 for a file recorded as binary, else 0.
    int type = 0;
    // 1 for a folder, 0 for a file.
    int folder = 0;

    bool IsFolder() const { return folder == 1; }
    bool operator==(const TreeItemData&) const = default;

    static TreeItemData Folder(const QString& name) { return {name, {}, 4, 0, 1}; }
    static TreeItemData File(const QString& label, const QString& path, int type, int encoding)
    {
        return {label, path, encoding, type, 0};
    }
};
