#pragma once

class IShell;

// File > Open as Hex. The hex frames answer the editing commands themselves.
void InstallHex(IShell& shell);
