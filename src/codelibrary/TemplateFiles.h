#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// The code library on disk: one plain file per template, one folder per folder, no
// index. These are the only places that read or change it.
namespace TemplateFiles {

// Templates are cut here when read; larger files are left as they are on disk.
inline constexpr qint64 MaxTemplateBytes = 250000;
// Taken by the editor's selection when a template is inserted.
inline constexpr char ReplaceMarker[] = "<%REPLACE%>";

// At most MaxTemplateBytes of the file, ending at the first NUL. Empty when the file
// can't be read.
QByteArray ReadTemplate(const QString& path);
// Creates or replaces the file with exactly `bytes`, through a file beside it that is
// renamed over it, so a failed write leaves the old file whole.
bool WriteTemplate(const QString& path, const QByteArray& bytes);

// A template's bytes as text, and back. Files that aren't UTF-8 are read as Latin-1
// and written back so, which keeps every byte they hold.
struct Text
{
    QString text;
    bool utf8 = true;
};
Text Decode(const QByteArray& bytes);
QByteArray Encode(const Text& text);

// Deletes a file, or a folder with everything in it, without a way back.
bool DeleteFromDisk(const QString& path);
// Renames `from` to `to`, failing when `to` already exists (never replacing it).
// Renaming to the same path succeeds and changes nothing.
bool RenameNoReplace(const QString& from, const QString& to);

// The folder of the code library: the user's setting "TemplateSettings/Directory",
// else the machine's, else the default below the user's data folder.
QString LibraryFolder();

// One entry of the library as the tree shows it.
struct Entry
{
    QString name; // the file name, in full
    QString path;
    bool folder = false;
    QList<Entry> children;
};
// The entries of `directory` and all folders below it, each level in file-name order.
// A folder reached again through a link is listed but not entered a second time.
// False when `directory` is empty; true (and nothing listed) when it can't be read.
bool ReadTree(const QString& directory, QList<Entry>& entries);

} // namespace TemplateFiles
