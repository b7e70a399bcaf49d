#include "TestSupport.h"

#include "app/CRegistryStore.h"
#include "editor/CMFCScintilla.h"
#include "search/CFindDialog.h"
#include "search/CHistoryComboBox.h"
#include "search/CReplaceDialog.h"
#include "search/CSearchCommands.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

using TestSupport::ModalAnswerer;

const QString NotFound = QStringLiteral("The search text was not found");

int Setting(const char* name)
{
    return CRegistryStore().GetProfileInt(QStringLiteral("FindReplace"), QLatin1String(name), -1);
}

void WriteSetting(const char* name, int value)
{
    CRegistryStore().WriteProfileInt(QStringLiteral("FindReplace"), QLatin1String(name), value);
}

template <typename T>
T* Child(QWidget* dialog, const char* name)
{
    T* child = dialog->findChild<T*>(QLatin1String(name));
    EXPECT_NE(child, nullptr) << name;
    return child;
}

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
        m_active = m_editors[0].get();
        m_commands = new CSearchCommands(m_window.get(), [this] { return m_active; });
    }
    void TearDown() override
    {
        m_window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static void SetText(CMFCScintilla* editor, const QByteArray& text, long start = 0, long end = -1)
    {
        editor->SendScintilla(QsciScintillaBase::SCI_SETTEXT, 0UL, text.constData());
        editor->SetSel(start, end < 0 ? start : end);
    }
    static std::pair<long, long> Selection(const CMFCScintilla* editor)
    {
        return {editor->GetSelectionStart(), editor->GetSelectionEnd()};
    }
    CMFCScintilla* Editor(int i) const { return m_editors[i].get(); }
    // Lets the dialogs that were asked to go actually go.
    static void FlushDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    std::unique_ptr<QWidget> m_window;
    QComboBox* m_findBox = nullptr;
    std::unique_ptr<CMFCScintilla> m_editors[2];
    CMFCScintilla* m_active = nullptr;
    CSearchCommands* m_commands = nullptr;
};

// ---------------------------------------------------------------------------------------
// Find Next and Find Previous from the toolbar box.

TEST_F(SearchDialogsTest, FindFromBoxWithoutTextViewHasNothingToDo)
{
    m_active = nullptr;
    m_findBox->setEditText(QStringLiteral("abc"));
    ModalAnswerer answerer;
    m_commands->OnFindNextFromBox(false);
    m_commands->OnFindNextFromBox(true);
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("Find has nothing to do"),
                                             QStringLiteral("Find has nothing to do")}));
}

TEST_F(SearchDialogsTest, FindFromEmptyBoxDoesNothing)
{
    SetText(Editor(0), "abc abc", 1);
    m_findBox->setEditText(QString());
    ModalAnswerer answerer;
    m_commands->OnFindNextFromBox(false);
    EXPECT_TRUE(answerer.Texts().isEmpty());
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(1L, 1L));
}

TEST_F(SearchDialogsTest, FindFromBoxIgnoresTheDialogOptions)
{
    // A case-sensitive whole-word search was the last one; the box searches plainly.
    SetText(Editor(0), "xABCx abc");
    m_commands->FindInActiveView(QStringLiteral("abc"), true, true, false, false, false);
    SetText(Editor(0), "xABCx abc");
    m_findBox->setEditText(QStringLiteral("abc"));
    ModalAnswerer answerer;
    m_commands->OnFindNextFromBox(false);
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(1L, 4L));
    EXPECT_TRUE(answerer.Texts().isEmpty());
}

TEST_F(SearchDialogsTest, FindNextWrapsButFindPreviousStopsAtTheTop)
{
    SetText(Editor(0), "abc abc", 4, 7);
    m_findBox->setEditText(QStringLiteral("abc"));
    ModalAnswerer answerer;
    m_commands->OnFindNextFromBox(false);
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(0L, 3L)) << "forward wraps";
    EXPECT_TRUE(answerer.Texts().isEmpty());

    m_commands->OnFindNextFromBox(true);
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(0L, 3L)) << "backward stops";
    EXPECT_EQ(answerer.Texts(), QStringList({NotFound}));
}

TEST_F(SearchDialogsTest, FindFromBoxMissSaysNotFound)
{
    SetText(Editor(0), "abc");
    m_findBox->setEditText(QStringLiteral("xyz"));
    ModalAnswerer answerer;
    m_commands->OnFindNextFromBox(false);
    EXPECT_EQ(answerer.Texts(), QStringList({NotFound}));
}

// ---------------------------------------------------------------------------------------
// The routines behind the dialogs.

TEST_F(SearchDialogsTest, InvalidExpressionIsNotFound)
{
    SetText(Editor(0), "a(b[c");
    ModalAnswerer answerer;
    for (const char* pattern : {"(", "[c", "b{2,1}", "+"})
        m_commands->FindInActiveView(QLatin1String(pattern), false, false, true, false, true);
    m_commands->MarkAllInActiveView(QStringLiteral("("), false, false, true);
    EXPECT_EQ(answerer.Texts(), QStringList(5, NotFound));
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("a(b[c"));
}

TEST_F(SearchDialogsTest, FoundTextGoesToTheToolbarBox)
{
    SetText(Editor(0), "find me");
    m_commands->FindInActiveView(QStringLiteral("me"), false, false, false, false, true);
    EXPECT_EQ(m_findBox->currentText(), QStringLiteral("me"));
    EXPECT_EQ(m_commands->LastSearchText(), QStringLiteral("me"));
}

TEST_F(SearchDialogsTest, ReplaceAllReportsItsCount)
{
    struct Case
    {
        const char* text;
        long selStart, selEnd;
        bool selection;
        QString message;
        const char* expected;
    };
    const Case cases[] = {
        {"a a a", 0, 0, false, QStringLiteral("3 occurrence(s) replaced"), "b b b"},
        {"xyz", 0, 0, false, QStringLiteral("0 occurrence(s) replaced"), "xyz"},
        {"a\na", 1, 1, true, QStringLiteral("Could not replace in selection as nothing was selected."), "a\na"},
        {"a a\na", 0, 1, true, QStringLiteral("2 occurrence(s) replaced"), "b b\na"},
    };
    for (const Case& c : cases) {
        SetText(Editor(0), c.text, c.selStart, c.selEnd);
        ModalAnswerer answerer;
        EXPECT_EQ(m_commands->ReplaceInActiveView(QStringLiteral("a"), QStringLiteral("b"), false,
                                                  false, false, c.selection, true, 5),
                  -1);
        EXPECT_EQ(answerer.Texts(), QStringList({c.message})) << c.text;
        EXPECT_EQ(Editor(0)->GetText(), QByteArray(c.expected));
    }
}

TEST_F(SearchDialogsTest, ReplaceStartsOverWhenTheViewChanges)
{
    SetText(Editor(0), "cat cat");
    SetText(Editor(1), "cat cat", 0, 3);
    long last = m_commands->ReplaceInActiveView(QStringLiteral("cat"), QStringLiteral("dog"),
                                                false, false, false, false, false, -1);
    EXPECT_EQ(last, 0);

    // Another view: its selection was not found by us, so this press only finds.
    m_active = Editor(1);
    last = m_commands->ReplaceInActiveView(QStringLiteral("cat"), QStringLiteral("dog"), false,
                                           false, false, false, false, last);
    EXPECT_EQ(last, 4);
    EXPECT_EQ(Editor(1)->GetText(), QByteArray("cat cat"));

    last = m_commands->ReplaceInActiveView(QStringLiteral("cat"), QStringLiteral("dog"), false,
                                           false, false, false, false, last);
    EXPECT_EQ(Editor(1)->GetText(), QByteArray("cat dog"));
    EXPECT_EQ(last, 0);
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("cat cat"));
}

// ---------------------------------------------------------------------------------------
// The dialogs.

TEST_F(SearchDialogsTest, FindAndReplaceDialogsAreExclusive)
{
    m_commands->ShowFindDialog(QStringLiteral("one"));
    QPointer<CFindDialog> find = m_commands->FindDialog();
    ASSERT_TRUE(find);
    EXPECT_EQ(find->FindCombo()->currentText(), QStringLiteral("one"));

    m_commands->ShowReplaceDialog(QStringLiteral("two"));
    FlushDeletes();
    EXPECT_FALSE(find);
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
    QPointer<CReplaceDialog> replace = m_commands->ReplaceDialog();
    ASSERT_TRUE(replace);

    // Opening it again only brings it forward: the new text is not used.
    m_commands->ShowReplaceDialog(QStringLiteral("three"));
    EXPECT_EQ(m_commands->ReplaceDialog(), replace.data());
    EXPECT_EQ(replace->FindCombo()->currentText(), QStringLiteral("two"));

    m_commands->ShowFindDialog(QString());
    FlushDeletes();
    EXPECT_FALSE(replace);
    EXPECT_NE(m_commands->FindDialog(), nullptr);
}

TEST_F(SearchDialogsTest, FindDialogLoadsItsOptions)
{
    WriteSetting("MatchCase", 1);
    WriteSetting("MatchWord", 0);
    WriteSetting("RegExp", 1);
    WriteSetting("SearchUp", 1);
    WriteSetting("WrapAround", 1);
    m_commands->ShowFindDialog(QString());
    CFindDialog* dialog = m_commands->FindDialog();
    EXPECT_TRUE(Child<QCheckBox>(dialog, "matchCase")->isChecked());
    EXPECT_FALSE(Child<QCheckBox>(dialog, "matchWord")->isChecked());
    EXPECT_TRUE(Child<QCheckBox>(dialog, "regExp")->isChecked());
    EXPECT_TRUE(Child<QCheckBox>(dialog, "wrapAround")->isChecked());
    EXPECT_TRUE(Child<QRadioButton>(dialog, "searchUp")->isChecked());
    EXPECT_FALSE(Child<QRadioButton>(dialog, "searchDown")->isChecked());
    EXPECT_TRUE(dialog->MatchCase() && dialog->RegExp() && dialog->SearchUp() && dialog->WrapAround());
    EXPECT_FALSE(dialog->MatchWord());
}

TEST_F(SearchDialogsTest, FindDialogCloseWritesTheOptionsAndDirectionFollowsTheButton)
{
    m_commands->ShowFindDialog(QString());
    QPointer<CFindDialog> dialog = m_commands->FindDialog();
    Child<QCheckBox>(dialog, "matchCase")->click();
    Child<QCheckBox>(dialog, "wrapAround")->click();
    auto* up = Child<QRadioButton>(dialog, "searchUp");
    up->click();
    up->click(); // a second click on the checked button changes nothing
    EXPECT_TRUE(dialog->SearchUp());
    Child<QPushButton>(dialog, "close")->click();
    FlushDeletes();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("MatchCase"), 1);
    EXPECT_EQ(Setting("MatchWord"), 0);
    EXPECT_EQ(Setting("RegExp"), 0);
    EXPECT_EQ(Setting("SearchUp"), 1);
    EXPECT_EQ(Setting("WrapAround"), 1);
    EXPECT_EQ(Setting("Selection"), -1) << "Find leaves the replace scope alone";

    m_commands->ShowFindDialog(QString());
    dialog = m_commands->FindDialog();
    EXPECT_TRUE(Child<QRadioButton>(dialog, "searchUp")->isChecked());
    Child<QRadioButton>(dialog, "searchDown")->click();
    EXPECT_FALSE(dialog->SearchUp());
    Child<QPushButton>(dialog, "close")->click();
    EXPECT_EQ(Setting("SearchUp"), 0);
}

TEST_F(SearchDialogsTest, EscapeAndMainWindowCloseLeaveTheOptionsUnwritten)
{
    m_commands->ShowFindDialog(QString());
    QPointer<CFindDialog> find = m_commands->FindDialog();
    Child<QCheckBox>(find, "regExp")->click();
    find->reject();
    FlushDeletes();
    EXPECT_FALSE(find);
    EXPECT_EQ(Setting("RegExp"), -1);

    m_commands->ShowReplaceDialog(QString());
    QPointer<CReplaceDialog> replace = m_commands->ReplaceDialog();
    Child<QCheckBox>(replace, "matchCase")->click();
    m_window->close();
    EXPECT_FALSE(replace);
    EXPECT_EQ(Setting("MatchCase"), -1);
}

TEST_F(SearchDialogsTest, DestroyDialogsRemovesThem)
{
    m_commands->ShowFindDialog(QString());
    QPointer<CFindDialog> find = m_commands->FindDialog();
    m_commands->DestroyDialogs();
    EXPECT_FALSE(find);
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
}

TEST_F(SearchDialogsTest, PlacementsAreSavedUnderTheirNames)
{
    m_commands->ShowFindDialog(QString());
    m_commands->FindDialog()->resize(520, 260);
    Child<QPushButton>(m_commands->FindDialog(), "close")->click();
    FlushDeletes();
    const QString stored = CRegistryStore().GetProfileString(QStringLiteral("FindDialog"),
                                                             QStringLiteral("Placement"));
    ASSERT_FALSE(stored.isEmpty());

    m_commands->ShowReplaceDialog(QString());
    m_commands->DestroyDialogs();
    EXPECT_FALSE(CRegistryStore()
                     .GetProfileString(QStringLiteral("ReplaceDialog"), QStringLiteral("Placement"))
                     .isEmpty());

    m_commands->ShowFindDialog(QString());
    EXPECT_EQ(m_commands->FindDialog()->size(), QSize(520, 260));
}

TEST_F(SearchDialogsTest, FindDialogSearchesWithItsOptionsAndRemembersTheText)
{
    SetText(Editor(0), "Abc abc ABC", 11);
    m_commands->ShowFindDialog(QStringLiteral("ABC"));
    CFindDialog* dialog = m_commands->FindDialog();
    Child<QCheckBox>(dialog, "matchCase")->click();
    Child<QRadioButton>(dialog, "searchUp")->click();
    ModalAnswerer answerer;
    Child<QPushButton>(dialog, "findNext")->click();
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(8L, 11L));
    Child<QPushButton>(dialog, "findNext")->click();
    EXPECT_EQ(answerer.Texts(), QStringList({NotFound})) << "no wrap: upward stops at the top";

    EXPECT_EQ(dialog->FindCombo()->history().value(0), QStringLiteral("ABC"));
    dialog->reject();
    FlushDeletes();
    // The next dialog opened without a text starts with the newest search.
    m_commands->ShowReplaceDialog(QString());
    EXPECT_EQ(m_commands->ReplaceDialog()->FindCombo()->currentText(), QStringLiteral("ABC"));
}

TEST_F(SearchDialogsTest, FindDialogEmptyTextDoesNothing)
{
    SetText(Editor(0), "abc", 1);
    m_commands->ShowFindDialog(QString());
    ModalAnswerer answerer;
    Child<QPushButton>(m_commands->FindDialog(), "findNext")->click();
    Child<QPushButton>(m_commands->FindDialog(), "markAll")->click();
    EXPECT_TRUE(answerer.Texts().isEmpty());
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(1L, 1L));
}

TEST_F(SearchDialogsTest, MarkAllFromTheDialog)
{
    SetText(Editor(0), "x\nfoo\ny\nfoo");
    m_commands->ShowFindDialog(QStringLiteral("foo"));
    ModalAnswerer answerer;
    Child<QPushButton>(m_commands->FindDialog(), "markAll")->click();
    const int mask = 1 << CMFCScintilla::BookmarkMarker;
    EXPECT_TRUE(Editor(0)->SendScintilla(QsciScintillaBase::SCI_MARKERGET, 1UL) & mask);
    EXPECT_TRUE(Editor(0)->SendScintilla(QsciScintillaBase::SCI_MARKERGET, 3UL) & mask);
    EXPECT_FALSE(Editor(0)->SendScintilla(QsciScintillaBase::SCI_MARKERGET, 0UL) & mask);
    EXPECT_TRUE(answerer.Texts().isEmpty());
    EXPECT_TRUE(m_commands->FindDialog()->FindCombo()->history().isEmpty())
        << "Mark All doesn't add to the history";

    m_commands->FindDialog()->FindCombo()->setEditText(QStringLiteral("zzz"));
    Child<QPushButton>(m_commands->FindDialog(), "markAll")->click();
    EXPECT_EQ(answerer.Texts(), QStringList({NotFound}));
}

TEST_F(SearchDialogsTest, ReplaceDialogRhythmAndHistories)
{
    SetText(Editor(0), "one two one");
    m_commands->ShowReplaceDialog(QStringLiteral("one"));
    CReplaceDialog* dialog = m_commands->ReplaceDialog();
    dialog->ReplaceCombo()->setEditText(QStringLiteral("1"));
    auto* replace = Child<QPushButton>(dialog, "replace");
    replace->click();
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("one two one")) << "the first press finds";
    EXPECT_EQ(dialog->LastFound(), 0);
    replace->click();
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("1 two one"));
    EXPECT_EQ(dialog->LastFound(), 6);

    // Another view in between: the next press only finds there.
    SetText(Editor(1), "one", 0, 3);
    m_active = Editor(1);
    replace->click();
    EXPECT_EQ(Editor(1)->GetText(), QByteArray("one"));
    EXPECT_EQ(dialog->LastFound(), 0);

    EXPECT_EQ(dialog->FindCombo()->history(), QStringList({QStringLiteral("one")}));
    EXPECT_EQ(dialog->ReplaceCombo()->history(), QStringList({QStringLiteral("1")}));
    dialog->reject();
    FlushDeletes();
    m_commands->ShowReplaceDialog(QString());
    EXPECT_EQ(m_commands->ReplaceDialog()->ReplaceCombo()->currentText(), QStringLiteral("1"));
}

TEST_F(SearchDialogsTest, ReplaceAllLeavesTheReplaceStateAlone)
{
    SetText(Editor(0), "a b a");
    m_commands->ShowReplaceDialog(QStringLiteral("a"));
    CReplaceDialog* dialog = m_commands->ReplaceDialog();
    dialog->ReplaceCombo()->setEditText(QStringLiteral("c"));
    ModalAnswerer answerer;
    Child<QPushButton>(dialog, "replaceAll")->click();
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("c b c"));
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("2 occurrence(s) replaced")}));
    EXPECT_EQ(dialog->LastFound(), -1);
}

TEST_F(SearchDialogsTest, ReplaceWithoutSearchTextAsksForOne)
{
    SetText(Editor(0), "abc");
    m_commands->ShowReplaceDialog(QString());
    CReplaceDialog* dialog = m_commands->ReplaceDialog();
    dialog->ReplaceCombo()->setEditText(QStringLiteral("x"));
    ModalAnswerer answerer;
    Child<QPushButton>(dialog, "replace")->click();
    Child<QPushButton>(dialog, "replaceAll")->click();
    EXPECT_EQ(answerer.Texts(), QStringList(2, QStringLiteral("Please provide a search value")));
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("abc"));
    EXPECT_TRUE(dialog->ReplaceCombo()->history().isEmpty());
}

TEST_F(SearchDialogsTest, ReplaceScopeFollowsTheButtonAndIsWrittenAtClose)
{
    m_commands->ShowReplaceDialog(QString());
    QPointer<CReplaceDialog> dialog = m_commands->ReplaceDialog();
    auto* selected = Child<QRadioButton>(dialog, "scopeSelection");
    EXPECT_TRUE(Child<QRadioButton>(dialog, "scopeDocument")->isChecked());
    EXPECT_TRUE(Child<QPushButton>(dialog, "findNext")->isEnabled());
    selected->click();
    selected->click();
    EXPECT_TRUE(dialog->SelectionScope());
    EXPECT_FALSE(Child<QPushButton>(dialog, "findNext")->isEnabled());
    EXPECT_FALSE(Child<QPushButton>(dialog, "replace")->isEnabled());
    EXPECT_TRUE(Child<QPushButton>(dialog, "replaceAll")->isEnabled());
    Child<QCheckBox>(dialog, "matchWord")->click();
    Child<QPushButton>(dialog, "close")->click();
    FlushDeletes();
    EXPECT_FALSE(dialog);
    EXPECT_EQ(Setting("Selection"), 1);
    EXPECT_EQ(Setting("MatchWord"), 1);
    EXPECT_EQ(Setting("MatchCase"), 0);
    EXPECT_EQ(Setting("SearchUp"), -1) << "Replace leaves the direction alone";

    m_commands->ShowReplaceDialog(QString());
    dialog = m_commands->ReplaceDialog();
    EXPECT_TRUE(Child<QRadioButton>(dialog, "scopeSelection")->isChecked());
    EXPECT_FALSE(Child<QPushButton>(dialog, "replace")->isEnabled());
    Child<QRadioButton>(dialog, "scopeDocument")->click();
    EXPECT_FALSE(dialog->SelectionScope());
    EXPECT_TRUE(Child<QPushButton>(dialog, "replace")->isEnabled());
}

TEST_F(SearchDialogsTest, ReplaceAllInSelectionFromTheDialog)
{
    SetText(Editor(0), "aa\naa\naa", 4, 5);
    WriteSetting("Selection", 1);
    m_commands->ShowReplaceDialog(QStringLiteral("a"));
    CReplaceDialog* dialog = m_commands->ReplaceDialog();
    dialog->ReplaceCombo()->setEditText(QStringLiteral("bb"));
    ModalAnswerer answerer;
    Child<QPushButton>(dialog, "replaceAll")->click();
    EXPECT_EQ(Editor(0)->GetText(), QByteArray("aa\nbbbb\naa"));
    EXPECT_EQ(Selection(Editor(0)), std::make_pair(3L, 8L)) << "the widened range stays selected";
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("2 occurrence(s) replaced")}));

    Editor(0)->SetSel(2, 2);
    Child<QPushButton>(dialog, "replaceAll")->click();
    EXPECT_EQ(answerer.Texts().value(1),
              QStringLiteral("Could not replace in selection as nothing was selected."));
}

TEST_F(SearchDialogsTest, DialogsSayWhichExpressionsTheyAccept)
{
    m_commands->ShowFindDialog(QString());
    const QString help = Child<QLabel>(m_commands->FindDialog(), "regExpHelp")->text();
    EXPECT_TRUE(help.contains(QStringLiteral("PCRE2")));
    EXPECT_TRUE(help.contains(QStringLiteral("\\d")));
    m_commands->ShowReplaceDialog(QString());
    EXPECT_EQ(Child<QLabel>(m_commands->ReplaceDialog(), "regExpHelp")->text(), help);
}

TEST_F(SearchDialogsTest, FindCommandSeedsTheDialogWithTheSelection)
{
    SetText(Editor(0), "alpha beta", 0, 5);
    m_commands->OnEditFind();
    ASSERT_NE(m_commands->FindDialog(), nullptr);
    EXPECT_EQ(m_commands->FindDialog()->FindCombo()->currentText(), QStringLiteral("alpha"));
    m_commands->OnEditReplace();
    FlushDeletes();
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
    ASSERT_NE(m_commands->ReplaceDialog(), nullptr);
    EXPECT_EQ(m_commands->ReplaceDialog()->FindCombo()->currentText(), QStringLiteral("alpha"));

    // Without a text view the commands open nothing.
    m_commands->DestroyDialogs();
    m_active = nullptr;
    m_commands->OnEditFind();
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
}

TEST_F(SearchDialogsTest, DialogKeysOpenTheOtherDialog)
{
    m_commands->ShowFindDialog(QStringLiteral("seed"));
    CFindDialog* find = m_commands->FindDialog();
    find->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(find));
    QTest::keyClick(find->FindCombo(), Qt::Key_H, Qt::ControlModifier);
    FlushDeletes();
    ASSERT_NE(m_commands->ReplaceDialog(), nullptr);
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
    EXPECT_EQ(m_commands->ReplaceDialog()->FindCombo()->currentText(), QStringLiteral("seed"));
}

} // namespace
