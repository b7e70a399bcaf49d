#include "usertools/InstallTools.h"

#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "usertools/CCustomiseSheet.h"
#include "usertools/CToolBarCustomiser.h"
#include "usertools/CToolOutputPage.h"
#include "usertools/CUserToolsManager.h"

#include <QCoreApplication>
#include <QMainWindow>

namespace {
const QString kActivePageSection = QStringLiteral("Settings");
const QString kActivePage = QStringLiteral("Active Page");

struct CustomiseCommand
{
    int id;
    const char* text;
    int page;
};
// Edit Toolbars is reached from the sheet's own tabs.
const CustomiseCommand kCustomiseCommands[] = {
    {Cmd::CustomiseToolBars, QT_TRANSLATE_NOOP("InstallTools", "Customise &Toolbars..."), CCustomiseSheet::CreateToolBars},
    {Cmd::CustomiseKeyboard, QT_TRANSLATE_NOOP("InstallTools", "Customise &Keyboard..."), CCustomiseSheet::KeyboardShortcuts},
    {Cmd::CustomiseTools, QT_TRANSLATE_NOOP("InstallTools", "&External Tools..."), CCustomiseSheet::Tools},
    {Cmd::CustomiseOptions, QT_TRANSLATE_NOOP("InstallTools", "Customise &Options..."), CCustomiseSheet::Presentation},
};
} // namespace

void OpenCustomiseSheet(IShell& shell, const InstalledTools& installed, int page)
{
    CRegistryStore().WriteProfileInt(kActivePageSection, kActivePage, page);
    CCustomiseSheet sheet(shell, *installed.toolBars, *installed.tools,
                          CRegistryStore().GetProfileInt(kActivePageSection, kActivePage, page), shell.Window());
    sheet.exec();
    // Stored as the sheet closes too, so a crash later in the run loses none of it.
    installed.toolBars->Save();
    shell.Commands().SaveShortcuts();
}

InstalledTools InstallTools(IShell& shell)
{
    InstalledTools installed;
    installed.tools = new CUserToolsManager(shell, shell.Window());
    installed.toolBars = new CToolBarCustomiser(shell, shell.Window());
    shell.AddOutputPage(installed.tools->Page());
    // The user's toolbars exist before the window puts its bars back in their places.
    installed.toolBars->CreateUserToolBars();

    for (const CustomiseCommand& command : kCustomiseCommands) {
        const int page = command.page;
        shell.Commands().Register({.id = command.id,
                                   .text = QCoreApplication::translate("InstallTools", command.text),
                                   .category = QCoreApplication::translate("InstallTools", "Tools"),
                                   .iconName = page == CCustomiseSheet::Tools ? QStringLiteral("system-run")
                                                                              : QString(),
                                   .run = [&shell, installed, page] { OpenCustomiseSheet(shell, installed, page); }});
        shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsCustomise, command.id);
    }

    QObject::connect(&shell.Events(), &CShellEvents::firstIdle, installed.toolBars, [&shell, installed] {
        // F4 and Shift+F4 step through the tool's links wherever focus is, unless the
        // Output bar already gave those keys to a command of its own.
        const struct
        {
            int id;
            const char* text;
            QKeySequence key;
            bool forward;
        } steps[] = {{Cmd::NextToolResult, QT_TRANSLATE_NOOP("InstallTools", "Ne&xt Tool Result"), QKeySequence(Qt::Key_F4), true},
                     {Cmd::PreviousToolResult, QT_TRANSLATE_NOOP("InstallTools", "Pre&vious Tool Result"),
                      QKeySequence(Qt::SHIFT | Qt::Key_F4), false}};
        for (const auto& step : steps) {
            const bool forward = step.forward;
            CUserToolsManager* tools = installed.tools;
            shell.Commands().Register(
                {.id = step.id,
                 .text = QCoreApplication::translate("InstallTools", step.text),
                 .category = QCoreApplication::translate("InstallTools", "Tools"),
                 .shortcut = shell.Commands().CommandForShortcut(step.key) ? QKeySequence() : step.key,
                 .run = [&shell, tools, forward] {
                     shell.ShowOutputPage(tools->Page());
                     tools->Page()->GoToNextLink(forward);
                 }});
            shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsRun, step.id);
        }
        // Every subsystem has put its buttons and commands in place by now.
        installed.toolBars->ApplyStoredLayouts();
        shell.Commands().LoadShortcuts();
    });
    QObject::connect(&shell.Events(), &CShellEvents::saveSettings, installed.toolBars, [&shell, installed] {
        installed.toolBars->Save();
        shell.Commands().SaveShortcuts();
    });
    return installed;
}
