#include "search/CFindInFilesDialog.h"
#include "search/CFindInFilesRunner.h"
#include "search/CHistoryComboBox.h"
#include "search/CFindResultsModel.h"
#include "search/CFindResultsPage.h"

#include "TestSupport.h"
#include "settings/CRegistryStore.h"

#include <QCheckBox>
#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

const QString FindReplace = QStringLiteral("FindReplace");

class FindInFilesDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_folder = TestSupport::MakeTempDir();
    }
    QString m_folder;
};

TEST_F(FindInFilesDialogTest, StartsFromTheCallersTextOrTheLastSearch)
{
    {
        CFindInFilesDialog dialog(QStringLiteral("needle"), m_folder);
        EXPECT_EQ(dialog.patterns(), QStringLiteral("*.*"));
        const FindInFilesOptions options = dialog.options();
        EXPECT_EQ(options.text, QStringLiteral("needle"));
        EXPECT_EQ(options.folder, m_folder);
        dialog.accept();
    }
    CFindInFilesDialog again{QString(), QString()};
    EXPECT_EQ(again.findCombo()->currentText(), QStringLiteral("needle"));
    EXPECT_EQ(again.folderCombo()->history(), QStringList{QDir::toNativeSeparators(m_folder)});
    EXPECT_EQ(again.options().folder, m_folder);
}

struct OptionBox
{
    const char* value;
    QCheckBox* (CFindInFilesDialog::*box)() const;
    bool FindInFilesOptions::*option;
};

class FindInFilesDialogOptions : public FindInFilesDialogTest, public ::testing::WithParamInterface<OptionBox> {};

TEST_P(FindInFilesDialogOptions, BoxShowsTheStoredValueAndStoresWhatItShows)
{
    const OptionBox& c = GetParam();
    const QString name = QString::fromLatin1(c.value);
    for (const bool stored : {false, true}) {
        CRegistryStore().WriteProfileInt(FindReplace, name, stored ? 1 : 0);
        CFindInFilesDialog dialog(QStringLiteral("x"), m_folder);
        QCheckBox* box = (dialog.*c.box)();
        EXPECT_EQ(box->isChecked(), stored);
        box->setChecked(!stored);
        EXPECT_EQ(dialog.options().*c.option, !stored);
        dialog.accept();
        EXPECT_EQ(CRegistryStore().GetProfileInt(FindReplace, name, -1), stored ? 0 : 1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Boxes, FindInFilesDialogOptions,
    ::testing::Values(
        OptionBox{"SubFolders", &CFindInFilesDialog::subFoldersBox, &FindInFilesOptions::subFolders},
        OptionBox{"MatchCase", &CFindInFilesDialog::matchCaseBox, &FindInFilesOptions::matchCase},
        OptionBox{"MatchWord", &CFindInFilesDialog::matchWordBox, &FindInFilesOptions::matchWord},
        OptionBox{"RegExp", &CFindInFilesDialog::regExpBox, &FindInFilesOptions::regExp}));

TEST_F(FindInFilesDialogTest, FiltersComeFirstAndTheChosenOneIsRemembered)
{
    CRegistryStore machine(CRegistryStore::LocalMachine);
    machine.WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.cpp;*.h"), QStringLiteral("C++ Files"));
    machine.WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.txt"), QStringLiteral("Text Files"));
    // The open and save dialogs' list: the user's own filters join the machine's.
    CRegistryStore().WriteProfileString(QStringLiteral("FileFilter"), QStringLiteral("*.rs"), QStringLiteral("Rust Files"));
    {
        CFindInFilesDialog dialog(QStringLiteral("x"), m_folder);
        CHistoryComboBox* types = dialog.typesCombo();
        ASSERT_EQ(types->fixedCount(), 3);
        EXPECT_GE(types->findText(QStringLiteral("Rust Files (*.rs)")), 0);
        const int cpp = types->findText(QStringLiteral("C++ Files (*.cpp;*.h)"));
        ASSERT_GE(cpp, 0);
        types->setCurrentIndex(cpp);
        dialog.accept();
        EXPECT_TRUE(types->history().isEmpty()); // a filter is not a typed pattern
    }
    {
        CFindInFilesDialog dialog(QStringLiteral("x"), m_folder);
        EXPECT_EQ(dialog.patterns(), QStringLiteral("*.cpp;*.h"));
        dialog.typesCombo()->setEditText(QStringLiteral("*.md *.rst"));
        dialog.accept();
    }
    CFindInFilesDialog dialog(QStringLiteral("x"), m_folder);
    EXPECT_EQ(dialog.patterns(), QStringLiteral("*.md *.rst")); // free text comes back
    EXPECT_EQ(dialog.typesCombo()->history(), QStringList{"*.md *.rst"});
}

struct RefusalCase
{
    const char* name;
    const char* text;
    bool regExp, missingFolder;
    const char* message;
};

class FindInFilesDialogRefusal : public FindInFilesDialogTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(FindInFilesDialogRefusal, BadInputIsExplainedAndTheDialogStays)
{
    const RefusalCase& c = GetParam();
    CFindInFilesDialog dialog(QString::fromUtf8(c.text), c.missingFolder ? m_folder + QStringLiteral("/gone") : m_folder);
    dialog.findCombo()->setEditText(QString::fromUtf8(c.text));
    dialog.regExpBox()->setChecked(c.regExp);
    dialog.show();
    TestSupport::ModalAnswerer answerer;
    dialog.accept();
    ASSERT_EQ(answerer.Texts().size(), 1);
    EXPECT_TRUE(answerer.Texts()[0].contains(QString::fromUtf8(c.message))) << answerer.Texts()[0].toStdString();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(dialog.findCombo()->history().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, FindInFilesDialogRefusal,
    ::testing::Values(RefusalCase{"EmptyText", "", false, false, "Please provide a search value"},
                      RefusalCase{"MissingFolder", "x", false, true, "does not exist"},
                      RefusalCase{"BrokenExpression", "a(b", true, false, "regular expression is not valid"}),
    [](const ::testing::TestParamInfo<RefusalCase>& info) { return std::string(info.param.name); });

TEST_F(FindInFilesDialogTest, RunnerFillsTheOutputBarEndToEnd)
{
    TestSupport::WriteFile(m_folder + QStringLiteral("/a.txt"), "one needle\ntwo\nneedle three\n");
    TestSupport::WriteFile(m_folder + QStringLiteral("/sub/b.txt"), "\tneedle\n");
    TestSupport::WriteFile(m_folder + QStringLiteral("/c.bin"), QByteArray("needle\0", 7));
    CFindResultsPage bar;
    CFindInFilesRunner runner(&bar);
    QSignalSpy finished(&runner, &CFindInFilesRunner::finished);
    FindInFilesOptions options;
    options.folder = m_folder;
    options.text = QStringLiteral("needle");
    options.subFolders = true;
    ASSERT_TRUE(runner.start(options));
    EXPECT_TRUE(bar.isStopVisible());
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_FALSE(bar.isStopVisible());
    CFindResultsModel* model = bar.findResultsModel();
    ASSERT_EQ(model->rowCount(), 3);
    QStringList rows;
    for (int i = 0; i < model->rowCount(); ++i)
        rows.append(model->index(i).data().toString());
    rows.sort();
    const QString a = QDir::toNativeSeparators(m_folder + QStringLiteral("/a.txt"));
    const QString b = QDir::toNativeSeparators(m_folder + QStringLiteral("/sub/b.txt"));
    EXPECT_EQ(rows, (QStringList{a + QStringLiteral("(1,4): one needle"), a + QStringLiteral("(3,0): needle three"),
                                 b + QStringLiteral("(1,4): \tneedle")}));
    EXPECT_TRUE(bar.findStatusText().contains(QStringLiteral("3 matches in 2 of 2 files searched")))
        << bar.findStatusText().toStdString();
    EXPECT_TRUE(bar.findStatusText().contains(QStringLiteral("1 binary")));
}


} // namespace
