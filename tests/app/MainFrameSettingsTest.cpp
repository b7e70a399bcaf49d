#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"
#include "TestSupport.h"

#include <QSettings>
#include <gtest/gtest.h>

namespace {

class MainFrameSettingsTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
};

// The view's defaults are its own type's; these are chosen where the settings are read.
TEST_F(MainFrameSettingsTest, NothingStoredGivesTheDefaultsAndAStoredBackupFolderIsKept)
{
    MainFrameSettings settings;
    settings.Load();
    EXPECT_EQ(settings.view, ViewSettings());
    EXPECT_EQ(settings.Enabled, 1);
    EXPECT_EQ(settings.Versions, 1);
    EXPECT_EQ(settings.ReuseWindows, 1);
    EXPECT_EQ(settings.ResetUndoOnSave, 1);
    EXPECT_EQ(settings.BackupFolder, AppPaths::DefaultBackupFolder());
    EXPECT_TRUE(settings.BackupFolder.startsWith(TestSupport::IsolatedRoot()));
    CRegistryStore().WriteProfileString(QStringLiteral("BackupSettings"), QStringLiteral("BackupFolder"),
                                        QStringLiteral("/srv/backups"));
    settings.Load();
    EXPECT_EQ(settings.BackupFolder, QStringLiteral("/srv/backups"));
}

TEST_F(MainFrameSettingsTest, FirstCloseWritesEveryValue)
{
    MainFrameSettings settings;
    settings.Load();
    settings.Save();
    QSettings file(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Brackwyn"),
                   QStringLiteral("Morvane"));
    const char* const expected[] = {
        "Settings/MDITabInActive", "ViewSettings/WordWrap", "ViewSettings/Whitespace", "ViewSettings/LineEndings",
        "ViewSettings/CaretLine", "ViewSettings/LineNumbers", "ViewSettings/FontSize", "ViewSettings/FontBold",
        "ViewSettings/FontItalic", "ViewSettings/CodeFolding", "ViewSettings/BlockSelect",
        "ViewSettings/LargeTBIcons", "ViewSettings/FontStyle", "ViewSettings/TabAsSpaces", "ViewSettings/TabGuides",
        "ViewSettings/TabWidth", "ViewSettings/MatchBracket", "ViewSettings/BraceBadColour",
        "ViewSettings/BraceHighlight", "ViewSettings/CaretLineColour", "ViewSettings/CaretLineTransparency",
        "PrintSettings/PrintHeader", "PrintSettings/PrintFooter", "PrintSettings/PrintLineNumbers",
        "BackupSettings/DeleteOnExit", "BackupSettings/Enabled", "BackupSettings/Versions",
        "BackupSettings/BackupFolder", "OutputSettings/ReuseWindows", "EditSettings/ResetUndoOnSave"};
    for (const char* key : expected)
        EXPECT_TRUE(file.contains(QLatin1String(key))) << key;
    EXPECT_EQ(file.value(QStringLiteral("ViewSettings/CaretLineColour")).toLongLong(), 15651521);
    EXPECT_EQ(file.value(QStringLiteral("ViewSettings/FontStyle")).toString(), QStringLiteral("Courier New"));
}

TEST_F(MainFrameSettingsTest, ChangedValuesSurviveTheNextStart)
{
    MainFrameSettings first;
    first.Load();
    first.view.WordWrap = 1;
    first.view.FontSize = 14;
    first.view.CaretLineColour = 0x123456;
    first.ResetUndoOnSave = 0;
    first.MDITabInActive = 1;
    first.Save();

    MainFrameSettings second;
    second.Load();
    EXPECT_EQ(second.view, first.view);
    EXPECT_EQ(second.ResetUndoOnSave, 0);
}

TEST_F(MainFrameSettingsTest, LongFontFaceIsCutToThirtyOneCharacters)
{
    CRegistryStore().WriteProfileString(QStringLiteral("ViewSettings"), QStringLiteral("FontStyle"),
                                        QString(40, QLatin1Char('F')));
    MainFrameSettings settings;
    settings.Load();
    EXPECT_EQ(settings.view.FontStyle.size(), 31);
    settings.Save();
    EXPECT_EQ(CRegistryStore().GetProfileString(QStringLiteral("ViewSettings"), QStringLiteral("FontStyle")).size(), 31);
}

} // namespace
