#include "settings/CRegistryStore.h"
#include "editor/CFileDialogEx.h"
#include "TestSupport.h"

#include <QComboBox>
#include <QDir>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

class FileDialogTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
};

TEST_F(FileDialogTest, OpenFormOffersAutoAndTheViewAsBox)
{
    CFileDialogEx dialog(true, QString());
    dialog.OnInitDialog();
    ASSERT_NE(dialog.ViewAsBox(), nullptr);
    EXPECT_EQ(dialog.LineEndingBox(), nullptr);
    EXPECT_EQ(dialog.EncodingBox()->count(), 5);
    EXPECT_EQ(dialog.EncodingBox()->itemText(4), QStringLiteral("Auto"));
    EXPECT_EQ(dialog.EncodingBox()->currentIndex(), 4);
    EXPECT_EQ(dialog.ViewAsBox()->currentText(), QStringLiteral("Auto"));
}

TEST_F(FileDialogTest, HexViewGreysTheEncodingBoxAndTextRestoresIt)
{
    CFileDialogEx dialog(true, QString());
    dialog.OnInitDialog();
    dialog.ViewAsBox()->setCurrentIndex(1);
    EXPECT_FALSE(dialog.EncodingBox()->isEnabled());
    EXPECT_EQ(dialog.GetViewAs(), 1);
    dialog.ViewAsBox()->setCurrentIndex(0);
    EXPECT_TRUE(dialog.EncodingBox()->isEnabled());
    EXPECT_EQ(dialog.GetViewAs(), 0);
}

TEST_F(FileDialogTest, SaveFormStartsAtAnsiWhateverTheDocumentWas)
{
    CFileDialogEx dialog(false, QStringLiteral("name.txt"));
    dialog.SetEncoding(1);
    dialog.SetLineEnding(2);
    dialog.OnInitDialog();
    ASSERT_NE(dialog.LineEndingBox(), nullptr);
    EXPECT_EQ(dialog.EncodingBox()->count(), 4) << "no Auto when saving";
    EXPECT_EQ(dialog.GetEncoding(), 3);
    EXPECT_EQ(dialog.EncodingBox()->currentText(), QStringLiteral("Ansi"));
    EXPECT_EQ(dialog.LineEndingBox()->currentText(), QStringLiteral("Unix (LF)"));
    dialog.EncodingBox()->setCurrentIndex(0);
    dialog.LineEndingBox()->setCurrentIndex(0);
    EXPECT_EQ(dialog.GetEncoding(), 0);
    EXPECT_EQ(dialog.GetLineEnding(), 0);
}

TEST_F(FileDialogTest, CancellingLeavesTheFilterIndexAlone)
{
    CRegistryStore().WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("FilterIndex"), 2);
    CFileDialogEx dialog(true, QString());
    QTimer::singleShot(0, &dialog, &QDialog::reject);
    EXPECT_EQ(dialog.DoModal(), int(QDialog::Rejected));
    EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("Settings"), QStringLiteral("FilterIndex"), -1), 2);
}

TEST_F(FileDialogTest, AcceptingStoresTheChosenFilter)
{
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(QDir(dir).filePath(QStringLiteral("a.txt")), "a");
    CFileDialogEx dialog(true, QString(), nullptr, dir);
    const QStringList filters = dialog.nameFilters();
    ASSERT_GE(filters.size(), 2);
    dialog.selectNameFilter(filters.at(1));
    dialog.selectFile(QDir(dir).filePath(QStringLiteral("a.txt")));
    QTimer::singleShot(0, &dialog, &QDialog::accept);
    dialog.DoModal();
    EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("Settings"), QStringLiteral("FilterIndex"), -1), 1);
}

TEST_F(FileDialogTest, FiltersComeFromTheMachinesListWhenThereIsOne)
{
    CRegistryStore machine(CRegistryStore::LocalMachine);
    machine.WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.py;*.pyw"), QStringLiteral("Python"));
    const QStringList machineOnly = CFileDialogEx::BuildFilters();
    ASSERT_EQ(machineOnly.size(), 2);
    EXPECT_EQ(machineOnly.front(), QStringLiteral("Python (*.py *.pyw)"));
    EXPECT_TRUE(machineOnly.back().endsWith(QStringLiteral("(*)"))) << "all files come last";
    machine.WriteProfileString(QStringLiteral("FileFilter"), QString(), QString());
    EXPECT_GT(CFileDialogEx::BuildFilters().size(), 2) << "a first start seeds the user's own list";
}

struct ExtensionCase
{
    const char* filter;
    const char* extension;
};

class FilterExtension : public ::testing::TestWithParam<ExtensionCase>
{
};

TEST_P(FilterExtension, TakesTheTextAfterTheLastDot)
{
    EXPECT_EQ(CFileDialogEx::ExtensionOfFilter(QString::fromLatin1(GetParam().filter)),
              QString::fromLatin1(GetParam().extension));
}

INSTANTIATE_TEST_SUITE_P(Filters, FilterExtension, ::testing::Values(
    ExtensionCase{"Text Files (*.txt)", "txt"},
    ExtensionCase{"C/C++ Files (*.c *.cpp *.h)", "h"},
    ExtensionCase{"Scripts (*.sh *.bash)", "bash"},
    ExtensionCase{"All Files (*)", ""},
    ExtensionCase{"Makefile", ""}));

} // namespace
