#pragma once

#include <QString>

// The rule for a template's name as it is typed: a character that can't stand in a
// file name, typed at the end, is taken away again.
namespace TemplateName {

// The characters refused at the end of a name.
bool IsRefused(QChar c);

struct Edit
{
    QString stored;     // the name kept after this edit
    bool revert = false; // the edit must show `stored` again, and the program beeps
};
// The name edit changed from `stored` to `edited`.
Edit Apply(const QString& stored, const QString& edited);

} // namespace TemplateName
