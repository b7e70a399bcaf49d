// The file properties dialog on real files: what it shows, and the read-only flag that
// OK writes and Cancel leaves alone.
#include "explorer/CFileInfoDialog.h"
#include "TestSupport.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

TEST(FileInfoDialog, ShowsTheFileAndGreysHidden)
{
    const QString dir = TestSupport::MakeTempDir();
    const QString path = dir + QStringLiteral("/notes.txt");
    TestSupport::WriteFile(path, "twelve bytes");
    CFileInfoDialog dialog(path);
    EXPECT_EQ(dialog.windowTitle(), "File Properties");
    EXPECT_EQ(dialog.FieldText("name"), "notes.txt");
    EXPECT_EQ(dialog.FieldText("location"), QDir::toNativeSeparators(dir));
    EXPECT_EQ(dialog.FieldText("size"), "12 (bytes)");
    EXPECT_NE(dialog.FieldText("modified"), "Unknown");
    EXPECT_FALSE(dialog.HiddenBox()->isChecked());
    EXPECT_FALSE(dialog.HiddenBox()->isEnabled());

    CFileInfoDialog missing(dir + QStringLiteral("/gone.txt"));
    for (const char* field : {"name", "type", "location", "size", "created", "modified", "accessed"})
        EXPECT_EQ(missing.FieldText(field), "Unknown") << field;
    EXPECT_FALSE(missing.ReadOnlyBox()->isEnabled());
}

TEST(FileInfoDialog, OkWritesTheReadOnlyFlagAndCancelDoesNot)
{
    const QString path = TestSupport::MakeTempDir() + QStringLiteral("/f.txt");
    TestSupport::WriteFile(path, "x");
    {
        CFileInfoDialog dialog(path);
        dialog.ReadOnlyBox()->click();
        dialog.reject();
    }
    EXPECT_TRUE(QFile::permissions(path) & QFileDevice::WriteOwner);
    {
        CFileInfoDialog dialog(path);
        dialog.ReadOnlyBox()->click();
        dialog.accept();
    }
    EXPECT_FALSE(QFile::permissions(path) & QFileDevice::WriteOwner);
    {
        CFileInfoDialog dialog(path);
        EXPECT_TRUE(dialog.ReadOnlyBox()->isChecked());
        dialog.ReadOnlyBox()->click();
        dialog.accept();
    }
    EXPECT_TRUE(QFile::permissions(path) & QFileDevice::WriteOwner);
}

} // namespace
