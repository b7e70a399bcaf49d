#pragma once

class IShell;

// View > Zoom In, Zoom Out and Reset Zoom, and Ctrl with the wheel: one zoom level for
// every text view, kept in the settings ("Zoom", "Level") from one run to the next.
void InstallZoom(IShell& shell);
