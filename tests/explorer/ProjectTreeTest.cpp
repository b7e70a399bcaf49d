// The Project Explorer installed into a fake main window: files of loaded and saved
// documents, clicks and the item menu, the workspace commands, the ".spf" route and
// the question at exit; saved files read back from disk.
#include "explorer/CExplorerBar.h"
#include "explorer/CSolutionBarProjTree.h"
#include "explorer/ExplorerCommandIds.h"
#include "explorer/ExplorerInstall.h"
#include "explorer/ExplorerPageKind.h"
#include "editor/CScrivelDoc.h"
#include "hex/CHexDocument.h"
#include "CFakeShell.h"
#include "TestSupport.h"
#include "TreeShape.h"

#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

class ProjectTreeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        InstallExplorer(m_shell);
        m_tree = ProjectTree(m_shell);
        ASSERT_NE(m_tree, nullptr);
        m_bar = m_shell.Window()->findChild<CExplorerBar*>();
        m_tree->askSaveBeforeClose = [this] { ++m_questions; return m_answerYes; };
        m_tree->askSavePath = [this] { return m_savePath; };
        m_tree->showMessage = [this](const QString& text) { m_messages << text; };
        m_tree->showProperties = [this](const QString& path) { m_propertiesOf << path; };
        m_shell.Window()->resize(600, 500);
        m_shell.Window()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_shell.Window()));
        m_bar->ShowPage(ExplorerPageKind::Project);
    }
    void TearDown() override
    {
        for (CDocument* document : m_documents)
            delete document;
    }

    QString Path(const QString& name) const { return m_dir + QLatin1Char('/') + name; }
    CWorkspace& Ws() { return m_tree->Workspace(); }
    QString TreeShape() { return Shape(Ws().Root()); }
    template <typename Doc>
    Doc* Created()
    {
        auto* document = new Doc();
        m_documents << document;
        Q_EMIT m_shell.Events().documentCreated(document);
        return document;
    }
    void Mouse(QEvent::Type type, CTreeNode* node, Qt::MouseButton button = Qt::LeftButton)
    {
        m_tree->scrollTo(Ws().Model().IndexOf(node));
        const QPoint pos = m_tree->NodeRect(node).center();
        QMouseEvent event(type, pos, m_tree->viewport()->mapToGlobal(pos), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button), Qt::NoModifier);
        QApplication::sendEvent(m_tree->viewport(), &event);
    }

    CFakeShell m_shell;
    CSolutionBarProjTree* m_tree = nullptr;
    CExplorerBar* m_bar = nullptr;
    QString m_dir;
    QList<CDocument*> m_documents;
    int m_questions = 0;
    bool m_answerYes = false;
    QString m_savePath;
    QStringList m_messages;
    QStringList m_propertiesOf;
};

TEST_F(ProjectTreeTest, LoadedAndSavedDocumentsAddTheirFiles)
{
    TestSupport::WriteFile(Path("text.txt"), "plain text\n");
    TestSupport::WriteFile(Path("image.bin"), QByteArray("\x7F" "ELF\0\0\0\x01", 8));
    const struct
    {
        const char* name;
        bool hex;
        bool save;
        QString path;
        int type;
        int encoding;
    } cases[] = {
        {"text load keeps the encoding", false, false, Path("a.c"), 0, 1},
        {"text save", false, true, Path("b.c"), 0, 4},
        {"hex load of binary bytes", true, false, Path("image.bin"), 1, 4},
        {"hex load of text", true, false, Path("text.txt"), 0, 4},
        {"hex load of a file that cannot be read", true, false, Path("gone.dat"), 1, 4},
        {"hex save", true, true, Path("out.bin"), 0, 4},
    };
    for (const auto& c : cases) {
        CDocument* document = nullptr;
        if (c.hex) {
            document = Created<CHexDocument>();
        } else {
            auto* text = Created<CScrivelDoc>();
            text->Encoding = 1;
            document = text;
        }
        if (c.save)
            Q_EMIT document->saved(c.path);
        else
            Q_EMIT document->loaded(c.path);
        const CTreeNode* item = Ws().FindItemByPath(c.path);
        ASSERT_NE(item, nullptr) << c.name;
        EXPECT_EQ(item->data.type, c.type) << c.name;
        EXPECT_EQ(item->data.encoding, c.encoding) << c.name;
    }
    EXPECT_EQ(Ws().Root()->text, "Project*");
}

TEST_F(ProjectTreeTest, ClickBringsAnOpenFileForwardAndDoubleClickOpensAClosedOne)
{
    auto* document = Created<CScrivelDoc>();
    document->SetPathName(Path("open.c"), false);
    auto* frame = new CChildFrame(document);
    m_shell.AddChildFrame(frame);
    m_shell.ActivateChild(nullptr);
    CTreeNode* open = Ws().AddFile(Path("open.c"), nullptr, 0, 4);
    CTreeNode* closed = Ws().AddFile(Path("closed.c"), nullptr, 0, 4);

    Mouse(QEvent::MouseButtonPress, open);
    Mouse(QEvent::MouseButtonRelease, open);
    EXPECT_EQ(m_shell.ActiveChild(), frame);
    Mouse(QEvent::MouseButtonPress, closed);
    Mouse(QEvent::MouseButtonRelease, closed);
    EXPECT_TRUE(m_shell.openedPaths.isEmpty()) << "a click opens nothing";

    Mouse(QEvent::MouseButtonDblClick, closed);
    ASSERT_EQ(m_shell.openedPaths, QStringList{Path("closed.c")});
    EXPECT_EQ(m_shell.openedOptions[0].mode, OpenOptions::Detect);
    m_shell.ActivateChild(nullptr);
    Mouse(QEvent::MouseButtonDblClick, open);
    EXPECT_EQ(m_shell.ActiveChild(), frame);
    EXPECT_EQ(m_shell.openedPaths.size(), 1) << "an open file is brought forward, not opened again";
    delete frame;
}

TEST_F(ProjectTreeTest, ItemMenuOpensRemovesAndShowsProperties)
{
    CTreeNode* folder = Ws().AddFolder(Ws().Root(), QStringLiteral("src"));
    CTreeNode* file = Ws().AddFile(Path("x.c"), folder, 0, 4);
    QStringList texts;
    for (QAction* action : m_tree->ItemMenu()->actions())
        texts << action->text();
    EXPECT_EQ(texts, (QStringList{"&Open", "&Remove", "", "&Properties"}));

    m_tree->SelectNode(file);
    m_tree->ItemMenu()->actions()[3]->trigger();
    EXPECT_EQ(m_propertiesOf, QStringList{Path("x.c")});
    m_tree->ItemMenu()->actions()[0]->trigger();
    EXPECT_EQ(m_shell.openedPaths, QStringList{Path("x.c")});
    Ws().SetModified(false);
    m_tree->ItemMenu()->actions()[1]->trigger();
    EXPECT_EQ(TreeShape(), "Project*[src]");
    EXPECT_EQ(Ws().FindItemByPath(Path("x.c")), nullptr);
}

TEST_F(ProjectTreeTest, FolderMadeRenamedAndFileDraggedThenSavedAndReopened)
{
    m_tree->SelectNode(Ws().Root());
    m_shell.Commands().Execute(ExplorerCmd::AddFolder);
    auto* edit = m_tree->findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr) << "the new folder's label is being edited";
    edit->setText(QStringLiteral("docs"));
    QTest::keyClick(edit, Qt::Key_Return);
    QApplication::processEvents(); // Enter commits through a queued call
    CTreeNode* docs = Ws().Root()->FirstChild();
    ASSERT_NE(docs, nullptr);
    EXPECT_EQ(docs->data.label, "docs");

    CTreeNode* file = Ws().AddFile(Path("readme.txt"), Ws().Root(), 0, 3);
    m_tree->expandAll();
    ASSERT_TRUE(m_tree->BeginDrag(file));
    m_tree->DragMove(m_tree->NodeRect(docs).center());
    m_tree->EndDrag();
    EXPECT_EQ(TreeShape(), "Project*[docs[readme.txt]]");
    EXPECT_NE(Ws().FindItemByPath(Path("readme.txt")), nullptr);

    m_savePath = Path("proj.spf");
    m_shell.Commands().Execute(ExplorerCmd::WorkspaceSave);
    EXPECT_EQ(TestSupport::ReadFile(Path("proj.spf")),
              "<ROOT><NODE label=\"Project [proj]\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\">"
              "<NODE label=\"docs\" pathname=\"\" encoding=\"4\" type=\"0\" folder=\"1\">"
              "<NODE label=\"readme.txt\" pathname=\"" + Path("readme.txt").toUtf8() +
                  "\" encoding=\"3\" type=\"0\" folder=\"0\"/></NODE></NODE></ROOT>");

    m_shell.Commands().Execute(ExplorerCmd::WorkspaceClose);
    EXPECT_TRUE(Ws().Model().IsEmpty());
    EXPECT_EQ(m_questions, 0) << "a saved workspace closes without a question";
    ASSERT_TRUE(OpenWorkspaceIfProjectFile(m_shell, Path("proj.spf")));
    EXPECT_EQ(TreeShape(), "Project [proj][docs[readme.txt]]");
    EXPECT_EQ(m_bar->PageKind(), ExplorerPageKind::Project);
}

TEST_F(ProjectTreeTest, OnlyProjectFilesTakeTheWorkspaceRoute)
{
    const QByteArray project = R"(<ROOT><NODE label="x" folder="1"/></ROOT>)";
    TestSupport::WriteFile(Path("upper.SPF"), project);
    TestSupport::WriteFile(Path("notes.txt"), project);
    m_tree->Workspace().AddFile(Path("first.c"), nullptr, 0, 4);
    m_tree->Workspace().SaveWorkspace(Path("before.spf"));
    m_bar->ShowPage(ExplorerPageKind::List);

    EXPECT_FALSE(OpenWorkspaceIfProjectFile(m_shell, Path("notes.txt")));
    EXPECT_EQ(Ws().GetWorkspacePath(), Path("before.spf"));
    EXPECT_TRUE(OpenWorkspaceIfProjectFile(m_shell, Path("upper.SPF")));
    EXPECT_EQ(TreeShape(), "Project [upper]");
    EXPECT_EQ(m_bar->PageKind(), ExplorerPageKind::Project);
}

TEST_F(ProjectTreeTest, LeavingWithAnUnsavedNamedWorkspaceAsksButTheUnnamedCollectorDoesNot)
{
    Q_EMIT m_shell.Events().closing();
    EXPECT_EQ(m_questions, 0);

    Ws().AddFile(Path("a.c"), nullptr, 0, 4);
    Q_EMIT m_shell.Events().closing();
    EXPECT_EQ(m_questions, 0) << "files collected into the unnamed workspace ask nothing";

    m_answerYes = true;
    m_savePath = Path("exit.spf");
    Ws().SaveWorkspace();
    ASSERT_EQ(Ws().GetWorkspacePath(), Path("exit.spf"));
    Ws().AddFile(Path("b.c"), nullptr, 0, 4);
    m_answerYes = false;
    Q_EMIT m_shell.Events().closing();
    EXPECT_EQ(m_questions, 1);
    EXPECT_TRUE(Ws().IsModified()) << "No keeps nothing on disk";
    EXPECT_FALSE(TestSupport::ReadFile(Path("exit.spf")).contains("b.c"));

    m_answerYes = true;
    Q_EMIT m_shell.Events().closing();
    EXPECT_TRUE(TestSupport::ReadFile(Path("exit.spf")).contains("b.c"));
    EXPECT_FALSE(Ws().IsModified());
}

TEST_F(ProjectTreeTest, NewAndOpenCommandsGoThroughTheCloseQuestion)
{
    Ws().AddFile(Path("a.c"), nullptr, 0, 4);
    m_shell.Commands().Execute(ExplorerCmd::WorkspaceNew);
    EXPECT_EQ(m_questions, 1);
    EXPECT_EQ(TreeShape(), "Project");

    TestSupport::WriteFile(Path("some.spf"), R"(<ROOT><NODE label="x" folder="1"/></ROOT>)");
    m_tree->askOpenPath = [this] { return Path("some.spf"); };
    m_shell.Commands().Execute(ExplorerCmd::WorkspaceOpen);
    EXPECT_EQ(TreeShape(), "Project [some]");
    EXPECT_EQ(m_questions, 1) << "an unmodified workspace is closed without asking";
}

} // namespace
