// The line commands installed into the program's shell: their keys and places, and that they
// act on the active text view.
#include "CFakeShell.h"
#include "TestSupport.h"
#include "TextDocuments.h"

#include "DocumentCleanup.h"
#include "app/Subsystems.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "settings/CRegistryStore.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"

#include <QAction>
#include <QMenu>
#include <gtest/gtest.h>
#include <memory>

namespace {

class EditingInstallTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        InstallSubsystems(m_shell);
    }
    CFakeShell m_shell;
};

TEST_F(EditingInstallTest, CommandsHaveTheirKeysCategoriesAndMenuPlaces)
{
    CCommandRegistry& commands = m_shell.Commands();
    // A null key, category or menu is not checked.
    const struct { int id; const char* key; const char* category; const char* menu; } expected[] = {
        {Cmd::EditMoveLinesUp, "Alt+Up", "Edit", MenuId::EditLines},
        {Cmd::EditMoveLinesDown, "Alt+Down", "Edit", nullptr},
        {Cmd::EditDuplicate, "Ctrl+D", "Edit", nullptr},
        {Cmd::EditJoinLines, "Ctrl+J", "Edit", MenuId::EditLines},
        {Cmd::EditSortUnique, nullptr, nullptr, MenuId::EditLines},
        {Cmd::EditSelectNextOccurrence, "Ctrl+Alt+D", nullptr, MenuId::Edit},
        {Cmd::EditSelectAllOccurrences, "Ctrl+Alt+Shift+D", nullptr, MenuId::Edit},
        {Cmd::EditCompleteWord, "Ctrl+Space", nullptr, MenuId::Edit},
        {Cmd::EditAutoIndentBrace, nullptr, nullptr, MenuId::EditFormat},
        {Cmd::EditAutoComplete, nullptr, nullptr, MenuId::EditFormat},
        {Cmd::ViewHighlightOccurrences, nullptr, nullptr, MenuId::View}};
    for (const auto& e : expected) {
        if (e.key) {
            EXPECT_EQ(commands.CommandForShortcut(QKeySequence(QString::fromLatin1(e.key))), e.id) << e.key;
        }
        if (e.category) {
            EXPECT_EQ(commands.Info(e.id)->category, QLatin1String(e.category)) << e.id;
        }
        if (e.menu) {
            EXPECT_TRUE(m_shell.Menus().Menu(e.menu)->actions().contains(commands.Action(e.id))) << e.id;
        }
    }
}

TEST_F(EditingInstallTest, WithoutATextViewTheCommandsAreOffAndHarmless)
{
    CCommandRegistry& commands = m_shell.Commands();
    EXPECT_FALSE(commands.State(Cmd::EditMoveLinesUp).enabled);
    commands.Execute(Cmd::EditSortAscending);
    EXPECT_TRUE(commands.State(Cmd::EditAutoClose).checked);
}

TEST_F(EditingInstallTest, TypingHelpSettingsAreKeptAcrossARestart)
{
    CCommandRegistry& commands = m_shell.Commands();
    EXPECT_TRUE(commands.State(Cmd::EditAutoIndentBrace).checked);
    EXPECT_FALSE(commands.State(Cmd::EditAutoComplete).checked);
    EXPECT_TRUE(commands.State(Cmd::ViewHighlightOccurrences).checked);
    for (const int id : {int(Cmd::EditAutoIndentBrace), int(Cmd::EditAutoComplete), int(Cmd::ViewHighlightOccurrences)})
        commands.Execute(id);
    Q_EMIT m_shell.Events().saveSettings();

    CFakeShell again;
    InstallSubsystems(again);
    EXPECT_FALSE(again.Commands().State(Cmd::EditAutoIndentBrace).checked);
    EXPECT_TRUE(again.Commands().State(Cmd::EditAutoComplete).checked);
    EXPECT_FALSE(again.Commands().State(Cmd::ViewHighlightOccurrences).checked);
}

struct LimitCase
{
    int maxCarets;
    long selections;
    const char* message;
};

// Select All Occurrences in a text view under the limit the settings give: what it selects
// and what the status bar says.
TEST(EditingInstallLimit, SelectAllOccurrencesSaysWhenTheLimitCutItShort)
{
    const LimitCase cases[] = {
        {3, 3, "Selected the first 3 of 5 occurrences; Replace reaches them all"},
        {100, 5, "5 occurrences selected"},
    };
    for (const LimitCase& c : cases) {
        TestSupport::ClearSettings();
        CRegistryStore().WriteProfileInt(QStringLiteral("EditSettings"), QStringLiteral("MaxCarets"), c.maxCarets);
        CFakeShell shell;
        InstallSubsystems(shell);
        const auto docs = TextDocuments::MakeTemplate(nullptr);
        CScrivelFrame* frame = TextDocuments::NewFrame(*docs);
        ASSERT_NE(frame, nullptr);
        shell.AddChildFrame(frame);
        CMFCScintilla* editor = frame->GetView()->GetEditor();
        const QByteArray text = "key key key key key";
        editor->AddText(text.constData(), text.size());
        editor->SendScintilla(QsciScintillaBase::SCI_GOTOPOS, 1UL);
        shell.Commands().Execute(Cmd::EditSelectAllOccurrences);
        EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), c.selections) << c.maxCarets;
        ASSERT_FALSE(shell.statusMessages.isEmpty());
        EXPECT_EQ(shell.statusMessages.last(), QString::fromUtf8(c.message)) << c.maxCarets;
        DocumentCleanup::DeleteAll(*docs);
    }
}

} // namespace
