#pragma once

#include <QString>
#include <QStringList>

// "--compare LEFT RIGHT" or "-d LEFT RIGHT" among the program's arguments, as
// `git difftool` passes them.
struct CompareArguments
{
    QString left;
    QString right;

    bool IsEmpty() const { return left.isEmpty() && right.isEmpty(); }

    // Takes the first compare request out of `arguments` (the program's name not
    // included) and returns it; the other arguments stay. A switch without two paths
    // behind it is left alone and nothing is returned.
    static CompareArguments Take(QStringList& arguments);
};
