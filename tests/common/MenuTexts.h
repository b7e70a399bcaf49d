#pragma once

#include <QAction>
#include <QStringList>

// What a menu or toolbar shows, top to bottom: the texts of its visible actions, "-" for a
// line.
inline QStringList MenuTexts(const QList<QAction*>& actions)
{
    QStringList shown;
    for (const QAction* action : actions) {
        if (action->isVisible())
            shown << (action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return shown;
}
