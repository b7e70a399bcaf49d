#include "PropertiesCommands.h"

#include "CPageFileFilter.h"
#include "CPageGeneral.h"
#include "CPageGeneralMore.h"
#include "CPageSyntaxColour.h"
#include "CPropertiesSheet.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QCoreApplication>
#include <QMainWindow>

void InstallProperties(IShell& shell)
{
    IShell* s = &shell;
    shell.AddPropertyPage(PropertyPageOrder::General,
                          [s](QWidget* parent) { return new CPageGeneral(*s, parent); });
    shell.AddPropertyPage(PropertyPageOrder::FileFilters,
                          [](QWidget* parent) { return new CPageFileFilter(parent); });
    shell.AddPropertyPage(PropertyPageOrder::SyntaxColouring,
                          [s](QWidget* parent) { return new CPageSyntaxColour(*s, parent); });
    shell.AddPropertyPage(PropertyPageOrder::GeneralMore,
                          [s](QWidget* parent) { return new CPageGeneralMore(*s, parent); });

    CommandInfo cmd;
    cmd.id = Cmd::DocumentProperties;
    cmd.text = QCoreApplication::translate("Properties", "Document &Properties...");
    cmd.category = QCoreApplication::translate("Properties", "Tools");
    cmd.iconName = QStringLiteral("document-properties");
    cmd.run = [s] {
        CPropertiesSheet sheet(s->PropertyPages(), s->Window());
        QObject::connect(&sheet, &CPropertiesSheet::helpRequested, &sheet,
                         [s] { s->Commands().Execute(Cmd::HelpContext); });
        sheet.exec();
    };
    shell.Commands().Register(cmd);
    shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsOptions, Cmd::DocumentProperties);
}
