#pragma once

#include <QCoreApplication>
#include <QString>

// The note both search dialogs show under their options: which expressions are accepted.
inline QString RegularExpressionHelpText()
{
    return QCoreApplication::translate(
        "SearchDialogs",
        "Regular expressions use the Perl-compatible (PCRE2) syntax, one line at a time: "
        "groups ( ), alternation |, classes [a-z] [^0-9], \\d \\w \\s \\b and their "
        "negations, quantifiers * + ? {n,m} and their lazy forms, anchors ^ and $. "
        "The replacement text is inserted as it stands.");
}
