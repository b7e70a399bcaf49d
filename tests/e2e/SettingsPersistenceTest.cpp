#include "E2eFixture.h"

#include <QFile>
#include <QSettings>

namespace {

// The settings file where the program keeps them on this platform.
QString SettingsFile()
{
    return qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Brackwyn/Morvane.conf");
}

QVariant SavedValue(const QString& key)
{
    QSettings file(SettingsFile(), QSettings::IniFormat);
    return file.value(key);
}

struct ToggleCase
{
    const char* name;
    int command;
    const char* key; // in the settings file
    // What the control of an open view shows when the setting is on; null when the
    // setting shows nowhere in the control.
    bool (*shownIn)(CMFCScintilla* editor);
};

bool Wraps(CMFCScintilla* e)
{
    return e->SendScintilla(QsciScintillaBase::SCI_GETWRAPMODE) != QsciScintillaBase::SC_WRAP_NONE;
}
bool NumbersShown(CMFCScintilla* e)
{
    // Whichever margin shows numbers, it must have a width.
    for (unsigned long margin = 0; margin < 5; ++margin) {
        if (e->SendScintilla(QsciScintillaBase::SCI_GETMARGINTYPEN, margin) == QsciScintillaBase::SC_MARGIN_NUMBER
            && e->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, margin) > 0)
            return true;
    }
    return false;
}
bool WhitespaceShown(CMFCScintilla* e)
{
    return e->SendScintilla(QsciScintillaBase::SCI_GETVIEWWS) != QsciScintillaBase::SCWS_INVISIBLE;
}
bool LineEndsShown(CMFCScintilla* e)
{
    return e->SendScintilla(QsciScintillaBase::SCI_GETVIEWEOL) != 0;
}
bool CaretLineShown(CMFCScintilla* e)
{
    return e->SendScintilla(QsciScintillaBase::SCI_GETCARETLINEVISIBLE) != 0;
}

const ToggleCase kToggles[] = {
    {"WordWrap", Cmd::ViewWordWrap, "ViewSettings/WordWrap", Wraps},
    {"LineNumbers", Cmd::ViewLineNumbers, "ViewSettings/LineNumbers", NumbersShown},
    {"Whitespace", Cmd::ViewWhitespace, "ViewSettings/Whitespace", WhitespaceShown},
    {"LineEndings", Cmd::ViewLineEndings, "ViewSettings/LineEndings", LineEndsShown},
    {"CaretLine", Cmd::ViewCaretLine, "ViewSettings/CaretLine", CaretLineShown},
    {"MatchBracket", Cmd::ViewMatchBracket, "ViewSettings/MatchBracket", nullptr},
};

class ViewToggles : public E2eFixture, public ::testing::WithParamInterface<ToggleCase>
{
protected:
    bool Checked(int command)
    {
        Frame()->UpdateCommandUI();
        QAction* action = Frame()->Action(command);
        return action && action->isCheckable() && action->isChecked();
    }
};

TEST_P(ViewToggles, SurviveAClosedAndRestartedProgramThroughTheSettingsFile)
{
    const ToggleCase& c = GetParam();
    const QString path = MakeFile(QStringLiteral("a.cpp"), "int main()\n{\n    return 0;\n}\n");
    ASSERT_TRUE(App()->InitInstance({path}));
    Settle();
    ASSERT_FALSE(Checked(c.command)) << "off in a fresh home";
    CMFCScintilla* editor = EditorOf(Frame()->ActiveChild());
    ASSERT_NE(editor, nullptr);
    if (c.shownIn) {
        ASSERT_FALSE(c.shownIn(editor));
    }

    QAction* action = Frame()->Action(c.command);
    ASSERT_NE(action, nullptr);
    action->trigger();
    Settle();
    EXPECT_TRUE(Checked(c.command));
    if (c.shownIn) {
        EXPECT_TRUE(c.shownIn(editor)) << "the open view follows at once";
    }

    Restart({path});
    EXPECT_EQ(SavedValue(QString::fromLatin1(c.key)).toInt(), 1)
        << SettingsFile().toStdString() << " after the window closed";
    EXPECT_TRUE(Checked(c.command)) << "back after a restart";
    CMFCScintilla* reopened = EditorOf(Frame()->ActiveChild());
    ASSERT_NE(reopened, nullptr);
    if (c.shownIn) {
        EXPECT_TRUE(c.shownIn(reopened)) << "a view opened after the restart shows it";
    }

    // And off again, the same way round.
    Frame()->Action(c.command)->trigger();
    Settle();
    if (c.shownIn) {
        EXPECT_FALSE(c.shownIn(reopened));
    }
    Restart();
    EXPECT_EQ(SavedValue(QString::fromLatin1(c.key)).toInt(), 0);
    EXPECT_FALSE(Checked(c.command));
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(EachToggle, ViewToggles, ::testing::ValuesIn(kToggles),
                         [](const auto& info) { return std::string(info.param.name); });

// Yes saves the typed text, No leaves the file alone; the settings are written either way.
TEST_F(E2eFixture, ClosingWithUnsavedWorkAsksOnceAndTheAnswerDecidesTheFile)
{
    for (const auto& [answer, after] : {std::pair{QMessageBox::Yes, "abcdef"}, std::pair{QMessageBox::No, "abc"}}) {
        App()->Shutdown();
        TestSupport::ClearSettings();
        const QString path = MakeFile(QStringLiteral("unsaved.txt"), "abc");
        ASSERT_TRUE(App()->InitInstance({path}));
        Settle();
        CMFCScintilla* editor = EditorOf(Frame()->ActiveChild());
        ASSERT_NE(editor, nullptr);
        QTest::keyClick(editor, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(editor, QStringLiteral("def"));
        Frame()->Action(Cmd::ViewWordWrap)->trigger();
        m_answerer = std::make_unique<TestSupport::ModalAnswerer>(answer);
        Frame()->close();
        Settle();
        EXPECT_EQ(Messages().size(), 1) << "one question about the one modified file";
        EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), QByteArray(after)));
        EXPECT_EQ(SavedValue(QStringLiteral("ViewSettings/WordWrap")).toInt(), 1);
    }
}

} // namespace
