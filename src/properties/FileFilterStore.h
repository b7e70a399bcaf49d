#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The file type filters of the open and save dialogs: a label and the patterns it
// stands for ("C/C++ Files", "*.c;*.h"). Kept in the settings section "FileFilter", one
// value per filter named by its patterns with the label as data.
namespace FileFilterStore {

struct Filter
{
    QString label;
    QString extension; // patterns separated by ";"
    bool operator==(const Filter&) const = default;
};

// The machine's filters, then the user's (which win for the same patterns), in pattern
// order. At the first start, with neither present, the user's section is seeded with
// common languages.
QList<Filter> Load();
// Makes the list this user sees exactly `filters`: the user's section holds them, and
// machine filters left out are hidden for this user (the machine scope is not the
// user's to change). False when the store refused.
bool Save(const QList<Filter>& filters);

// What a first start writes.
QList<Filter> Defaults();

// The classic filter string: "Label (pattern)|pattern|" per filter, closed by
// "All Files (*.*)|*.*||".
QString FilterString(const QList<Filter>& filters);
// The same filters as a file dialog takes them: "Label (*.c *.h)", ending with all files.
QStringList DialogFilters(const QList<Filter>& filters);

} // namespace FileFilterStore
