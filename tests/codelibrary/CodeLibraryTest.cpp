#include "codelibrary/CCodeLibraryPage.h"
#include "codelibrary/CNewTemplate.h"
#include "codelibrary/CSolutionBarTemplateTree.h"
#include "codelibrary/CTemplateManager.h"
#include "codelibrary/TemplateFiles.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"

#include "CFakeShell.h"
#include "MenuTexts.h"
#include "TestSupport.h"
#include "TextDocuments.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

class CodeLibraryTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        Write(QStringLiteral("C++/Main"), "int main() { <%REPLACE%> }");
        Write(QStringLiteral("C++/Guard"), "#ifndef <%REPLACE%>\n#define <%REPLACE%>\n#endif\n");
        Write(QStringLiteral("Web/Page"), "<p>page</p>");
        Write(QStringLiteral("loose"), "loose text");
        CRegistryStore().WriteProfileString(QStringLiteral("TemplateSettings"), QStringLiteral("Directory"), m_dir);

        m_docTemplate = TextDocuments::MakeTemplate(&m_options);
        m_shell.newDocumentHandler = [this](int) {
            CDocument* document = m_docTemplate->OpenDocumentFile(QString(), false);
            if (document)
                m_shell.AddChildFrame(document->GetFrames().first());
            return document;
        };
        m_page = InstallCodeLibrary(m_shell);
        m_tree = m_page->Tree();
        m_tree->resize(300, 500);
        m_tree->show();
        m_tree->SetTemplateAsker([this](QString& name, QString& code) {
            asked << name;
            askedCode << code;
            if (!answer)
                return false;
            name = answerName.isNull() ? name : answerName;
            code = answerCode.isNull() ? code : answerCode;
            return true;
        });
    }
    void TearDown() override
    {
        for (CDocument* document : m_docTemplate->GetDocuments()) {
            document->SetModifiedFlag(false);
            const auto frames = document->GetFrames();
            for (CChildFrame* frame : frames)
                delete frame;
            delete document;
        }
        CRegistryStore().DeleteValue(QStringLiteral("TemplateSettings"), QStringLiteral("Directory"));
    }

    QString At(const QString& relative) const { return m_dir + QLatin1Char('/') + relative; }
    void Write(const QString& relative, const QByteArray& bytes) { TestSupport::WriteFile(At(relative), bytes); }
    CTreeNode* Node(const QString& relative) const { return m_tree->FindPath(At(relative)); }
    // Where an item shows, once the tree has laid out its rows.
    QPoint Centre(const QString& relative) const
    {
        m_tree->expandAll();
        QCoreApplication::processEvents();
        return m_tree->NodeRect(Node(relative)).center();
    }
    void Select(const QString& relative)
    {
        CTreeNode* node = relative.isEmpty() ? m_tree->Root() : Node(relative);
        ASSERT_NE(node, nullptr) << relative.toStdString();
        m_tree->SelectNode(node);
    }
    QStringList Children(const CTreeNode* node) const
    {
        QStringList names;
        for (const auto& child : node->children)
            names << child->text;
        return names;
    }
    // Each item's path as its record holds it, for comparing the tree with the disk.
    QStringList TreePaths() const
    {
        QStringList paths;
        std::function<void(const CTreeNode*)> walk = [&](const CTreeNode* node) {
            for (const auto& child : node->children) {
                paths << child->data.pathname.mid(m_dir.size() + 1);
                walk(child.get());
            }
        };
        walk(m_tree->Root());
        paths.sort();
        return paths;
    }
    QStringList DiskPaths() const
    {
        QStringList paths;
        QList<TemplateFiles::Entry> entries;
        TemplateFiles::ReadTree(m_dir, entries);
        std::function<void(const QList<TemplateFiles::Entry>&)> walk = [&](const QList<TemplateFiles::Entry>& level) {
            for (const auto& entry : level) {
                paths << entry.path.mid(m_dir.size() + 1);
                walk(entry.children);
            }
        };
        walk(entries);
        paths.sort();
        return paths;
    }
    CMFCScintilla* NewEditor(const QByteArray& text)
    {
        m_shell.NewDocument(OpenOptions::Text);
        CMFCScintilla* editor = m_page->ActiveEditor();
        if (editor) {
            editor->SetCodePage(Sci::SC_CP_UTF8);
            editor->AddText(text.constData(), text.size());
        }
        return editor;
    }

    QString m_dir;
    CFakeShell m_shell;
    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_docTemplate;
    CCodeLibraryPage* m_page = nullptr;
    CSolutionBarTemplateTree* m_tree = nullptr;
    QStringList asked;
    QStringList askedCode;
    bool answer = true;
    QString answerName;
    QString answerCode;
};

TEST_F(CodeLibraryTest, PageShowsTheFolderInFileNameOrderUnderTemplates)
{
    ASSERT_EQ(m_shell.ExplorerPages().size(), 1);
    EXPECT_EQ(m_shell.ExplorerPages().first()->Title(), QStringLiteral("Code Library"));
    EXPECT_EQ(m_shell.ExplorerPages().first()->PageKind(), 3);
    CTreeNode* root = m_tree->Root();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->text, QStringLiteral("Templates"));
    EXPECT_EQ(root->data.pathname, m_dir);
    EXPECT_EQ(Children(root), (QStringList{QStringLiteral("C++"), QStringLiteral("loose"), QStringLiteral("Web")}));
    EXPECT_EQ(Children(Node(QStringLiteral("C++"))), (QStringList{QStringLiteral("Guard"), QStringLiteral("Main")}));
    EXPECT_EQ(m_shell.Commands().PlainText(Cmd::FileNewFromTemplate), QStringLiteral("From Template"));
}

TEST_F(CodeLibraryTest, WithoutAFolderOnlyTheRootShows)
{
    CSolutionBarTemplateTree tree;
    EXPECT_FALSE(tree.BuildTree(nullptr, QString(), true));
    ASSERT_NE(tree.Root(), nullptr);
    EXPECT_TRUE(tree.Root()->children.empty());
    EXPECT_TRUE(tree.BuildTree(nullptr, At(QStringLiteral("missing")), true));
    EXPECT_TRUE(tree.Root()->children.empty());
}

struct InsertCase
{
    const char* what;
    QByteArray templateText;
    QByteArray document;
    int selStart;
    int selEnd;
    QByteArray expected;
    int caret;
};

class InsertTest : public CodeLibraryTest, public ::testing::WithParamInterface<InsertCase>
{
};

TEST_P(InsertTest, MarkersTakeTheSelection)
{
    const InsertCase& c = GetParam();
    Write(QStringLiteral("t"), c.templateText);
    m_tree->BuildTree(nullptr, m_dir, true);
    CMFCScintilla* editor = NewEditor(c.document);
    ASSERT_NE(editor, nullptr);
    editor->SetSel(c.selStart, c.selEnd);
    Select(QStringLiteral("t"));

    m_tree->OnAddToDocument();

    EXPECT_EQ(editor->GetText(), c.expected) << c.what;
    EXPECT_EQ(editor->GetCurrentPos(), c.caret) << c.what;
    EXPECT_EQ(editor->GetSelectionSize(), 0) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, InsertTest,
    ::testing::Values(
        InsertCase{"marker twice", "[<%REPLACE%>|<%REPLACE%>]", "a name b", 2, 6, "a [name|name] b", 13},
        InsertCase{"no selection: marker goes, caret stays before", "x<%REPLACE%>y", "ab", 1, 1, "axyb", 1},
        InsertCase{"no marker replaces the selection", "new", "old text", 0, 3, "new text", 3},
        InsertCase{"empty template deletes nothing", "", "keep", 0, 0, "keep", 0},
        InsertCase{"multi-byte text", "\xc3\xa9<%REPLACE%>\xc3\xa9", "\xe2\x82\xac", 0, 3,
                   "\xc3\xa9\xe2\x82\xac\xc3\xa9", 7}));

TEST_F(CodeLibraryTest, InsertNeedsATextViewAndATemplate)
{
    Select(QStringLiteral("C++/Main"));
    m_tree->OnAddToDocument(); // no document: nothing happens
    std::unique_ptr<QMenu> menu(m_tree->CreateItemMenu());
    EXPECT_FALSE(menu->actions().first()->isEnabled());

    CMFCScintilla* editor = NewEditor("text");
    Select(QStringLiteral("C++"));
    m_tree->OnAddToDocument();
    EXPECT_EQ(editor->GetText(), QByteArray("text")) << "a folder inserts nothing";
}

TEST_F(CodeLibraryTest, DoubleClickInsertsOnThePage)
{
    CMFCScintilla* editor = NewEditor("");
    m_tree->ExpandNode(Node(QStringLiteral("C++")));
    const QRect rect = m_tree->NodeRect(Node(QStringLiteral("C++/Main")));
    QTest::mouseDClick(m_tree->viewport(), Qt::LeftButton, {}, rect.center());
    EXPECT_EQ(editor->GetText(), QByteArray("int main() {  }"));
}

TEST_F(CodeLibraryTest, CopyToClipboardKeepsTheMarker)
{
    Select(QStringLiteral("C++/Main"));
    m_tree->OnCopyToClipboard();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("int main() { <%REPLACE%> }"));
}

TEST_F(CodeLibraryTest, ContextMenuOfAnItemAndNoneOfTheBar)
{
    const QPoint at = Centre(QStringLiteral("C++/Main"));
    QContextMenuEvent onItem(QContextMenuEvent::Mouse, at, m_tree->viewport()->mapToGlobal(at));
    QApplication::sendEvent(m_tree->viewport(), &onItem);
    EXPECT_TRUE(onItem.isAccepted());
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("CodeLibraryTemplateMenu"));
    EXPECT_EQ(m_tree->SelectedNode(), Node(QStringLiteral("C++/Main")));
    menu->close();
    const QPoint below(5, m_tree->viewport()->height() - 5);
    QContextMenuEvent nowhere(QContextMenuEvent::Mouse, below, m_tree->viewport()->mapToGlobal(below));
    QApplication::sendEvent(m_tree->viewport(), &nowhere);
    EXPECT_TRUE(nowhere.isAccepted());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(CodeLibraryTest, MenusFollowTheKindOfItem)
{
    auto texts = [](QMenu* menu) { return MenuTexts(menu->actions()); };
    Select(QStringLiteral("C++/Main"));
    std::unique_ptr<QMenu> templateMenu(m_tree->CreateItemMenu());
    EXPECT_EQ(texts(templateMenu.get()),
              (QStringList{QStringLiteral("Add To Document"), QStringLiteral("Copy To Clipboard"), QStringLiteral("-"),
                           QStringLiteral("Create Template"), QStringLiteral("Edit Template"),
                           QStringLiteral("Delete Template")}));
    EXPECT_EQ(templateMenu->defaultAction(), templateMenu->actions().first());
    Select(QStringLiteral("C++"));
    std::unique_ptr<QMenu> folderMenu(m_tree->CreateItemMenu());
    EXPECT_EQ(texts(folderMenu.get()),
              (QStringList{QStringLiteral("Create Folder"), QStringLiteral("Rename Folder"),
                           QStringLiteral("Delete Folder"), QStringLiteral("-"), QStringLiteral("Create Template")}));
}

struct EditCase
{
    const char* what;
    const char* newName; // null: unchanged
    const char* newCode; // null: unchanged
    bool ok;
    const char* fileAfter;
    QByteArray contentAfter;
};

class EditTemplateTest : public CodeLibraryTest, public ::testing::WithParamInterface<EditCase>
{
};

TEST_P(EditTemplateTest, WritesTheCodeAndRenames)
{
    const EditCase& c = GetParam();
    Write(QStringLiteral("C++/Taken"), "taken");
    m_tree->BuildTree(nullptr, m_dir, true);
    Select(QStringLiteral("C++/Main"));
    answer = c.ok;
    answerName = c.newName ? QString::fromUtf8(c.newName) : QString();
    answerCode = c.newCode ? QString::fromUtf8(c.newCode) : QString();

    m_tree->OnEditTemplate();

    ASSERT_EQ(asked, QStringList{QStringLiteral("Main")});
    EXPECT_EQ(askedCode, QStringList{QStringLiteral("int main() { <%REPLACE%> }")});
    const QString after = At(QStringLiteral("C++/") + QString::fromUtf8(c.fileAfter));
    EXPECT_EQ(TestSupport::ReadFile(after), c.contentAfter) << c.what;
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("C++/Taken"))), QByteArray("taken")) << c.what;
    EXPECT_EQ(TreePaths(), DiskPaths()) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, EditTemplateTest,
    ::testing::Values(
        EditCase{"only the code", nullptr, "int main() { return 0; }", true, "Main", "int main() { return 0; }"},
        EditCase{"only the name", "Entry", nullptr, true, "Entry", "int main() { <%REPLACE%> }"},
        EditCase{"both", "Entry", "new", true, "Entry", "new"},
        EditCase{"cancelled", "Entry", "new", false, "Main", "int main() { <%REPLACE%> }"},
        // The name is taken: the template keeps its name, and what was typed is kept.
        EditCase{"name collides", "Taken", "typed", true, "Main", "typed"}));

TEST_F(CodeLibraryTest, EditingKeepsLineEndsAndNeverCutsALargeTemplate)
{
    Write(QStringLiteral("crlf"), "a\r\nb\r\n");
    QByteArray large(TemplateFiles::MaxTemplateBytes + 10, 'x');
    Write(QStringLiteral("large"), large);
    m_tree->BuildTree(nullptr, m_dir, true);

    Select(QStringLiteral("crlf"));
    answerCode = QStringLiteral("a\nb\nc\n");
    m_tree->OnEditTemplate();
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("crlf"))), QByteArray("a\r\nb\r\nc\r\n"));

    Select(QStringLiteral("large"));
    answerCode = QString();
    answerName = QStringLiteral("renamed large");
    m_tree->OnEditTemplate();
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("renamed large"))), large) << "renamed whole, not cut";
}

TEST_F(CodeLibraryTest, CreateTemplateGoesBesideTheSelectedTemplate)
{
    Select(QStringLiteral("Web/Page"));
    answerName = QStringLiteral("Table \"wide\"");
    answerCode = QStringLiteral("<table></table>");
    m_tree->OnCreateTemplate();
    EXPECT_EQ(asked, QStringList{QString()});
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("Web/Table \"wide\""))), QByteArray("<table></table>"));
    EXPECT_EQ(Children(Node(QStringLiteral("Web"))),
              (QStringList{QStringLiteral("Page"), QStringLiteral("Table \"wide\"")}));
    EXPECT_EQ(m_tree->SelectedNode(), Node(QStringLiteral("Web/Table \"wide\"")));
}

TEST_F(CodeLibraryTest, CreateOverAnExistingNameReplacesItWithOneItem)
{
    Select(QStringLiteral("C++"));
    answerName = QStringLiteral("Main");
    answerCode = QStringLiteral("replaced");
    m_tree->OnCreateTemplate();
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("C++/Main"))), QByteArray("replaced"));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, CreateWithANameThatPointsElsewhereWritesNothing)
{
    Select(QString());
    for (const char* name : {"C++/sneaky", "..", "a/b"}) {
        answerName = QString::fromLatin1(name);
        m_tree->OnCreateTemplate();
    }
    EXPECT_FALSE(QFileInfo::exists(At(QStringLiteral("C++/sneaky"))));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, CreateFromSelectionOffersTheSelectedText)
{
    CMFCScintilla* editor = NewEditor("one two three");
    EXPECT_FALSE(m_shell.Commands().State(Cmd::CreateTemplateFromSelection).enabled);
    editor->SetSel(4, 7);
    EXPECT_TRUE(m_shell.Commands().State(Cmd::CreateTemplateFromSelection).enabled);
    Select(QStringLiteral("C++"));
    answerName = QStringLiteral("Two");

    m_shell.Commands().Execute(Cmd::CreateTemplateFromSelection);

    EXPECT_EQ(asked, QStringList{QString()});
    EXPECT_EQ(askedCode, QStringList{QStringLiteral("two")});
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("C++/Two"))), QByteArray("two"));
}

TEST_F(CodeLibraryTest, DeleteTemplateAsksAndGoesPastAnyBin)
{
    Select(QStringLiteral("loose"));
    {
        TestSupport::ModalAnswerer no(QMessageBox::No);
        m_tree->OnDeleteTemplate();
        ASSERT_EQ(no.Texts(), QStringList{QStringLiteral("Are you sure you want to delete 'loose'?")});
    }
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("loose"))));
    TestSupport::ModalAnswerer yes(QMessageBox::Yes);
    m_tree->OnDeleteTemplate();
    EXPECT_FALSE(QFileInfo::exists(At(QStringLiteral("loose"))));
    EXPECT_EQ(Node(QStringLiteral("loose")), nullptr);
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, DeleteFolderAsksWhenItHoldsAnythingAndNeverTakesTheRoot)
{
    Select(QString());
    {
        TestSupport::ModalAnswerer ok(QMessageBox::Ok);
        m_tree->OnDeleteFolder();
        EXPECT_EQ(ok.Texts(), QStringList{QStringLiteral("The template folder cannot be deleted.")});
    }
    EXPECT_TRUE(QFileInfo::exists(m_dir));

    Select(QStringLiteral("C++"));
    {
        TestSupport::ModalAnswerer cancel(QMessageBox::Cancel);
        m_tree->OnDeleteFolder();
        EXPECT_EQ(cancel.Texts(), QStringList{QStringLiteral("Delete this folder and all its sub items?")});
    }
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("C++/Main"))));

    // A folder the tree shows empty but which holds a file made since still asks.
    ASSERT_TRUE(QDir().mkpath(At(QStringLiteral("Later"))));
    m_tree->BuildTree(nullptr, m_dir, true);
    Write(QStringLiteral("Later/made outside"), "x");
    Select(QStringLiteral("Later"));
    {
        TestSupport::ModalAnswerer cancel(QMessageBox::Cancel);
        m_tree->OnDeleteFolder();
        EXPECT_EQ(cancel.Texts().size(), 1);
    }
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("Later/made outside"))));

    ASSERT_TRUE(QFile::remove(At(QStringLiteral("Later/made outside"))));
    Select(QStringLiteral("C++"));
    TestSupport::ModalAnswerer ok(QMessageBox::Ok);
    m_tree->OnDeleteFolder();
    EXPECT_FALSE(QFileInfo::exists(At(QStringLiteral("C++"))));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, RenamesThatCollideChangeNothing)
{
    CTreeNode* web = Node(QStringLiteral("Web"));
    EXPECT_FALSE(m_tree->RenameItem(web, QStringLiteral("C++")));
    EXPECT_EQ(web->text, QStringLiteral("Web"));
    EXPECT_FALSE(m_tree->RenameItem(Node(QStringLiteral("loose")), QStringLiteral("Web")));
    EXPECT_FALSE(m_tree->RenameItem(m_tree->Root(), QStringLiteral("Other")));
    EXPECT_TRUE(QFileInfo::exists(m_dir));
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("C++/Main"))), QByteArray("int main() { <%REPLACE%> }"));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, RenamingAFolderCarriesItsTemplatesAlong)
{
    EXPECT_TRUE(m_tree->RenameItem(Node(QStringLiteral("C++")), QStringLiteral("Cpp")));
    EXPECT_EQ(TreePaths(), DiskPaths());
    Select(QStringLiteral("Cpp/Main"));
    m_tree->OnCopyToClipboard();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("int main() { <%REPLACE%> }"));
}

TEST_F(CodeLibraryTest, LabelEditRenamesOnDiskAndEscOrEmptyChangesNothing)
{
    CTreeNode* loose = Node(QStringLiteral("loose"));
    m_tree->SelectNode(loose);
    ASSERT_TRUE(m_tree->EditLabel(loose));
    auto* editor = m_tree->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("loose"))));

    m_tree->FinishLabelEdit(loose, QString());
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("loose"))));
    m_tree->FinishLabelEdit(loose, QStringLiteral("tight"));
    EXPECT_FALSE(QFileInfo::exists(At(QStringLiteral("loose"))));
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("tight"))), QByteArray("loose text"));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, CreateFolderStartsItsLabelEditAndNeverReusesAName)
{
    Select(QStringLiteral("Web/Page"));
    m_tree->OnCreateFolder();
    EXPECT_TRUE(QFileInfo(At(QStringLiteral("Web/New Folder"))).isDir());
    EXPECT_TRUE(m_tree->IsEditingLabel());
    m_tree->setFocus();
    QTest::keyClick(m_tree->findChild<QLineEdit*>(), Qt::Key_Escape);
    Select(QStringLiteral("Web"));
    m_tree->OnCreateFolder();
    EXPECT_TRUE(QFileInfo(At(QStringLiteral("Web/New Folder (2)"))).isDir());
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, DragMovesOnDiskAndDiskAndTreeAgree)
{
    Write(QStringLiteral("Web/Main"), "a web main");
    m_tree->BuildTree(nullptr, m_dir, true);

    // Onto a folder: moved.
    ASSERT_TRUE(m_tree->BeginDrag(Node(QStringLiteral("loose"))));
    m_tree->DragMove(Centre(QStringLiteral("Web")));
    m_tree->EndDrag();
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("Web/loose"))));
    EXPECT_EQ(TreePaths(), DiskPaths());

    // Onto a template: nothing moves.
    const QPoint guard = Centre(QStringLiteral("C++/Guard"));
    ASSERT_TRUE(m_tree->BeginDrag(Node(QStringLiteral("Web/Page"))));
    m_tree->DragMove(guard);
    m_tree->EndDrag();
    EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("Web/Page"))));
    EXPECT_EQ(TreePaths(), DiskPaths());

    // Into a folder holding that name already: neither file is lost.
    const QPoint cpp = Centre(QStringLiteral("C++"));
    ASSERT_TRUE(m_tree->BeginDrag(Node(QStringLiteral("Web/Main"))));
    m_tree->DragMove(cpp);
    m_tree->EndDrag();
    QCoreApplication::processEvents();
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("C++/Main"))), QByteArray("int main() { <%REPLACE%> }"));
    EXPECT_EQ(TestSupport::ReadFile(At(QStringLiteral("Web/Main"))), QByteArray("a web main"));
    EXPECT_EQ(TreePaths(), DiskPaths());
}

TEST_F(CodeLibraryTest, NewFromTemplateMakesADocumentHoldingTheTemplate)
{
    QString chosen;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<CNewTemplate*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        EXPECT_FALSE(dialog->OkButton()->isEnabled()) << "nothing chosen yet";
        CSolutionBarTemplateTree* tree = dialog->Tree();
        EXPECT_FALSE(tree->InsertOnDoubleClick());
        EXPECT_FALSE(tree->CanEditLabel(tree->FindPath(At(QStringLiteral("C++/Main"))))) << "the chooser renames nothing";
        // A drag with the mouse moves nothing here.
        tree->expandAll();
        QCoreApplication::processEvents();
        const QPoint from = tree->NodeRect(tree->FindPath(At(QStringLiteral("loose")))).center();
        const QPoint to = tree->NodeRect(tree->FindPath(At(QStringLiteral("Web")))).center();
        QTest::mousePress(tree->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, QPointF(to), tree->viewport()->mapToGlobal(QPointF(to)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(tree->viewport(), &move);
        QTest::mouseRelease(tree->viewport(), Qt::LeftButton, {}, to);
        EXPECT_TRUE(QFileInfo::exists(At(QStringLiteral("loose"))));
        tree->SelectNode(tree->FindPath(At(QStringLiteral("C++/Guard"))));
        EXPECT_TRUE(dialog->OkButton()->isEnabled());
        chosen = dialog->SelectedPath();
        dialog->OkButton()->click();
    });
    m_shell.Commands().Execute(Cmd::FileNewFromTemplate);
    EXPECT_EQ(chosen, At(QStringLiteral("C++/Guard")));
    CMFCScintilla* editor = m_page->ActiveEditor();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->GetText(), QByteArray("#ifndef \n#define \n#endif\n"));
    EXPECT_TRUE(m_shell.ActiveDocument()->GetPathName().isEmpty());
}

TEST_F(CodeLibraryTest, NewFromTemplateWithAFolderChosenGivesAnEmptyDocument)
{
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<CNewTemplate*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        dialog->Tree()->SelectNode(dialog->Tree()->FindPath(At(QStringLiteral("Web"))));
        EXPECT_TRUE(dialog->OkButton()->isEnabled());
        dialog->OkButton()->click();
    });
    m_shell.Commands().Execute(Cmd::FileNewFromTemplate);
    ASSERT_NE(m_page->ActiveEditor(), nullptr);
    EXPECT_TRUE(m_page->ActiveEditor()->GetText().isEmpty());
}

TEST(TemplateManagerTest, RefusedCharactersTypedAtTheEndAreTakenAway)
{
    CTemplateManager dialog(QString(), QStringLiteral("code"), nullptr);
    dialog.show();
    EXPECT_FALSE(dialog.OkButton()->isEnabled());
    QTest::keyClicks(dialog.NameEdit(), QStringLiteral("what?"));
    EXPECT_EQ(dialog.NameEdit()->text(), QStringLiteral("what"));
    EXPECT_EQ(dialog.Name(), QStringLiteral("what"));
    EXPECT_TRUE(dialog.OkButton()->isEnabled());
    QTest::keyClicks(dialog.NameEdit(), QStringLiteral("\""));
    EXPECT_EQ(dialog.Name(), QStringLiteral("what\""));
    dialog.NameEdit()->clear();
    EXPECT_FALSE(dialog.OkButton()->isEnabled());
    dialog.NameEdit()->insert(QStringLiteral("wh?at")); // as a paste
    EXPECT_EQ(dialog.Name(), QStringLiteral("wh?at"));
    QTest::keyClicks(dialog.CodeEdit(), QStringLiteral(" more"));
    EXPECT_EQ(dialog.Code(), QStringLiteral(" morecode"));
}

} // namespace
