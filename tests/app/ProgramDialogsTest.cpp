#include "MainFrameFixture.h"
#include "MnemonicCheck.h"

#include <QDialog>
#include <QPointer>
#include <QTimer>

namespace {

class ProgramDialogsTest : public MainFrameFixture
{
};

// The program's own modal sheets and dialogs, opened as the menus open them: each page
// uses a mnemonic letter once, and no label shows a stray ampersand.
TEST_F(ProgramDialogsTest, EverySheetPageUsesEachMnemonicOnce)
{
    StartEmpty();
    ASSERT_NE(OpenText("a.txt"), nullptr);
    const struct
    {
        int id;
        const char* name;
    } dialogs[] = {
        {Cmd::DocumentProperties, "Document Properties"},
        {Cmd::CustomiseToolBars, "Customise"},
        {Cmd::CompareFiles, "Compare Files"},
    };
    for (const auto& entry : dialogs) {
        QStringList problems;
        bool seen = false;
        QTimer::singleShot(0, [&] {
            QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            seen = true;
            problems = MnemonicCheck::ProblemsOnEveryPage(*dialog);
            dialog->reject();
        });
        Run(entry.id);
        EXPECT_TRUE(seen) << entry.name << " opened no modal dialog";
        EXPECT_EQ(problems, QStringList()) << entry.name;
    }
}

} // namespace
