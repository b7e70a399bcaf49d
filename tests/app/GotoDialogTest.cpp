#include "MainFrameFixture.h"

#include "editor/CGotoDialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <climits>

namespace {

TEST(GotoDialog, OffersTheRangeTakesDigitsOnlyAndAnEmptyBoxCannotBeConfirmed)
{
    CGotoDialog fresh(nullptr, 57);
    ASSERT_TRUE(fresh.findChild<QLabel*>());
    EXPECT_EQ(fresh.findChild<QLabel*>()->text(), QStringLiteral("Line number (1 - 57):"));
    EXPECT_EQ(fresh.LineEdit()->text(), QStringLiteral("1"));
    EXPECT_EQ(fresh.TargetLine(), 0);

    // `target` is the control's line, counted from 0, in a 40-line text.
    const struct { const char* typed; const char* shown; long line; long target; bool ok; } cases[] = {
        {"", "", 0, 0, false},      {"2", "2", 2, 1, true},     {"a1b2", "12", 12, 11, true},
        {"-5", "5", 5, 4, true},    {"0", "0", 0, 0, true},     {"40", "40", 40, 39, true},
        {"3000000000", "3000000000", 3000000000L, 2999999999L, true},
        {"99999999999999999999", "99999999999999999999", LONG_MAX, LONG_MAX - 1L, true},
    };
    for (const auto& c : cases) {
        CGotoDialog dialog(nullptr, 40);
        dialog.LineEdit()->clear();
        QTest::keyClicks(dialog.LineEdit(), QString::fromLatin1(c.typed));
        EXPECT_EQ(dialog.LineEdit()->text(), QString::fromLatin1(c.shown)) << c.typed;
        EXPECT_EQ(dialog.GetLine(), c.line) << c.typed;
        EXPECT_EQ(dialog.TargetLine(), c.target) << c.typed;
        EXPECT_EQ(dialog.OkButton()->isEnabled(), c.ok) << c.typed;
    }
}

using GotoCommandTest = MainFrameFixture;

TEST_F(GotoCommandTest, GoesToTheFirstAndLastLineAndStopsAtTheLastPastIt)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::EditGoto)) << "needs a text view";
    QByteArray text;
    for (int i = 1; i <= 30; ++i)
        text += "line " + QByteArray::number(i) + "\n";
    CScrivelFrame* frame = OpenText("lines.txt", text + "last");
    ASSERT_TRUE(frame);
    ASSERT_EQ(Editor(frame)->GetLineCount(), 31);
    ASSERT_TRUE(Enabled(Cmd::EditGoto));

    // Answers the next dialog with `typed`, or cancels it for null.
    const auto answer = [](const char* typed) {
        QTimer::singleShot(20, [typed] {
            auto* dialog = qobject_cast<CGotoDialog*>(QApplication::activeModalWidget());
            if (dialog && !typed)
                dialog->reject();
            if (!dialog || !typed)
                return;
            dialog->LineEdit()->selectAll();
            QTest::keyClicks(dialog->LineEdit(), QString::fromLatin1(typed));
            dialog->OkButton()->click();
        });
    };
    const struct { const char* typed; long line, column; } cases[] = {
        {"15", 14, 0}, {"1", 0, 0}, {"31", 30, 0}, {"500", 30, 4}, {"2", 1, 0}, {nullptr, 1, 0},
    };
    for (const auto& c : cases) {
        answer(c.typed);
        Run(Cmd::EditGoto);
        EXPECT_EQ(Editor(frame)->GetCurrentLine(), c.line) << (c.typed ? c.typed : "cancel");
        EXPECT_EQ(Editor(frame)->GetColumn(), c.column) << (c.typed ? c.typed : "cancel");
    }
}

} // namespace
