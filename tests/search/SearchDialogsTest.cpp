#include "TestSupport.h"

#include "settings/CRegistryStore.h"
#include "editor/CMFCScintilla.h"
#include "search/CHistoryComboBox.h"
#include "search/CSearchCommands.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <utility>

namespace {

using Range = std::pair<long, long>;
using TestSupport::ModalAnswerer;

const QString NotFound = QStringLiteral("The search text was not found");
const QString NothingSelected = QStringLiteral("Could not replace in selection as nothing was selected.");

int Setting(const char* name)
{
    return CRegistryStore().GetProfileInt(QStringLiteral("FindReplace"), QLatin1String(name), -1);
}

template <typename T = QPushButton>
T* Child(QWidget* dialog, const char* name)
{
    T* child = dialog ? dialog->findChild<T*>(QLatin1String(name)) : nullptr;
    if (!child)
        throw std::runtime_error(std::string("no child ") + name);
    return child;
}

// Destroys the tracked dialogs when the window it watches closes.
class ModelessCloser : public QObject
{
public:
    explicit ModelessCloser(QList<QPointer<QWidget>>& windows) : m_windows(windows) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Close) {
            for (const QPointer<QWidget>& window : std::exchange(m_windows, {}))
                delete window.data();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QList<QPointer<QWidget>>& m_windows;
};

// A window with a toolbar find box and two text controls, one of them "active".
class SearchDialogsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_window = std::make_unique<QWidget>();
        m_findBox = new QComboBox(m_window.get());
        m_findBox->setObjectName(QStringLiteral("FindBox"));
        m_findBox->setEditable(true);
        for (auto& editor : m_editors) {
            editor = std::make_unique<CMFCScintilla>();
            editor->Setup();
            editor->SetCodePage(QsciScintillaBase::SC_CP_UTF8);
        }
        m_active = Editor(0);
        m_commands = new CSearchCommands(m_window.get(), [this] { return m_active; });
        m_commands->SetFindBox(m_findBox);
        // As the main window does: the dialogs go first when it closes.
        m_commands->SetModelessTracker([this](QWidget* dialog) { m_modeless << dialog; });
        m_closer = std::make_unique<ModelessCloser>(m_modeless);
        m_window->installEventFilter(m_closer.get());
    }
    void TearDown() override
    {
        m_window.reset();
        FlushDeletes();
    }

    CMFCScintilla* Editor(int i) const { return m_editors[i].get(); }
    void SetText(int i, const QByteArray& text, long start = 0, long end = -1)
    {
        Editor(i)->SendScintilla(QsciScintillaBase::SCI_SETTEXT, 0UL, text.constData());
        Editor(i)->SetSel(start, end < 0 ? start : end);
    }
    QByteArray Text(int i) const { return Editor(i)->GetText(); }
    Range Selection(int i) const { return {Editor(i)->GetSelectionStart(), Editor(i)->GetSelectionEnd()}; }
    // Lets the dialogs that were asked to go actually go.
    static void FlushDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    QList<QPointer<QWidget>> m_modeless;
    std::unique_ptr<ModelessCloser> m_closer;
    std::unique_ptr<QWidget> m_window;
    QComboBox* m_findBox = nullptr;
    std::unique_ptr<CMFCScintilla> m_editors[2];
    CMFCScintilla* m_active = nullptr;
    CSearchCommands* m_commands = nullptr;
};

TEST_F(SearchDialogsTest, ToolbarBoxSearchesPlainlyAndShowsTheLastSearch)
{
    ModalAnswerer answerer;
    SetText(0, "xABCx abc", 1);
    m_commands->OnFindNextFromBox(false);
    EXPECT_EQ(Selection(0), Range(1, 1)) << "an empty box does nothing";
    // The last search was case-sensitive and whole-word; the box searches without options.
    m_commands->FindInActiveView(QStringLiteral("abc"), true, true, false, false, false);
    EXPECT_EQ(Selection(0), Range(6, 9));
    EXPECT_EQ(m_findBox->currentText(), QStringLiteral("abc"));
    EXPECT_EQ(m_commands->LastSearchText(), QStringLiteral("abc"));
    m_commands->OnFindNextFromBox(false);
    EXPECT_EQ(Selection(0), Range(1, 4));
    EXPECT_TRUE(answerer.Texts().isEmpty());

    m_active = nullptr;
    m_commands->OnFindNextFromBox(true);
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("Find has nothing to do")}));
}

TEST_F(SearchDialogsTest, InvalidExpressionIsNotFound)
{
    SetText(0, "a(b[c");
    ModalAnswerer answerer;
    for (const char* pattern : {"(", "[c", "b{2,1}", "+"})
        m_commands->FindInActiveView(QLatin1String(pattern), false, false, true, false, true);
    m_commands->MarkAllInActiveView(QStringLiteral("("), false, false, true);
    EXPECT_EQ(answerer.Texts(), QStringList(5, NotFound));
    EXPECT_EQ(Text(0), QByteArray("a(b[c"));
}

TEST_F(SearchDialogsTest, DialogsAreExclusive)
{
    m_commands->ShowFindDialog(QStringLiteral("one"));
    QPointer<CFindDialog> find = m_commands->FindDialog();
    ASSERT_TRUE(find);
    EXPECT_EQ(find->FindCombo()->currentText(), QStringLiteral("one"));
    m_commands->ShowReplaceDialog(QStringLiteral("two"));
    FlushDeletes();
    EXPECT_FALSE(find);
    QPointer<CReplaceDialog> replace = m_commands->ReplaceDialog();
    ASSERT_TRUE(replace);
    m_commands->ShowReplaceDialog(QStringLiteral("three"));
    EXPECT_EQ(m_commands->ReplaceDialog(), replace.data()) << "opening it again brings it forward";
    EXPECT_EQ(replace->FindCombo()->currentText(), QStringLiteral("two"));

    m_commands->ShowFindDialog(QStringLiteral("seed"));
    FlushDeletes();
    EXPECT_FALSE(replace);
    find = m_commands->FindDialog();
    find->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(find));
    QTest::keyClick(find->FindCombo(), Qt::Key_H, Qt::ControlModifier);
    FlushDeletes();
    EXPECT_FALSE(find) << "the Replace key in the Find dialog swaps them";
    ASSERT_NE(m_commands->ReplaceDialog(), nullptr);
    EXPECT_EQ(m_commands->ReplaceDialog()->FindCombo()->currentText(), QStringLiteral("seed"));
}

TEST_F(SearchDialogsTest, FindDialogShowsItsOptionsAndWritesThemAtCloseOnly)
{
    for (const char* name : {"MatchCase", "RegExp", "SearchUp", "WrapAround"})
        CRegistryStore().WriteProfileInt(QStringLiteral("FindReplace"), QLatin1String(name), 1);
    m_commands->ShowFindDialog(QString());
    QPointer<CFindDialog> dialog = m_commands->FindDialog();
    for (const char* name : {"matchCase", "regExp", "wrapAround"})
        EXPECT_TRUE(Child<QCheckBox>(dialog, name)->isChecked()) << name;
    EXPECT_FALSE(Child<QCheckBox>(dialog, "matchWord")->isChecked());
    EXPECT_TRUE(Child<QRadioButton>(dialog, "searchUp")->isChecked());

    // A second click on the checked button changes nothing.
    for (int i = 0; i < 2; ++i)
        Child<QRadioButton>(dialog, "searchDown")->click();
    EXPECT_FALSE(dialog->SearchUp());
    EXPECT_FALSE(Child<QRadioButton>(dialog, "searchUp")->isChecked());
    Child<QCheckBox>(dialog, "matchCase")->click();
    Child(dialog, "close")->click();
    FlushDeletes();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("MatchCase"), 0);
    EXPECT_EQ(Setting("RegExp"), 1);
    EXPECT_EQ(Setting("SearchUp"), 0);
    EXPECT_EQ(Setting("Selection"), -1) << "Find leaves the replace scope alone";

    m_commands->ShowFindDialog(QString());
    dialog = m_commands->FindDialog();
    EXPECT_TRUE(Child<QRadioButton>(dialog, "searchDown")->isChecked());
    Child<QCheckBox>(dialog, "regExp")->click();
    dialog->reject();
    FlushDeletes();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("RegExp"), 1) << "Escape writes nothing";
}

TEST_F(SearchDialogsTest, ReplaceScopeFollowsTheButtonIsWrittenAtCloseAndReplacesInSelection)
{
    m_commands->ShowReplaceDialog(QString());
    QPointer<CReplaceDialog> dialog = m_commands->ReplaceDialog();
    EXPECT_TRUE(Child<QRadioButton>(dialog, "scopeDocument")->isChecked());
    for (int i = 0; i < 2; ++i)
        Child<QRadioButton>(dialog, "scopeSelection")->click();
    EXPECT_TRUE(dialog->SelectionScope());
    EXPECT_FALSE(Child(dialog, "findNext")->isEnabled());
    EXPECT_FALSE(Child(dialog, "replace")->isEnabled());
    Child<QCheckBox>(dialog, "matchCase")->click();
    Child(dialog, "close")->click();
    FlushDeletes();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("Selection"), 1);
    EXPECT_EQ(Setting("MatchCase"), 1);
    EXPECT_EQ(Setting("SearchUp"), -1) << "Replace leaves the direction alone";

    // Opened again in selection scope: Replace All over the whole lines the selection touches.
    SetText(0, "aa\naa\naa", 4, 5);
    m_commands->ShowReplaceDialog(QStringLiteral("a"));
    dialog = m_commands->ReplaceDialog();
    EXPECT_TRUE(Child<QRadioButton>(dialog, "scopeSelection")->isChecked());
    dialog->ReplaceCombo()->setEditText(QStringLiteral("bb"));
    ModalAnswerer answerer;
    Child(dialog, "replaceAll")->click();
    EXPECT_EQ(Text(0), QByteArray("aa\nbbbb\naa"));
    EXPECT_EQ(Selection(0), Range(3, 8)) << "the widened range stays selected";
    Editor(0)->SetSel(2, 2);
    Child(dialog, "replaceAll")->click();
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("2 occurrence(s) replaced"), NothingSelected}));
    Child<QRadioButton>(dialog, "scopeDocument")->click();
    EXPECT_FALSE(dialog->SelectionScope());
    EXPECT_TRUE(Child(dialog, "replace")->isEnabled());
    // Closing the main window destroys the dialog without writing.
    m_window->close();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("Selection"), 1);
}

TEST_F(SearchDialogsTest, FindDialogSearchesWithItsOptionsAndMarksAll)
{
    SetText(0, "Abc\nabc\nABC", 11);
    m_commands->ShowFindDialog(QString());
    CFindDialog* dialog = m_commands->FindDialog();
    ModalAnswerer answerer;
    Child(dialog, "findNext")->click();
    Child(dialog, "markAll")->click();
    EXPECT_TRUE(answerer.Texts().isEmpty()) << "an empty text does nothing";
    EXPECT_EQ(Selection(0), Range(11, 11));

    dialog->FindCombo()->setEditText(QStringLiteral("ABC"));
    Child<QCheckBox>(dialog, "matchCase")->click();
    Child<QRadioButton>(dialog, "searchUp")->click();
    Child(dialog, "findNext")->click();
    EXPECT_EQ(Selection(0), Range(8, 11));
    Child(dialog, "findNext")->click();
    EXPECT_EQ(answerer.Texts(), QStringList({NotFound})) << "no wrap: upward stops at the top";
    EXPECT_EQ(dialog->FindCombo()->history(), QStringList({QStringLiteral("ABC")}));

    dialog->FindCombo()->setEditText(QStringLiteral("abc"));
    Child(dialog, "markAll")->click();
    EXPECT_EQ(Editor(0)->SendScintilla(QsciScintillaBase::SCI_MARKERNEXT, 0UL, 1L << CMFCScintilla::BookmarkMarker), 1);
    EXPECT_EQ(Editor(0)->SendScintilla(QsciScintillaBase::SCI_MARKERNEXT, 2UL, 1L << CMFCScintilla::BookmarkMarker), -1);

    dialog->reject();
    FlushDeletes();
    m_commands->ShowReplaceDialog(QString());
    EXPECT_EQ(m_commands->ReplaceDialog()->FindCombo()->currentText(), QStringLiteral("ABC"))
        << "the next dialog starts with the newest search";
}

TEST_F(SearchDialogsTest, ReplaceDialogRhythmStartsOverInAnotherView)
{
    SetText(0, "one two one");
    m_commands->ShowReplaceDialog(QString());
    CReplaceDialog* dialog = m_commands->ReplaceDialog();
    dialog->ReplaceCombo()->setEditText(QStringLiteral("1"));
    ModalAnswerer answerer;
    Child(dialog, "replace")->click();
    Child(dialog, "replaceAll")->click();
    EXPECT_EQ(answerer.Texts(), QStringList(2, QStringLiteral("Please provide a search value")));

    dialog->FindCombo()->setEditText(QStringLiteral("one"));
    Child(dialog, "replace")->click();
    EXPECT_EQ(Text(0), QByteArray("one two one")) << "the first press finds";
    EXPECT_EQ(dialog->LastFound(), 0);
    Child(dialog, "replace")->click();
    EXPECT_EQ(Text(0), QByteArray("1 two one"));
    EXPECT_EQ(dialog->LastFound(), 6);

    // Another view whose selection we didn't find: the next press only finds there.
    SetText(1, "one one", 0, 3);
    m_active = Editor(1);
    Child(dialog, "replace")->click();
    EXPECT_EQ(Text(1), QByteArray("one one"));
    EXPECT_EQ(dialog->LastFound(), 4);
    Child(dialog, "replace")->click();
    EXPECT_EQ(Text(1), QByteArray("one 1"));
    EXPECT_EQ(Text(0), QByteArray("1 two one"));
    EXPECT_EQ(dialog->LastFound(), 0);

    Child(dialog, "replaceAll")->click();
    EXPECT_EQ(Text(1), QByteArray("1 1"));
    EXPECT_EQ(dialog->LastFound(), 0) << "Replace All leaves the Replace state alone";
    EXPECT_EQ(dialog->ReplaceCombo()->history(), QStringList({QStringLiteral("1")}));
}

// Replace through the commands the dialog calls: with expressions on, the replacement's
// tags expand; off, it goes in as typed.
struct ReplaceTagsCase
{
    const char* name;
    bool regExp;
    bool replaceAll;
    const char* find;
    const char* replace;
    const char* expected;
};

class ReplaceTags : public SearchDialogsTest, public ::testing::WithParamInterface<ReplaceTagsCase>
{
};

TEST_P(ReplaceTags, ExpandOnlyWithExpressions)
{
    const ReplaceTagsCase& c = GetParam();
    SetText(0, "meet 10 pm\nmeet 11 am");
    ModalAnswerer answerer;
    if (c.replaceAll) {
        m_commands->ReplaceInActiveView(QString::fromUtf8(c.find), QString::fromUtf8(c.replace), false,
                                        false, c.regExp, false, true, -1);
    } else {
        const long found = m_commands->ReplaceInActiveView(QString::fromUtf8(c.find),
                                                           QString::fromUtf8(c.replace), false, false,
                                                           c.regExp, false, false, -1);
        ASSERT_NE(found, -1);
        m_commands->ReplaceInActiveView(QString::fromUtf8(c.find), QString::fromUtf8(c.replace), false,
                                        false, c.regExp, false, false, found);
    }
    EXPECT_EQ(Text(0), QByteArray(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Cases, ReplaceTags, ::testing::Values(
    ReplaceTagsCase{"groups_all", true, true, "meet (\\d+) (\\w+)", "\\2 at \\1", "pm at 10\nam at 11"},
    ReplaceTagsCase{"groups_one", true, false, "meet (\\d+) (\\w+)", "\\2 at \\1", "pm at 10\nmeet 11 am"},
    ReplaceTagsCase{"whole_match_tab_newline_backslash", true, true, "\\d+", "[\\0]\\t\\n\\\\",
                    "meet [10]\t\n\\ pm\nmeet [11]\t\n\\ am"},
    ReplaceTagsCase{"literal_without_expressions", false, true, "10", "\\2 at \\1\\n",
                    "meet \\2 at \\1\\n pm\nmeet 11 am"},
    ReplaceTagsCase{"literal_one_without_expressions", false, false, "11", "\\0\\t",
                    "meet 10 pm\nmeet \\0\\t am"}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
