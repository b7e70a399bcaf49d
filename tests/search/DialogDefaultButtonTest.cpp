#include "DefaultButtonCheck.h"
#include "TestSupport.h"

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

struct DefaultCase
{
    const char* name;
    std::function<QDialog*(CSearchCommands*)> make;
    const char* button;
};

void PrintTo(const DefaultCase& c, std::ostream* out)
{
    *out << c.name;
}

class DialogDefaultButton : public ::testing::TestWithParam<DefaultCase>
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

// Enter typed where the dialog opens, in its first box, presses the dialog's own
// button: a browse button beside a box must not take it over.
TEST_P(DialogDefaultButton, EnterInTheFirstBoxPressesIt)
{
    std::unique_ptr<QDialog> dialog(GetParam().make(m_commands));
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(TestSupport::ButtonsPressedByEnter(*dialog), QStringList{QString::fromUtf8(GetParam().button)});
}

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogDefaultButton, ::testing::Values(
    DefaultCase{"find", [](CSearchCommands* c) -> QDialog* { return new CFindDialog(c, QStringLiteral("x")); }, "&Find Next"},
    DefaultCase{"replace", [](CSearchCommands* c) -> QDialog* { return new CReplaceDialog(c, QStringLiteral("x")); }, "&Find Next"},
    DefaultCase{"find_in_files", [](CSearchCommands*) -> QDialog* {
        return new CFindInFilesDialog(QStringLiteral("x"), TestSupport::MakeTempDir()); }, "&Find"},
    DefaultCase{"replace_preview", [](CSearchCommands*) -> QDialog* {
        return new CReplacePreviewDialog(QStringLiteral("x"), QStringLiteral("y"),
                                          {{QStringLiteral("/a/one.txt"), 1, 0, QStringLiteral("x")}}); }, "&Replace"}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
