#pragma once

class CRecoveryManager;
class IShell;

// Watches every text document for the recovery folder and, after an unclean end, offers
// what was left once the window is up. Returns the manager (owned by the window).
CRecoveryManager* InstallRecovery(IShell& shell);
