#pragma once

#include "settings/ViewSettings.h"

#include <QString>

// Every setting the main frame holds while the program runs: read once when the frame
// is created and written once when it closes.
struct MainFrameSettings
{
    ViewSettings view;

    int PrintHeader = 0;
    int PrintFooter = 0;
    int Metric = 1;            // the locale measures in metric units
    int PrintLineNumbers = 0;
    int PrintMargins[4] = {1500, 1500, 1500, 1500}; // left, top, right, bottom; not stored

    int Enabled = 1;           // backups on
    QString BackupFolder;
    int Versions = 1;
    int DeleteOnExit = 0;
    int ReuseWindows = 1;
    int ResetUndoOnSave = 1;

    int MDITabInActive = 0;

    void LoadViewSettings();
    // Print, backup, output and edit settings, read after the bars exist.
    void LoadOtherSettings();
    void Load() { LoadViewSettings(); LoadOtherSettings(); }

    // Writes everything in the close order; `MDITabInActive` first.
    void Save() const;
};
