#include "COutputBarCommands.h"

#include "COutputBar.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IOutputPage.h"
#include "shell/IShell.h"

#include <QDockWidget>
#include <QMainWindow>

COutputBarCommands::COutputBarCommands(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
    , m_bar(new COutputBar)
{
    // The dock keeps its place in the saved layout under this name.
    m_dock = shell.AddDock(QStringLiteral("OutputBar"), tr("Output"), m_bar,
                           Qt::BottomDockWidgetArea);
    m_dock->setVisible(false);

    // Pages that came before the bar, then any that come later.
    for (IOutputPage* page : shell.OutputPages())
        m_bar->AddPage(page);
    connect(&shell.Events(), &CShellEvents::outputPageAdded, m_bar, &COutputBar::AddPage);
    connect(&shell.Events(), &CShellEvents::showOutputPage, this, [this](IOutputPage* page) {
        m_bar->AddPage(page);
        m_bar->ShowPage(page);
        m_dock->show();
        m_dock->raise();
    });

    shell.Commands().Register({.id = Cmd::ViewOutputBar,
                               .text = tr("O&utput Bar"),
                               .category = tr("View"),
                               .checkable = true,
                               .run = [this] { m_dock->setVisible(!m_dock->isVisible()); },
                               .update = [this](CCmdUI& ui) { ui.checked = m_dock && m_dock->isVisible(); }});
    shell.Menus().AddCommand(MenuId::View, MenuGroup::ViewBars, Cmd::ViewOutputBar);
}

COutputBarCommands* COutputBarCommands::Of(IShell& shell)
{
    QMainWindow* window = shell.Window();
    return window ? window->findChild<COutputBarCommands*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

COutputBarCommands* InstallOutputBar(IShell& shell)
{
    if (COutputBarCommands* existing = COutputBarCommands::Of(shell))
        return existing;
    return new COutputBarCommands(shell);
}
