#include "settings/CRegistryStore.h"
#include "editor/CFileDialogEx.h"
#include "TestSupport.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
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

struct SavePreselectCase
{
    const char* name;
    int documentEncoding;
    int lineEnding;
    const char* encodingShown;
    int encodingChosen;
    const char* lineEndShown;
};

class SaveFormPreselects : public FileDialogTest, public ::testing::WithParamInterface<SavePreselectCase>
{
};

TEST_P(SaveFormPreselects, TheDocumentsOwnEncodingAndLineEnd)
{
    const SavePreselectCase& c = GetParam();
    CFileDialogEx dialog(false, QStringLiteral("name.txt"));
    dialog.SetEncoding(c.documentEncoding);
    dialog.SetLineEnding(c.lineEnding);
    dialog.OnInitDialog();
    ASSERT_NE(dialog.LineEndingBox(), nullptr);
    EXPECT_EQ(dialog.EncodingBox()->findText(QStringLiteral("Auto")), -1) << "no Auto when saving";
    EXPECT_EQ(dialog.EncodingBox()->currentText(), QString::fromLatin1(c.encodingShown));
    EXPECT_EQ(dialog.GetEncoding(), c.encodingChosen);
    EXPECT_EQ(dialog.LineEndingBox()->currentText(), QString::fromLatin1(c.lineEndShown));
    EXPECT_EQ(dialog.GetLineEnding(), c.lineEnding);
}

INSTANTIATE_TEST_SUITE_P(Documents, SaveFormPreselects, ::testing::Values(
    SavePreselectCase{"utf16le", 1, 2, "Unicode", 1, "Unix (LF)"},
    SavePreselectCase{"utf16be", 2, 0, "Unicode (Big Endian)", 2, "Windows (CRLF)"},
    SavePreselectCase{"ansi", 3, 1, "Ansi", 3, "Macintosh (CR)"},
    SavePreselectCase{"utf8", 0, 2, "UTF-8", 0, "Unix (LF)"},
    SavePreselectCase{"utf32be", 6, 0, "UTF-32 (Big Endian)", 6, "Windows (CRLF)"},
    SavePreselectCase{"never_saved", 4, 0, "UTF-8", 0, "Windows (CRLF)"},
    SavePreselectCase{"scsu_read_only_form", 7, 2, "UTF-8", 0, "Unix (LF)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(FileDialogTest, PickingAnotherEncodingAndLineEndIsReported)
{
    CFileDialogEx dialog(false, QStringLiteral("name.txt"));
    dialog.SetEncoding(1);
    dialog.SetLineEnding(2);
    dialog.OnInitDialog();
    dialog.EncodingBox()->setCurrentIndex(dialog.EncodingBox()->findText(QStringLiteral("Ansi")));
    dialog.LineEndingBox()->setCurrentIndex(0);
    EXPECT_EQ(dialog.GetEncoding(), 3);
    EXPECT_EQ(dialog.GetLineEnding(), 0);
}

TEST_F(FileDialogTest, LabelsCarryWorkingMnemonicsNotAmpersands)
{
    for (bool isOpen : {true, false}) {
        CFileDialogEx dialog(isOpen, QString());
        dialog.OnInitDialog();
        int ours = 0;
        for (QLabel* label : dialog.findChildren<QLabel*>()) {
            if (label->text() == QStringLiteral("&Encoding:") || label->text() == QStringLiteral("&View as:")
                || label->text() == QStringLiteral("&Line ends:")) {
                ++ours;
                EXPECT_NE(label->buddy(), nullptr) << label->text().toStdString()
                                                   << " would show its ampersand";
            }
        }
        EXPECT_EQ(ours, 2) << (isOpen ? "open" : "save");
    }
}

TEST_F(FileDialogTest, StartsInTheGivenFolderElseTheLastOneUsed)
{
    const QString first = TestSupport::MakeTempDir();
    const QString second = TestSupport::MakeTempDir();
    TestSupport::WriteFile(QDir(first).filePath(QStringLiteral("a.txt")), "a");
    {
        CFileDialogEx dialog(true, QString(), nullptr, first);
        EXPECT_EQ(QFileInfo(dialog.directory().absolutePath()), QFileInfo(first));
        dialog.selectFile(QDir(first).filePath(QStringLiteral("a.txt")));
        QTimer::singleShot(0, &dialog, &QDialog::accept);
        ASSERT_EQ(dialog.DoModal(), int(QDialog::Accepted));
    }
    CFileDialogEx noFolder(true, QString());
    EXPECT_EQ(QFileInfo(noFolder.directory().absolutePath()), QFileInfo(first)) << "the last folder used";
    CFileDialogEx given(true, QString(), nullptr, second);
    EXPECT_EQ(QFileInfo(given.directory().absolutePath()), QFileInfo(second));

    EXPECT_EQ(QFileInfo(CFileDialogEx::FolderOf(QDir(second).filePath(QStringLiteral("doc.txt")))), QFileInfo(second));
    EXPECT_EQ(CFileDialogEx::FolderOf(QString()), QString()) << "a document never saved has none";
    QDir(first).removeRecursively();
    EXPECT_EQ(CFileDialogEx::LastFolder(), QString()) << "a folder that is gone is not offered";
}

TEST_F(FileDialogTest, TheChosenFilterIsStoredOnAcceptAndCancelLeavesItAlone)
{
    const auto stored = [] { return CRegistryStore().GetProfileInt(QStringLiteral("Settings"), QStringLiteral("FilterIndex"), -1); };
    CRegistryStore().WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("FilterIndex"), 2);
    {
        CFileDialogEx dialog(true, QString());
        QTimer::singleShot(0, &dialog, &QDialog::reject);
        EXPECT_EQ(dialog.DoModal(), int(QDialog::Rejected));
    }
    EXPECT_EQ(stored(), 2);

    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(QDir(dir).filePath(QStringLiteral("a.txt")), "a");
    CFileDialogEx dialog(true, QString(), nullptr, dir);
    const QStringList filters = dialog.nameFilters();
    ASSERT_GE(filters.size(), 2);
    dialog.selectNameFilter(filters.at(1));
    dialog.selectFile(QDir(dir).filePath(QStringLiteral("a.txt")));
    QTimer::singleShot(0, &dialog, &QDialog::accept);
    dialog.DoModal();
    EXPECT_EQ(stored(), 1);
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

using FilterExtension = ::testing::TestWithParam<ExtensionCase>;

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
