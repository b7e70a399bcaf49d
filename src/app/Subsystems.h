#pragma once

class IShell;

// Installs every subsystem into the shell, each through its one entry point, in the
// order their commands appear where they share a menu group or the toolbar.
void InstallSubsystems(IShell& shell);
