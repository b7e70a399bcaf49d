#include "ViewAsMenu.h"

#include "CSyntaxParserList.h"
#include "framework/CommandIds.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

namespace ViewAsMenu {

namespace {

QString Translate(const char* text)
{
    return QCoreApplication::translate("ViewAsMenu", text);
}

bool IsViewAsCommand(const QAction* action)
{
    bool ok = false;
    const int id = action->data().toInt(&ok);
    return ok && id >= Cmd::ViewAsFirst && id <= Cmd::ViewAsMore;
}

QAction* MakeAction(QMenu* menu, const ActionFactory& factory, int id, const QString& text)
{
    QAction* action = factory ? factory(id, text) : nullptr;
    if (!action)
        action = new QAction(text, menu);
    action->setText(text);
    action->setData(id);
    menu->addAction(action);
    return action;
}

} // namespace

QList<QAction*> Fill(QMenu* menu, const QStringList& menuNames, const ActionFactory& factory)
{
    QList<QAction*> actions;
    if (!menu)
        return actions;
    const QList<QAction*> existing = menu->actions();
    for (QAction* action : existing) {
        if (action->isSeparator() && action->property("viewAsSeparator").toBool()) {
            menu->removeAction(action);
            action->deleteLater();
        } else if (IsViewAsCommand(action)) {
            menu->removeAction(action);
            if (action->parent() == menu)
                action->deleteLater();
        }
    }

    if (menuNames.isEmpty()) {
        QAction* none = MakeAction(menu, factory, Cmd::ViewAsFirst, Translate("Coloring Not Available"));
        none->setCheckable(false);
        none->setEnabled(false);
        actions.append(none);
    } else {
        const int shown = std::min<int>(int(menuNames.size()), MaxMenuEntries);
        for (int i = 0; i < shown; ++i) {
            QString text = menuNames.at(i);
            text.replace(QLatin1Char('&'), QLatin1String("&&"));
            QAction* action = MakeAction(menu, factory, Cmd::ViewAsFirst + i, text);
            action->setCheckable(true);
            action->setEnabled(true);
            actions.append(action);
        }
    }
    QAction* separator = menu->addSeparator();
    separator->setProperty("viewAsSeparator", true);
    actions.append(MakeAction(menu, factory, Cmd::ViewAsMore, Translate("More ...")));
    return actions;
}

QList<QAction*> Fill(QMenu* menu, const CSyntaxParserList& parsers, const ActionFactory& factory)
{
    return Fill(menu, parsers.MenuNames(), factory);
}

bool ShowsCheck(int index, int count, int current)
{
    return index == current && index >= 0 && index < count && index < MaxCheckedEntries;
}

void UpdateChecks(const QList<QAction*>& actions, int count, int current)
{
    for (QAction* action : actions) {
        const int index = ParserIndexOfCommand(action->data().toInt());
        if (index >= 0 && action->isCheckable())
            action->setChecked(ShowsCheck(index, count, current));
    }
}

int ParserIndexOfCommand(int commandId)
{
    if (commandId < Cmd::ViewAsFirst || commandId > Cmd::ViewAsLast)
        return -1;
    return commandId - Cmd::ViewAsFirst;
}

} // namespace ViewAsMenu
