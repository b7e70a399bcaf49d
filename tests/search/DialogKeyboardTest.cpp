#include "DefaultButtonCheck.h"
#include "MnemonicCheck.h"
#include "TestSupport.h"

#include "editor/CFileDialogEx.h"
#include "editor/CGotoDialog.h"
#include "search/CFindDialog.h"
#include "search/CFindInFilesDialog.h"
#include "search/CReplaceDialog.h"
#include "search/CReplacePreviewDialog.h"
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
    // The button Enter presses where the dialog opens; Qt's file dialogs take Enter
    // themselves and are not asked.
    const char* enter = nullptr;
};

void PrintTo(const DialogCase& c, std::ostream* out)
{
    *out << c.name;
}

class DialogKeyboard : public ::testing::TestWithParam<DialogCase>
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_window = std::make_unique<QWidget>();
        m_commands = new CSearchCommands(m_window.get(), [] { return nullptr; });
    }
    std::unique_ptr<QDialog> Make() const
    {
        std::unique_ptr<QDialog> dialog(GetParam().make(m_commands));
        if (auto* file = qobject_cast<CFileDialogEx*>(dialog.get()))
            file->OnInitDialog();
        return dialog;
    }
    std::unique_ptr<QWidget> m_window;
    CSearchCommands* m_commands = nullptr;
};

class DialogMnemonics : public DialogKeyboard {};
class DialogEnter : public DialogKeyboard {};

TEST_P(DialogMnemonics, AreUniqueAndWork)
{
    std::unique_ptr<QDialog> dialog = Make();
    ASSERT_NE(dialog, nullptr);
    dialog->show();
    EXPECT_EQ(MnemonicCheck::Problems(*dialog), QStringList());
}

// Enter typed where the dialog opens, in its first box, presses the dialog's own
// button: a browse button beside a box must not take it over.
TEST_P(DialogEnter, InTheFirstBoxPressesTheDefault)
{
    std::unique_ptr<QDialog> dialog = Make();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(TestSupport::ButtonsPressedByEnter(*dialog), QStringList{QString::fromUtf8(GetParam().enter)});
}

const DialogCase kDialogs[] = {
    {"find", [](CSearchCommands* c) -> QDialog* { return new CFindDialog(c, QStringLiteral("x")); }, "&Find Next"},
    {"replace", [](CSearchCommands* c) -> QDialog* { return new CReplaceDialog(c, QStringLiteral("x")); }, "&Find Next"},
    {"find_in_files", [](CSearchCommands*) -> QDialog* {
        return new CFindInFilesDialog(QStringLiteral("x"), TestSupport::MakeTempDir()); }, "&Find"},
    {"replace_preview", [](CSearchCommands*) -> QDialog* {
        return new CReplacePreviewDialog(QStringLiteral("x"), QStringLiteral("y"),
                                         {{QStringLiteral("/a/one.txt"), 1, 0, QStringLiteral("x")}}); }, "&Replace"},
    {"go_to", [](CSearchCommands*) -> QDialog* { return new CGotoDialog(nullptr, 100); }, "OK"},
    {"open", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(true, QString()); }},
    {"save_as", [](CSearchCommands*) -> QDialog* { return new CFileDialogEx(false, QStringLiteral("a.txt")); }},
};

std::vector<DialogCase> WithDefault()
{
    std::vector<DialogCase> cases;
    for (const DialogCase& c : kDialogs) {
        if (c.enter)
            cases.push_back(c);
    }
    return cases;
}

const auto kName = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Dialogs, DialogMnemonics, ::testing::ValuesIn(kDialogs), kName);
INSTANTIATE_TEST_SUITE_P(Dialogs, DialogEnter, ::testing::ValuesIn(WithDefault()), kName);

} // namespace
