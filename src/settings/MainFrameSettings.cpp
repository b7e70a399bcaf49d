#include "settings/MainFrameSettings.h"

#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"

#include <QLocale>

namespace {
const QString kView = QStringLiteral("ViewSettings");
const QString kPrint = QStringLiteral("PrintSettings");
const QString kBackup = QStringLiteral("BackupSettings");
const QString kOutput = QStringLiteral("OutputSettings");
const QString kEdit = QStringLiteral("EditSettings");
const QString kSettings = QStringLiteral("Settings");
} // namespace

void MainFrameSettings::LoadViewSettings()
{
    CRegistryStore store;
    ViewSettings& v = view;
    const ViewSettings d;
    v.WordWrap = store.GetProfileInt(kView, QStringLiteral("WordWrap"), d.WordWrap);
    v.Whitespace = store.GetProfileInt(kView, QStringLiteral("Whitespace"), d.Whitespace);
    v.LineEndings = store.GetProfileInt(kView, QStringLiteral("LineEndings"), d.LineEndings);
    v.CaretLine = store.GetProfileInt(kView, QStringLiteral("CaretLine"), d.CaretLine);
    v.LineNumbers = store.GetProfileInt(kView, QStringLiteral("LineNumbers"), d.LineNumbers);
    v.FontSize = store.GetProfileInt(kView, QStringLiteral("FontSize"), d.FontSize);
    v.FontBold = store.GetProfileInt(kView, QStringLiteral("FontBold"), d.FontBold);
    v.FontItalic = store.GetProfileInt(kView, QStringLiteral("FontItalic"), d.FontItalic);
    v.CodeFolding = store.GetProfileInt(kView, QStringLiteral("CodeFolding"), d.CodeFolding);
    v.BlockSelect = store.GetProfileInt(kView, QStringLiteral("BlockSelect"), d.BlockSelect);
    v.LargeTBIcons = store.GetProfileInt(kView, QStringLiteral("LargeTBIcons"), d.LargeTBIcons);
    // A face name fits the 32-byte buffer fonts have always had.
    v.FontStyle = store.GetProfileString(kView, QStringLiteral("FontStyle"), d.FontStyle)
                      .left(ViewSettings::MaxFontStyleLength);
    v.TabAsSpaces = store.GetProfileInt(kView, QStringLiteral("TabAsSpaces"), d.TabAsSpaces);
    v.TabGuides = store.GetProfileInt(kView, QStringLiteral("TabGuides"), d.TabGuides);
    v.TabWidth = store.GetProfileInt(kView, QStringLiteral("TabWidth"), d.TabWidth);
    v.MatchBracket = store.GetProfileInt(kView, QStringLiteral("MatchBracket"), d.MatchBracket);
    if (!store.GetProfileColor(kView, QStringLiteral("BraceBadColour"), v.BraceBadColour))
        v.BraceBadColour = d.BraceBadColour;
    if (!store.GetProfileColor(kView, QStringLiteral("BraceHighlight"), v.BraceHighlight))
        v.BraceHighlight = d.BraceHighlight;
    if (!store.GetProfileColor(kView, QStringLiteral("CaretLineColour"), v.CaretLineColour))
        v.CaretLineColour = d.CaretLineColour;
    v.CaretLineTransparency = store.GetProfileInt(kView, QStringLiteral("CaretLineTransparency"),
                                                  d.CaretLineTransparency);
}

void MainFrameSettings::LoadOtherSettings()
{
    CRegistryStore store;
    PrintHeader = store.GetProfileInt(kPrint, QStringLiteral("PrintHeader"), 0);
    PrintFooter = store.GetProfileInt(kPrint, QStringLiteral("PrintFooter"), 0);
    PrintLineNumbers = store.GetProfileInt(kPrint, QStringLiteral("PrintLineNumbers"), 0);
    // Margins are not stored: 15 mm in metric locales, else 0.6 inch.
    Metric = QLocale().measurementSystem() == QLocale::MetricSystem ? 1 : 0;
    for (int& margin : PrintMargins)
        margin = Metric ? 1500 : 600;

    DeleteOnExit = store.GetProfileInt(kBackup, QStringLiteral("DeleteOnExit"), 0);
    Enabled = store.GetProfileInt(kBackup, QStringLiteral("Enabled"), 1);
    Versions = store.GetProfileInt(kBackup, QStringLiteral("Versions"), 1);
    BackupFolder = store.GetProfileString(kBackup, QStringLiteral("BackupFolder"), QString());
    if (BackupFolder.isEmpty())
        BackupFolder = AppPaths::DefaultBackupFolder();

    ReuseWindows = store.GetProfileInt(kOutput, QStringLiteral("ReuseWindows"), 1);
    ResetUndoOnSave = store.GetProfileInt(kEdit, QStringLiteral("ResetUndoOnSave"), 1);
}

void MainFrameSettings::Save() const
{
    CRegistryStore store;
    store.WriteProfileInt(kSettings, QStringLiteral("MDITabInActive"), MDITabInActive);

    const ViewSettings& v = view;
    store.WriteProfileInt(kView, QStringLiteral("WordWrap"), v.WordWrap);
    store.WriteProfileInt(kView, QStringLiteral("Whitespace"), v.Whitespace);
    store.WriteProfileInt(kView, QStringLiteral("LineEndings"), v.LineEndings);
    store.WriteProfileInt(kView, QStringLiteral("CaretLine"), v.CaretLine);
    store.WriteProfileInt(kView, QStringLiteral("LineNumbers"), v.LineNumbers);
    store.WriteProfileInt(kView, QStringLiteral("FontSize"), v.FontSize);
    store.WriteProfileInt(kView, QStringLiteral("FontBold"), v.FontBold);
    store.WriteProfileInt(kView, QStringLiteral("FontItalic"), v.FontItalic);
    store.WriteProfileInt(kView, QStringLiteral("CodeFolding"), v.CodeFolding);
    store.WriteProfileInt(kView, QStringLiteral("BlockSelect"), v.BlockSelect);
    store.WriteProfileInt(kView, QStringLiteral("LargeTBIcons"), v.LargeTBIcons);
    store.WriteProfileString(kView, QStringLiteral("FontStyle"),
                             v.FontStyle.left(ViewSettings::MaxFontStyleLength));
    store.WriteProfileInt(kView, QStringLiteral("TabAsSpaces"), v.TabAsSpaces);
    store.WriteProfileInt(kView, QStringLiteral("TabGuides"), v.TabGuides);
    store.WriteProfileInt(kView, QStringLiteral("TabWidth"), v.TabWidth);
    store.WriteProfileInt(kView, QStringLiteral("MatchBracket"), v.MatchBracket);
    store.WriteProfileColor(kView, QStringLiteral("BraceBadColour"), v.BraceBadColour);
    store.WriteProfileColor(kView, QStringLiteral("BraceHighlight"), v.BraceHighlight);
    store.WriteProfileColor(kView, QStringLiteral("CaretLineColour"), v.CaretLineColour);
    store.WriteProfileInt(kView, QStringLiteral("CaretLineTransparency"), v.CaretLineTransparency);

    store.WriteProfileInt(kPrint, QStringLiteral("PrintHeader"), PrintHeader);
    store.WriteProfileInt(kPrint, QStringLiteral("PrintFooter"), PrintFooter);
    store.WriteProfileInt(kPrint, QStringLiteral("PrintLineNumbers"), PrintLineNumbers);

    store.WriteProfileInt(kBackup, QStringLiteral("DeleteOnExit"), DeleteOnExit);
    store.WriteProfileInt(kBackup, QStringLiteral("Enabled"), Enabled);
    store.WriteProfileInt(kBackup, QStringLiteral("Versions"), Versions);
    store.WriteProfileString(kBackup, QStringLiteral("BackupFolder"), BackupFolder);

    store.WriteProfileInt(kOutput, QStringLiteral("ReuseWindows"), ReuseWindows);
    store.WriteProfileInt(kEdit, QStringLiteral("ResetUndoOnSave"), ResetUndoOnSave);
}
