#include "editor/CMFCScintilla.h"
#include "search/CFindBar.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

// A view as the program has it: the control in a vertical layout, the bar put under it.
class FindBarTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_view.setLayout(new QVBoxLayout);
        m_editor = new CMFCScintilla(&m_view);
        m_editor->Setup();
        m_view.layout()->addWidget(m_editor);
        m_view.resize(800, 400);
        m_view.show();
    }
    void SetText(const QByteArray& text, long caret = 0)
    {
        m_editor->SendScintilla(Sci::SCI_SETTEXT, 0UL, text.constData());
        m_editor->SetSel(caret, caret);
    }
    CFindBar* OpenBar(const QString& typed)
    {
        CFindBar* bar = CFindBar::ForEditor(m_editor);
        bar->MatchCaseBox()->setChecked(false);
        bar->WholeWordBox()->setChecked(false);
        bar->RegExpBox()->setChecked(false);
        bar->Open(QString());
        bar->Edit()->clear();
        QTest::keyClicks(bar->Edit(), typed);
        WaitForCount(bar);
        return bar;
    }
    static void WaitForCount(CFindBar* bar)
    {
        for (int i = 0; i < 200 && bar->Counting(); ++i)
            QTest::qWait(5);
    }
    QString Selected() const { return QString::fromUtf8(m_editor->GetSelText()); }
    long SelStart() const { return m_editor->GetSelectionStart(); }
    bool Painted(long position) const
    {
        return m_editor->SendScintilla(Sci::SCI_INDICATORVALUEAT, static_cast<unsigned long>(CFindBar::MatchIndicator),
                                       position) != 0;
    }

    QWidget m_view;
    CMFCScintilla* m_editor = nullptr;
};

TEST_F(FindBarTest, SitsUnderTheEditorOncePerView)
{
    SetText("x");
    CFindBar* bar = CFindBar::ForEditor(m_editor);
    EXPECT_EQ(CFindBar::ForEditor(m_editor), bar);
    EXPECT_EQ(m_view.layout()->indexOf(bar), m_view.layout()->indexOf(m_editor) + 1);
}

// Typing finds from where the caret was, counts and colours every match.
TEST_F(FindBarTest, TypingSelectsTheFirstMatchFromTheCaretAndCounts)
{
    SetText("cat\ncatalog cat\nconcat", 5);
    CFindBar* bar = OpenBar(QStringLiteral("cat"));
    EXPECT_EQ(SelStart(), 12);
    EXPECT_EQ(Selected(), QStringLiteral("cat"));
    EXPECT_EQ(bar->CountLabel()->text(), QStringLiteral("3 of 4"));
    for (const long position : {0L, 4L, 12L, 19L})
        EXPECT_TRUE(Painted(position)) << position;
    EXPECT_FALSE(Painted(3));
}

TEST_F(FindBarTest, EnterAndShiftEnterStepAndWrap)
{
    SetText("ab ab\nab");
    CFindBar* bar = OpenBar(QStringLiteral("ab"));
    const struct { bool back; long start; const char* label; } steps[] = {
        {false, 3, "2 of 3"}, {false, 6, "3 of 3"}, {false, 0, "1 of 3"}, {true, 6, "3 of 3"}, {true, 3, "2 of 3"}};
    for (const auto& step : steps) {
        QTest::keyClick(bar->Edit(), Qt::Key_Return, step.back ? Qt::ShiftModifier : Qt::NoModifier);
        EXPECT_EQ(SelStart(), step.start);
        EXPECT_EQ(bar->CountLabel()->text(), QString::fromLatin1(step.label));
    }
}

TEST_F(FindBarTest, OptionsAndBadInput)
{
    SetText("Word word WORD words");
    CFindBar* bar = OpenBar(QStringLiteral("word"));
    EXPECT_EQ(bar->Scanner().Matches().size(), 4u);
    bar->MatchCaseBox()->setChecked(true);
    WaitForCount(bar);
    EXPECT_EQ(bar->Scanner().Matches().size(), 2u);
    bar->WholeWordBox()->setChecked(true);
    WaitForCount(bar);
    EXPECT_EQ(bar->CountLabel()->text(), QStringLiteral("1 of 1"));
    bar->RegExpBox()->setChecked(true);
    bar->Edit()->setText(QStringLiteral("w(o"));
    EXPECT_EQ(bar->CountLabel()->text(), QStringLiteral("Invalid expression"));
    bar->Edit()->setText(QStringLiteral("zzz"));
    WaitForCount(bar);
    EXPECT_EQ(bar->CountLabel()->text(), QStringLiteral("No results"));
    // Nothing to find leaves the text as it was.
    EXPECT_EQ(m_editor->GetText(), QByteArray("Word word WORD words"));
}

TEST_F(FindBarTest, EditsAreCountedAgain)
{
    SetText("one two one");
    CFindBar* bar = OpenBar(QStringLiteral("one"));
    QSignalSpy finished(bar, &CFindBar::countFinished);
    m_editor->SendScintilla(Sci::SCI_INSERTTEXT, 0UL, "one ");
    // Until the new count, the old positions are neither shown nor used.
    EXPECT_FALSE(bar->Scanner().IsStarted());
    EXPECT_EQ(bar->CountLabel()->text(), QString());
    ASSERT_TRUE(finished.wait(2000));
    EXPECT_EQ(finished.last().at(0).toLongLong(), 3);
    EXPECT_TRUE(Painted(12)); // the old second match, moved on by four
}

TEST_F(FindBarTest, EscapeClosesAndTakesTheColoursOff)
{
    SetText("ab ab");
    CFindBar* bar = OpenBar(QStringLiteral("ab"));
    ASSERT_TRUE(Painted(3));
    QTest::keyClick(bar->Edit(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_FALSE(Painted(0));
    EXPECT_FALSE(Painted(3));
    EXPECT_EQ(Selected(), QStringLiteral("ab")); // the match found stays selected
}

} // namespace
