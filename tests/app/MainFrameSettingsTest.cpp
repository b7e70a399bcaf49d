#include "app/AppPaths.h"
#include "app/CRegistryStore.h"
#include "app/MainFrameSettings.h"
#include "TestSupport.h"

#include <QSettings>
#include <gtest/gtest.h>

namespace {

class MainFrameSettingsTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
};

TEST_F(MainFrameSettingsTest, NothingStoredGivesTheDefaults)
{
    MainFrameSettings settings;
    settings.Load();
    const ViewSettings& v = settings.view;
    EXPECT_EQ(v.WordWrap, 0);
    EXPECT_EQ(v.FontSize, 10);
    EXPECT_EQ(v.FontStyle, QStringLiteral("Courier New"));
    EXPECT_EQ(v.LargeTBIcons, 1);
    EXPECT_EQ(v.TabAsSpaces, 1);
    EXPECT_EQ(v.TabWidth, 4);
    EXPECT_EQ(v.BraceBadColour, 255u);
    EXPECT_EQ(v.BraceHighlight, 255u);
    EXPECT_EQ(v.CaretLineColour, 15651521u);
    EXPECT_EQ(v.CaretLineTransparency, 255);
    EXPECT_EQ(settings.Enabled, 1);
    EXPECT_EQ(settings.Versions, 1);
    EXPECT_EQ(settings.ReuseWindows, 1);
    EXPECT_EQ(settings.ResetUndoOnSave, 1);
    EXPECT_EQ(settings.BackupFolder, AppPaths::DefaultBackupFolder());
    EXPECT_TRUE(settings.BackupFolder.startsWith(TestSupport::IsolatedRoot()));
}

TEST_F(MainFrameSettingsTest, FirstCloseWritesEveryValue)
{
    MainFrameSettings settings;
    settings.Load();
    settings.Save();
    QSettings file(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Brackwyn"),
                   QStringLiteral("Morvane"));
    const QStringList expected = {
        QStringLiteral("Settings/MDITabInActive"),
        QStringLiteral("ViewSettings/WordWrap"), QStringLiteral("ViewSettings/Whitespace"),
        QStringLiteral("ViewSettings/LineEndings"), QStringLiteral("ViewSettings/CaretLine"),
        QStringLiteral("ViewSettings/LineNumbers"), QStringLiteral("ViewSettings/FontSize"),
        QStringLiteral("ViewSettings/FontBold"), QStringLiteral("ViewSettings/FontItalic"),
        QStringLiteral("ViewSettings/CodeFolding"), QStringLiteral("ViewSettings/BlockSelect"),
        QStringLiteral("ViewSettings/LargeTBIcons"), QStringLiteral("ViewSettings/FontStyle"),
        QStringLiteral("ViewSettings/TabAsSpaces"), QStringLiteral("ViewSettings/TabGuides"),
        QStringLiteral("ViewSettings/TabWidth"), QStringLiteral("ViewSettings/MatchBracket"),
        QStringLiteral("ViewSettings/BraceBadColour"), QStringLiteral("ViewSettings/BraceHighlight"),
        QStringLiteral("ViewSettings/CaretLineColour"), QStringLiteral("ViewSettings/CaretLineTransparency"),
        QStringLiteral("PrintSettings/PrintHeader"), QStringLiteral("PrintSettings/PrintFooter"),
        QStringLiteral("PrintSettings/PrintLineNumbers"),
        QStringLiteral("BackupSettings/DeleteOnExit"), QStringLiteral("BackupSettings/Enabled"),
        QStringLiteral("BackupSettings/Versions"), QStringLiteral("BackupSettings/BackupFolder"),
        QStringLiteral("OutputSettings/ReuseWindows"), QStringLiteral("EditSettings/ResetUndoOnSave")};
    for (const QString& key : expected)
        EXPECT_TRUE(file.contains(key)) << key.toStdString();
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

TEST_F(MainFrameSettingsTest, StoredBackupFolderIsKept)
{
    CRegistryStore().WriteProfileString(QStringLiteral("BackupSettings"), QStringLiteral("BackupFolder"),
                                        QStringLiteral("/srv/backups"));
    MainFrameSettings settings;
    settings.Load();
    EXPECT_EQ(settings.BackupFolder, QStringLiteral("/srv/backups"));
}

} // namespace
