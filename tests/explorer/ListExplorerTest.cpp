// The List Explorer inserting rows into a real text view: wrapping the selection,
// inserting at the caret, characters of the code page, and views that take nothing.
#include "explorer/CSolutionBarList.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "CFakeShell.h"
#include "TestSupport.h"
#include "DocumentCleanup.h"
#include "TextDocuments.h"

#include <QComboBox>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

class ListExplorerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_template = TextDocuments::MakeTemplate(&m_options);
        m_frame = TextDocuments::NewFrame(*m_template);
        ASSERT_NE(m_frame, nullptr);
        m_editor = m_frame->GetView()->GetEditor();
        m_editor->SetCodePage(QsciScintillaBase::SC_CP_UTF8);
        m_shell.AddChildFrame(m_frame);
    }
    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }

    void SetText(const QByteArray& text, long anchor, long caret)
    {
        m_editor->ClearAll();
        m_editor->AddText(text.constData(), text.size());
        m_editor->SetSel(anchor, caret);
    }
    // Chooses the table and the row whose text starts with `display`, then inserts it.
    bool InsertRow(int table, const QString& display)
    {
        m_list.TableChooser()->setCurrentIndex(table);
        for (int row = 0; row < m_list.count(); ++row) {
            if (m_list.item(row)->text() == display || m_list.item(row)->text().startsWith(display + QLatin1Char(' '))) {
                m_list.setCurrentRow(row);
                return m_list.InsertCurrentRow();
            }
        }
        ADD_FAILURE() << "no row " << display.toStdString();
        return false;
    }

    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
    CScrivelFrame* m_frame = nullptr;
    CMFCScintilla* m_editor = nullptr;
    CFakeShell m_shell;
    CSolutionBarList m_list{m_shell};
};

TEST_F(ListExplorerTest, RowsGoIntoTheEditorAroundTheSelectionOrAtTheCaret)
{
    const struct
    {
        const char* name;
        int table;
        const char* row;
        QByteArray text;
        long anchor, caret;
        QByteArray result;
        long caretAfter;
    } cases[] = {
        {"selection wrapped", 0, "B", "say word now", 4, 8, "say <B>word</B> now", 15},
        {"empty element before the caret", 0, "B", "ab", 1, 1, "a<B></B>b", 1},
        {"selection across lines keeps its line ends", 0, "DIV", "x\nl1\r\nl2\ny", 2, 8,
         "x\n<DIV>l1\r\nl2</DIV>\ny", 19},
        {"no marker: the selection is replaced", 0, "BR", "cut me", 0, 3, "<BR/> me", 5},
        {"entity", 1, "&amp", "", 0, 0, "&amp;", 0},
        {"character", 2, "33", "", 0, 0, "!", 0},
        {"code page character becomes the document's", 2, "169", "", 0, 0, "\xC2\xA9", 0},
        {"euro sign from the high range", 2, "128", "", 0, 0, "\xE2\x82\xAC", 0},
    };
    for (const auto& c : cases) {
        SetText(c.text, c.anchor, c.caret);
        EXPECT_TRUE(InsertRow(c.table, QString::fromLatin1(c.row))) << c.name;
        EXPECT_EQ(m_editor->GetText(), c.result) << c.name;
        EXPECT_EQ(m_editor->GetCurrentPos(), c.caretAfter) << c.name;
        EXPECT_TRUE(m_editor->GetSelText().isEmpty()) << c.name;
    }
}

TEST_F(ListExplorerTest, NothingHappensWithoutATextViewOrARow)
{
    SetText("keep", 0, 4);
    m_list.TableChooser()->setCurrentIndex(0);
    m_list.setCurrentRow(-1);
    EXPECT_FALSE(m_list.InsertCurrentRow()) << "no row selected";
    m_shell.ActivateChild(nullptr);
    m_list.setCurrentRow(0);
    EXPECT_FALSE(m_list.InsertCurrentRow()) << "no active view";
    EXPECT_EQ(m_editor->GetText(), "keep");
}

TEST_F(ListExplorerTest, ChoosingATableRefillsTheListWithoutASelection)
{
    EXPECT_EQ(m_list.TableChooser()->currentText(), "HTML Tags");
    const int counts[] = {91, 252, 215};
    for (int table : {1, 2, 0}) {
        m_list.setCurrentRow(3);
        m_list.TableChooser()->setCurrentIndex(table);
        EXPECT_EQ(m_list.count(), counts[table]);
        EXPECT_EQ(m_list.selectedItems().size(), 0);
    }
}

TEST_F(ListExplorerTest, DoubleClickInsertsTheRow)
{
    SetText("", 0, 0);
    m_list.resize(200, 300);
    m_list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_list));
    const QPoint where = m_list.visualItemRect(m_list.item(6)).center(); // "B"
    QTest::mouseDClick(m_list.viewport(), Qt::LeftButton, Qt::NoModifier, where);
    EXPECT_EQ(m_editor->GetText(), "<B></B>");
}

} // namespace
