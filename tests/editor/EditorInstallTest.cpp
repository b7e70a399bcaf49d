// The editor installed into the small test shell: where its commands land, what they
// show with and without a text view, and what a view gets from its host.
#include "CFakeShell.h"
#include "TestSupport.h"
#include "TextDocuments.h"
#include "MenuTexts.h"

#include "editor/CEditorCommands.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "syntax/CSyntaxParserList.h"
#include "DocumentCleanup.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QSignalSpy>
#include <QToolBar>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;

class EditorInstallTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_parsers = std::make_unique<CSyntaxParserList>(TestSupport::MakeTempDir());
        m_commands = InstallEditor(m_shell, *m_parsers);
        m_template = TextDocuments::MakeTemplate(&m_options);
        // What the main window does with every new frame.
        QObject::connect(m_template.get(), &CDocTemplate::frameCreated,
                         [this](CChildFrame* frame) { m_shell.AddChildFrame(frame); });
        QObject::connect(m_template.get(), &CDocTemplate::documentCreated, &m_shell.Events(),
                         &CShellEvents::documentCreated);
    }
    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    CScrivelFrame* OpenNew()
    {
        return TextDocuments::NewFrame(*m_template);
    }
    bool Enabled(int id) { return m_shell.Commands().State(id).enabled; }
    QStringList Texts(const QString& menuId) { return MenuTexts(m_shell.Menus().Menu(menuId)->actions()); }

    CFakeShell m_shell;
    std::unique_ptr<CSyntaxParserList> m_parsers;
    CEditorCommands* m_commands = nullptr;
    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
};

// Menus as the user has always seen them.
struct PlaceCase
{
    const char* menu;
    QStringList texts;
};

class EditorMenuTest : public EditorInstallTest, public ::testing::WithParamInterface<PlaceCase>
{
};

TEST_P(EditorMenuTest, CommandsLandInTheirMenusInOrder)
{
    EXPECT_EQ(Texts(QString::fromLatin1(GetParam().menu)), GetParam().texts);
}

INSTANTIATE_TEST_SUITE_P(
    Menus, EditorMenuTest,
    ::testing::Values(
        PlaceCase{MenuId::EditInsert, {"Date", "Time", "File Name"}},
        PlaceCase{MenuId::EditLines,
                  {"Cut Line", "Copy Line", "Delete Line", "Delete Word", "Delete to End of Line", "-",
                   "Swap Lines"}},
        PlaceCase{MenuId::EditFormat,
                  {"Upper Case", "Lower Case", "-", "Indent Right\tTab", "Indent Left\tShift+Tab", "-",
                   "Comment", "UnComment", "-", "Tabs to Spaces", "Spaces to Tabs", "Trim Trailing Spaces"}},
        PlaceCase{MenuId::Search,
                  {"Goto...", "-", "Toggle Bookmark", "Next Bookmark", "Previous Bookmark",
                   "Clear Bookmarks", "-", "&Back", "&Forward"}}),
    [](const auto& info) { return std::string(QString::fromLatin1(info.param.menu).remove('.').toLatin1()); });

TEST_F(EditorInstallTest, TheEditMenuAndTheToolbarHoldTheEditingCommands)
{
    const QStringList edit = Texts(MenuId::Edit);
    const QStringList head{"Undo", "Redo", "-", "Cut", "Copy", "Paste", "Delete\tDel", "Cut Append",
                           "Copy Append", "-", "Select All", "Select Word", "Select Line", "-",
                           "&Insert", "&Lines", "F&ormat", "-", "Create template from Selection"};
    EXPECT_EQ(edit, head);
    using namespace Cmd;
    EXPECT_EQ(m_shell.Menus().ToolBarCommands(ToolBarId::Standard),
              (QList<int>{EditCut, EditCopy, EditPaste, 0, EditUndo, EditRedo, 0, EditGoto, BookmarkToggle,
                          BookmarkNext, BookmarkPrevious, 0, NavigateBack, NavigateForward, 0, ViewWordWrap,
                          ViewWhitespace, ViewLineEndings, ViewLineNumbers, ViewFont}));
}

TEST_F(EditorInstallTest, EditingCommandsAreGreyedWithoutATextViewAndLiveWithOne)
{
    const int editing[] = {Cmd::EditSelectAll, Cmd::EditUpperCase, Cmd::EditComment, Cmd::BookmarkToggle,
                           Cmd::EditGoto, Cmd::EditSwapLines};
    for (const int id : editing)
        EXPECT_FALSE(Enabled(id)) << id;
    // The toggles and the font work on the settings alone.
    EXPECT_TRUE(Enabled(Cmd::ViewWordWrap));
    EXPECT_TRUE(Enabled(Cmd::ViewFont));
    EXPECT_FALSE(Enabled(Cmd::NavigateBack));

    ASSERT_NE(OpenNew(), nullptr);
    for (const int id : editing)
        EXPECT_TRUE(Enabled(id)) << id;
    EXPECT_FALSE(Enabled(Cmd::EditUndo)) << "nothing typed yet";
    EXPECT_FALSE(Enabled(Cmd::EditClear)) << "nobody carries out Delete";
}

TEST_F(EditorInstallTest, ANewViewWorksByTheShellsSettingsAndParsers)
{
    m_shell.Settings().view.LineNumbers = 1;
    CScrivelFrame* frame = OpenNew();
    ASSERT_NE(frame, nullptr);
    CScrivelView* view = frame->GetView();
    EXPECT_EQ(view->Host(), m_commands);
    EXPECT_EQ(&view->Settings(), &m_shell.Settings().view) << "one source of truth";
    EXPECT_GT(view->GetEditor()->SendScintilla(Sci::SCI_GETMARGINWIDTHN, CMFCScintilla::LineNumberMargin), 0);
    EXPECT_EQ(frame->ParserList(), m_parsers.get());
}

TEST_F(EditorInstallTest, TheContextMenuSharesTheActionsAndKeepsItsOwnDelete)
{
    CScrivelFrame* frame = OpenNew();
    ASSERT_NE(frame, nullptr);
    std::unique_ptr<QMenu> menu(frame->GetView()->CreateContextMenu());
    EXPECT_EQ(MenuTexts(menu->actions()), (QStringList{"Undo", "Redo", "-", "Cut", "Copy", "Paste", "Delete", "-", "Cut Append",
                                  "Copy Append", "-", "Upper Case", "Lower Case", "-", "Insert", "-",
                                  "Select All", "-", "Create template from Selection"}));
    QAction* remove = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->text() == QStringLiteral("Delete"))
            remove = action;
    }
    ASSERT_NE(remove, nullptr);
    EXPECT_EQ(remove->data().toInt(), int(Cmd::CreateTemplateFromSelection));
    EXPECT_FALSE(remove->isEnabled()) << "no selection";
    EXPECT_TRUE(menu->actions().contains(m_shell.Commands().Action(Cmd::EditUndo)));
}

// The document tells when it is read and written, in the order a listener needs.
TEST_F(EditorInstallTest, TheTextDocumentAnnouncesItsLoadAndItsSaves)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("a.txt"));
    TestSupport::WriteFile(path, "old\n");
    QStringList events;
    QObject::connect(&m_shell.Events(), &CShellEvents::documentCreated, [&](CDocument* document) {
        events << QStringLiteral("created");
        QObject::connect(document, &CDocument::loaded, [&](const QString& p) { events << "loaded " + p; });
        QObject::connect(document, &CDocument::aboutToSave, [&](const QString& p) {
            // The old file is still there to be copied away.
            events << "about " + QString::fromLatin1(TestSupport::ReadFile(p));
        });
        QObject::connect(document, &CDocument::saved, [&](const QString& p) {
            events << "saved " + QString::fromLatin1(TestSupport::ReadFile(p));
        });
    });
    auto* document = qobject_cast<CScrivelDoc*>(m_template->OpenDocumentFile(path, false));
    ASSERT_NE(document, nullptr);
    document->GetEditor()->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(events, (QStringList{"created", "loaded " + path, "about old\n", "saved old\nnew"}));
}

} // namespace
