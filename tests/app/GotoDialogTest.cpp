#include "MainFrameFixture.h"

#include "app/CommandIds.h"
#include "editor/CGotoDialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <climits>

namespace {

using Sci = QsciScintillaBase;

TEST(GotoDialog, OffersTheLineRangeAndStartsAtOne)
{
    CGotoDialog dialog(nullptr, 57);
    auto* label = dialog.findChild<QLabel*>();
    ASSERT_TRUE(label);
    EXPECT_EQ(label->text(), QStringLiteral("Line number (1 - 57):"));
    EXPECT_EQ(dialog.LineEdit()->text(), QStringLiteral("1"));
    EXPECT_EQ(dialog.GetLine(), 1);
    EXPECT_TRUE(dialog.OkButton()->isEnabled());
}

TEST(GotoDialog, TheBoxTakesDigitsOnlyAndAnEmptyBoxCannotBeConfirmed)
{
    const struct
    {
        const char* typed;
        const char* shown;
        int line;
        bool ok;
    } cases[] = {
        {"", "", 0, false},
        {"12", "12", 12, true},
        {"a1b2", "12", 12, true},
        {"-5", "5", 5, true},
        {"0", "0", 0, true},
        {"99999999999999999999", "99999999999999999999", INT_MAX, true},
    };
    for (const auto& c : cases) {
        CGotoDialog dialog(nullptr, 10);
        dialog.LineEdit()->selectAll();
        QTest::keyClick(dialog.LineEdit(), Qt::Key_Delete);
        QTest::keyClicks(dialog.LineEdit(), QString::fromLatin1(c.typed));
        EXPECT_EQ(dialog.LineEdit()->text(), QString::fromLatin1(c.shown)) << c.typed;
        EXPECT_EQ(dialog.GetLine(), c.line) << c.typed;
        EXPECT_EQ(dialog.OkButton()->isEnabled(), c.ok) << c.typed;
    }
}

TEST(GotoDialog, TheNumberIsTheStatusBarsLineNumber)
{
    const struct
    {
        const char* typed;
        long target;
    } cases[] = {{"1", 0}, {"2", 1}, {"0", 0}, {"40", 39}};
    for (const auto& c : cases) {
        CGotoDialog dialog(nullptr, 40);
        dialog.LineEdit()->setText(QString::fromLatin1(c.typed));
        EXPECT_EQ(dialog.TargetLine(), c.target) << c.typed;
    }
}

// Through the command, on a real document.
class GotoCommandTest : public MainFrameFixture
{
protected:
    // Answers the next go-to dialog with `text`, or cancels it when `text` is null.
    static void Answer(const char* text)
    {
        QTimer::singleShot(20, [text] {
            auto* dialog = qobject_cast<CGotoDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            if (!text) {
                dialog->reject();
                return;
            }
            dialog->LineEdit()->selectAll();
            QTest::keyClicks(dialog->LineEdit(), QString::fromLatin1(text));
            dialog->OkButton()->click();
        });
    }
    static long CaretLine(CScrivelFrame* frame) { return frame->GetView()->GetEditor()->GetCurrentLine(); }
};

TEST_F(GotoCommandTest, GoesToTheFirstTheLastAndStopsAtTheLastLine)
{
    StartEmpty();
    QByteArray text;
    for (int i = 1; i <= 30; ++i)
        text += "line " + QByteArray::number(i) + "\n";
    text += "last";
    CScrivelFrame* frame = OpenText(QStringLiteral("lines.txt"), text);
    ASSERT_TRUE(frame);
    ASSERT_EQ(frame->GetView()->GetEditor()->GetLineCount(), 31);
    ASSERT_TRUE(Enabled(Cmd::EditGoto));

    const struct
    {
        const char* typed;
        long line;
        long column;
    } cases[] = {{"15", 14, 0}, {"1", 0, 0}, {"31", 30, 0}, {"500", 30, 4}, {"2", 1, 0}};
    for (const auto& c : cases) {
        Answer(c.typed);
        Run(Cmd::EditGoto);
        EXPECT_EQ(CaretLine(frame), c.line) << c.typed;
        // Past the end the control stops at the end of the last line.
        EXPECT_EQ(frame->GetView()->GetEditor()->GetColumn(), c.column) << c.typed;
    }
    // The status bar names the line that was typed.
    EXPECT_TRUE(Frame()->PositionText().startsWith(QStringLiteral("Ln  2 "))
                || frame->StatusText().startsWith(QStringLiteral("Ln  2 ")))
        << frame->StatusText().toStdString();

    Answer(nullptr);
    Run(Cmd::EditGoto);
    EXPECT_EQ(CaretLine(frame), 1) << "cancel leaves the caret";
}

TEST_F(GotoCommandTest, NeedsAnActiveTextView)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::EditGoto));
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    EXPECT_TRUE(Enabled(Cmd::EditGoto));
}

} // namespace
