#include "HexInstall.h"

#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QMainWindow>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("HexInstall", text);
}

void OpenAsHex(IShell& shell)
{
    QFileDialog dialog(shell.Window(), Tr("Open as Hex"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setNameFilter(Tr("All Files (*)"));
    dialog.setOption(QFileDialog::DontUseNativeDialog, true);
    dialog.setOption(QFileDialog::ReadOnly, false);
    if (dialog.exec() != QDialog::Accepted)
        return;
    OpenOptions options;
    options.mode = OpenOptions::Hex;
    const QStringList paths = dialog.selectedFiles();
    for (const QString& path : paths)
        shell.OpenPath(path, options);
}

} // namespace

void InstallHex(IShell& shell)
{
    IShell* target = &shell;
    shell.Commands().Register({.id = Cmd::FileOpenAsHex,
                               .text = Tr("Open as &Hex..."),
                               .category = Tr("File"),
                               .shortcut = QKeySequence(QStringLiteral("Ctrl+Shift+O")),
                               .run = [target] { OpenAsHex(*target); }});
    shell.Menus().AddCommand(MenuId::File, MenuGroup::FileOpen, Cmd::FileOpenAsHex);
}
