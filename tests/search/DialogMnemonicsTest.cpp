#include "MnemonicCheck.h"
#include "TestSupport.h"

#include "editor/CFileDialogEx.h"
#include "editor/CGotoDialog.h"
#include "search/CFindDialog.h"
#include "search/CFindInFilesDialog.h"
#include "search/CReplaceDialog.h"
#include "search/CSearchCommands.h"

#include <QDialog>

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct DialogCase
{
    const char* name;
    std::function<QDialog*(CSearchCommands*)> make;
};

class DialogMnemonics : public ::testing::TestWithParam<DialogCase>
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_window = std::make_unique<QWidget>();
        m_commands = new CSearchCommands(m_window.get(), [] { return nullptr; });
    }
    std::unique_ptr<QWidget> m_window;
    CSearchCommands* m_commands = nullptr;
};

TEST_P(DialogMnemonics, AreUniqueAndWork)
{
    std::unique_ptr<QDialog> dialog(GetParam().make(m_commands));
    ASSERT_NE(dialog, nullptr);
    if (auto* file = qobject_cast<CFileDialogEx*>(dialog.get()))
        file->OnInitDialog();
    dialog->show();
    EXPECT_EQ(MnemonicCheck::Problems(*dialog), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogMnemonics, ::testing::Values(
    DialogCase{"find", [](CSearchCommands* c) -> QDialog* { return new CFindDialog(c, QString()); }},
    DialogCase{"replace", [](CSearchCommands* c) -> QDialog* { return new CReplaceDialog(c, QString()); }},
    DialogCase{"find_in_files", [](CSearchCommands*) -> QDialog* { return new CFindInFilesDialog(QString(), QString()); }},
    DialogCase{"go_to", [](CSearchCommands*) -> QDialog* { return new CGotoDialog(nullptr, 100); }},
    DialogCase{"open", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(true, QString()); }},
    DialogCase{"save_as", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(false, QStringLiteral("a.txt")); }}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
