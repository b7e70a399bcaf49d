// The line commands installed into the program's shell: their keys and places, and that they
// act on the active text view.
#include "CFakeShell.h"
#include "TestSupport.h"

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

TEST_F(EditingInstallTest, LineCommandsHaveTheirKeysAndSitInEditLines)
{
    CCommandRegistry& commands = m_shell.Commands();
    const struct { int id; const char* key; } expected[] = {
        {Cmd::EditMoveLinesUp, "Alt+Up"}, {Cmd::EditMoveLinesDown, "Alt+Down"},
        {Cmd::EditDuplicate, "Ctrl+D"}, {Cmd::EditJoinLines, "Ctrl+J"}};
    for (const auto& e : expected) {
        EXPECT_EQ(commands.CommandForShortcut(QKeySequence(QString::fromLatin1(e.key))), e.id) << e.key;
        EXPECT_EQ(commands.Info(e.id)->category, QStringLiteral("Edit"));
    }
    const QList<QAction*> lines = m_shell.Menus().Menu(MenuId::EditLines)->actions();
    for (const int id : {int(Cmd::EditMoveLinesUp), int(Cmd::EditSortUnique), int(Cmd::EditJoinLines)})
        EXPECT_TRUE(lines.contains(commands.Action(id))) << id;
}

TEST_F(EditingInstallTest, WithoutATextViewTheCommandsAreOffAndHarmless)
{
    CCommandRegistry& commands = m_shell.Commands();
    EXPECT_FALSE(commands.State(Cmd::EditMoveLinesUp).enabled);
    commands.Execute(Cmd::EditSortAscending);
    EXPECT_TRUE(commands.State(Cmd::EditAutoClose).checked);
}

TEST_F(EditingInstallTest, CaretAndTypingCommandsHaveFreeKeysAndMenuPlaces)
{
    CCommandRegistry& commands = m_shell.Commands();
    const struct { int id; const char* key; const char* menu; } expected[] = {
        {Cmd::EditSelectNextOccurrence, "Ctrl+Alt+D", MenuId::Edit},
        {Cmd::EditSelectAllOccurrences, "Ctrl+Alt+Shift+D", MenuId::Edit},
        {Cmd::EditCompleteWord, "Ctrl+Space", MenuId::Edit},
        {Cmd::EditAutoIndentBrace, nullptr, MenuId::EditFormat},
        {Cmd::EditAutoComplete, nullptr, MenuId::EditFormat},
        {Cmd::ViewHighlightOccurrences, nullptr, MenuId::View}};
    for (const auto& e : expected) {
        if (e.key) {
            EXPECT_EQ(commands.CommandForShortcut(QKeySequence(QString::fromLatin1(e.key))), e.id) << e.key;
        }
        EXPECT_TRUE(m_shell.Menus().Menu(e.menu)->actions().contains(commands.Action(e.id))) << e.id;
    }
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
        CDocTemplate docs(QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
                          [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
        CDocument* document = docs.OpenDocumentFile(QString(), false);
        shell.AddChildFrame(document->GetFrames().first());
        CMFCScintilla* editor = static_cast<CScrivelFrame*>(document->GetFrames().first())->GetView()->GetEditor();
        const QByteArray text = "key key key key key";
        editor->AddText(text.constData(), text.size());
        editor->SendScintilla(QsciScintillaBase::SCI_GOTOPOS, 1UL);
        shell.Commands().Execute(Cmd::EditSelectAllOccurrences);
        EXPECT_EQ(editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS), c.selections) << c.maxCarets;
        ASSERT_FALSE(shell.statusMessages.isEmpty());
        EXPECT_EQ(shell.statusMessages.last(), QString::fromUtf8(c.message)) << c.maxCarets;
        DocumentCleanup::DeleteAll(docs);
    }
}

} // namespace
