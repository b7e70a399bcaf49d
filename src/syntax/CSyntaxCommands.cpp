#include "CSyntaxCommands.h"

#include "ViewAsMenu.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>

CSyntaxCommands::CSyntaxCommands(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
{
    m_parsers.Load();
    QMenu* menu = shell.Menus().Menu(MenuId::ViewAs);
    if (!menu)
        return;
    const QStringList names = m_parsers.MenuNames();
    m_actions = ViewAsMenu::Fill(menu, names, [this, &names](int id, const QString& text) {
        CommandInfo cmd;
        cmd.id = id;
        cmd.text = text;
        cmd.category = tr("View");
        cmd.checkable = id != Cmd::ViewAsMore && !names.isEmpty();
        return m_shell.Commands().Register(cmd);
    });
    menu->menuAction()->setVisible(true);
}

CSyntaxCommands* CSyntaxCommands::Of(IShell& shell)
{
    QMainWindow* window = shell.Window();
    return window ? window->findChild<CSyntaxCommands*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

CSyntaxParserList& InstallSyntax(IShell& shell)
{
    CSyntaxCommands* commands = CSyntaxCommands::Of(shell);
    if (!commands)
        commands = new CSyntaxCommands(shell);
    return commands->Parsers();
}
