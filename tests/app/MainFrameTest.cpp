#include "MainFrameFixture.h"

#include "app/CRegistryStore.h"
#include "app/CommandIds.h"
#include "app/KeyboardIndicators.h"
#include "search/CHistoryComboBox.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDialog>
#include <QFile>
#include <QFontDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QWidgetAction>
#include <QLineEdit>
#include <QMessageBox>
#include <QMap>
#include <QPointer>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QUrl>

namespace {

using Sci = QsciScintillaBase;

// The settings file as text, section by section: proof of what reached the disk.
QMap<QString, QMap<QString, QString>> ReadSettingsFile()
{
    QMap<QString, QMap<QString, QString>> sections;
    QFile file(CRegistryStore().FileName());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return sections;
    QString section;
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            section = QUrl::fromPercentEncoding(line.mid(1, line.size() - 2).toUtf8());
            continue;
        }
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals > 0)
            sections[section][line.left(equals)] = line.mid(equals + 1);
    }
    return sections;
}

// --- Display toggles -----------------------------------------------------------------

struct ToggleCase
{
    const char* name;
    int id;
    unsigned int query;   // the control's read-back message
    unsigned long wParam; // its argument (a margin)
    long whenOff;
    long whenOn;
};

// Line numbers show as a margin width, so "on" means "not 0" there.
const ToggleCase kToggleCases[] = {
    {"WordWrap", Cmd::ViewWordWrap, Sci::SCI_GETWRAPMODE, 0, Sci::SC_WRAP_NONE, Sci::SC_WRAP_WORD},
    {"Whitespace", Cmd::ViewWhitespace, Sci::SCI_GETVIEWWS, 0, Sci::SCWS_INVISIBLE, Sci::SCWS_VISIBLEALWAYS},
    {"LineEndings", Cmd::ViewLineEndings, Sci::SCI_GETVIEWEOL, 0, 0, 1},
    {"CaretLine", Cmd::ViewCaretLine, Sci::SCI_GETCARETLINEVISIBLE, 0, 0, 1},
    {"LineNumbers", Cmd::ViewLineNumbers, Sci::SCI_GETMARGINWIDTHN, CMFCScintilla::LineNumberMargin, 0, -1},
    {"CodeFolding", Cmd::ViewCodeFolding, Sci::SCI_GETMARGINSENSITIVEN, CMFCScintilla::FoldMargin, 0, 1},
    {"BlockSelect", Cmd::ViewBlockSelect, Sci::SCI_GETSELECTIONMODE, 0, Sci::SC_SEL_STREAM, Sci::SC_SEL_RECTANGLE},
};

class ViewToggleTest : public MainFrameFixture, public ::testing::WithParamInterface<ToggleCase>
{
protected:
    static long Read(CScrivelFrame* frame, const ToggleCase& c) { return Sci(frame, c.query, c.wParam); }
    static void ExpectState(CScrivelFrame* frame, const ToggleCase& c, bool on)
    {
        const long value = Read(frame, c);
        if (on && c.whenOn == -1)
            EXPECT_GT(value, 0) << frame->windowTitle().toStdString();
        else
            EXPECT_EQ(value, on ? c.whenOn : c.whenOff) << frame->windowTitle().toStdString();
    }
};

TEST_P(ViewToggleTest, ReachesEveryTextViewAndNoOtherKind)
{
    const ToggleCase& c = GetParam();
    StartEmpty();
    CScrivelFrame* first = OpenText(QStringLiteral("one.txt"), "alpha\nbeta\n");
    CScrivelFrame* second = OpenText(QStringLiteral("two.txt"), "gamma\n");
    CChildFrame* hex = OpenHex(QStringLiteral("three.bin"));
    ASSERT_TRUE(first && second && hex);
    ASSERT_EQ(Frame()->ChildFrames().size(), 3);
    EXPECT_EQ(Frame()->TextViews().size(), 2) << "only text frames are walked";
    // The hex frame is the active one: the command still reaches the text views.
    ASSERT_EQ(Frame()->ActiveChild(), hex);

    ExpectState(first, c, false);
    EXPECT_FALSE(Checked(c.id));

    Run(c.id);
    ExpectState(first, c, true);
    ExpectState(second, c, true);
    EXPECT_TRUE(Checked(c.id));

    // A view opened afterwards starts with the setting as it now stands. (Block selection
    // is left out here: the control drops rectangular mode at the first caret jump, and
    // loading the text makes one; keeping the mode is the view's business.)
    CScrivelFrame* third = OpenText(QStringLiteral("four.txt"), "delta\n");
    ASSERT_TRUE(third);
    if (c.id != Cmd::ViewBlockSelect)
        ExpectState(third, c, true);

    Run(c.id);
    for (CScrivelFrame* frame : {first, second, third})
        ExpectState(frame, c, false);
    EXPECT_FALSE(Checked(c.id));
}

INSTANTIATE_TEST_SUITE_P(Toggles, ViewToggleTest, ::testing::ValuesIn(kToggleCases),
                         [](const auto& info) { return std::string(info.param.name); });

using MainFrameTest = MainFrameFixture;

TEST_F(MainFrameTest, MatchBracketFlipsItsSettingWithACheckMark)
{
    StartEmpty();
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    EXPECT_EQ(Frame()->Settings().view.MatchBracket, 0);
    EXPECT_FALSE(Checked(Cmd::ViewMatchBracket));
    Run(Cmd::ViewMatchBracket);
    EXPECT_EQ(Frame()->Settings().view.MatchBracket, 1);
    EXPECT_TRUE(Checked(Cmd::ViewMatchBracket));
    Run(Cmd::ViewMatchBracket);
    EXPECT_EQ(Frame()->Settings().view.MatchBracket, 0);
    EXPECT_FALSE(Checked(Cmd::ViewMatchBracket));
}

TEST_F(MainFrameTest, TogglesWorkWithNoDocumentOpen)
{
    StartEmpty();
    ASSERT_TRUE(Enabled(Cmd::ViewWordWrap));
    Run(Cmd::ViewWordWrap);
    EXPECT_EQ(Frame()->Settings().view.WordWrap, 1);
}

// --- Font ------------------------------------------------------------------------------

TEST_F(MainFrameTest, FontGoesToEveryTextViewWithTheFaceCutTo31Characters)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    CScrivelFrame* b = OpenText(QStringLiteral("b.txt"));
    ASSERT_TRUE(a && b);

    QFont font(QStringLiteral("A Face Name That Is Much Longer Than Thirty-One"), 17);
    font.setBold(true);
    font.setItalic(true);
    Frame()->ApplyFont(font);

    const ViewSettings& v = Frame()->Settings().view;
    EXPECT_EQ(v.FontStyle, font.family().left(31));
    EXPECT_EQ(v.FontStyle.size(), 31);
    EXPECT_EQ(v.FontSize, 17);
    EXPECT_EQ(v.FontBold, 1);
    EXPECT_EQ(v.FontItalic, 1);
    for (CScrivelFrame* frame : {a, b}) {
        EXPECT_EQ(Sci(frame, Sci::SCI_STYLEGETSIZE, Sci::STYLE_DEFAULT), 17);
        EXPECT_EQ(Sci(frame, Sci::SCI_STYLEGETBOLD, Sci::STYLE_DEFAULT), 1);
        EXPECT_EQ(Sci(frame, Sci::SCI_STYLEGETITALIC, Sci::STYLE_DEFAULT), 1);
    }

    QFont plain(QStringLiteral("Monospace"), 9);
    plain.setWeight(QFont::DemiBold); // below bold
    Frame()->ApplyFont(plain);
    EXPECT_EQ(Frame()->Settings().view.FontBold, 0);
    EXPECT_EQ(Frame()->Settings().view.FontItalic, 0);
    EXPECT_EQ(Sci(a, Sci::SCI_STYLEGETSIZE, Sci::STYLE_DEFAULT), 9);
}

TEST_F(MainFrameTest, FontCommandTakesTheDialogsChoiceAndCancelChangesNothing)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    ASSERT_TRUE(a);
    const ViewSettings before = Frame()->Settings().view;

    QTimer::singleShot(50, [] {
        if (auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    Run(Cmd::ViewFont);
    EXPECT_EQ(Frame()->Settings().view, before);

    QTimer::singleShot(50, [] {
        if (auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget())) {
            QFont font = dialog->currentFont();
            font.setPointSize(21);
            dialog->setCurrentFont(font);
            dialog->accept();
        }
    });
    Run(Cmd::ViewFont);
    EXPECT_EQ(Frame()->Settings().view.FontSize, 21);
    EXPECT_EQ(Sci(a, Sci::SCI_STYLEGETSIZE, Sci::STYLE_DEFAULT), 21);
}

// --- Settings at close -------------------------------------------------------------------

TEST_F(MainFrameTest, TheFirstCloseWritesEveryValue)
{
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(ReadSettingsFile().value(QStringLiteral("ViewSettings")).isEmpty())
        << "nothing is written before the close";
    Run(Cmd::ViewWordWrap);
    CRegistryStore().WriteProfileString(QStringLiteral("FindReplace"),
                                        QStringLiteral("LastSelectedValue"), QStringLiteral("word"));

    ASSERT_TRUE(Frame()->close());
    const auto file = ReadSettingsFile();

    const QStringList viewNames = {
        "WordWrap", "Whitespace", "LineEndings", "CaretLine", "LineNumbers", "FontSize",
        "FontBold", "FontItalic", "CodeFolding", "BlockSelect", "LargeTBIcons", "FontStyle",
        "TabAsSpaces", "TabGuides", "TabWidth", "MatchBracket", "BraceBadColour",
        "BraceHighlight", "CaretLineColour", "CaretLineTransparency"};
    for (const QString& name : viewNames)
        EXPECT_TRUE(file.value(QStringLiteral("ViewSettings")).contains(name)) << name.toStdString();
    const QMap<QString, QStringList> others = {
        {QStringLiteral("PrintSettings"), {"PrintHeader", "PrintFooter", "PrintLineNumbers"}},
        {QStringLiteral("BackupSettings"), {"DeleteOnExit", "Enabled", "Versions", "BackupFolder"}},
        {QStringLiteral("OutputSettings"), {"ReuseWindows"}},
        {QStringLiteral("EditSettings"), {"ResetUndoOnSave"}},
        {QStringLiteral("Settings"), {"MDITabInActive"}},
    };
    for (auto it = others.cbegin(); it != others.cend(); ++it) {
        for (const QString& name : it.value())
            EXPECT_TRUE(file.value(it.key()).contains(name))
                << it.key().toStdString() << "/" << name.toStdString();
    }
    EXPECT_EQ(file.value(QStringLiteral("ViewSettings")).value(QStringLiteral("WordWrap")), QStringLiteral("1"));
    EXPECT_EQ(file.value(QStringLiteral("ViewSettings")).value(QStringLiteral("TabWidth")), QStringLiteral("4"));
    EXPECT_FALSE(file.value(QStringLiteral("FindReplace")).contains(QStringLiteral("LastSelectedValue")));
    EXPECT_FALSE(file.value(QStringLiteral("Control Bar State")).isEmpty());

    // The next start reads what the close wrote.
    App()->Shutdown();
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_EQ(Frame()->Settings().view.WordWrap, 1);
    EXPECT_TRUE(Checked(Cmd::ViewWordWrap));
}

TEST_F(MainFrameTest, CancelAtTheSavePromptLeavesModelessWindowsGoneAndSettingsWritten)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText(QStringLiteral("a.txt"), "old\n");
    ASSERT_TRUE(frame);
    frame->GetView()->GetEditor()->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
    ASSERT_TRUE(frame->GetDocument()->IsModified());
    QPointer<QDialog> modeless = new QDialog(Frame());
    modeless->show();
    Frame()->AddModelessWindow(modeless);
    Run(Cmd::ViewLineNumbers);

    TestSupport::ModalAnswerer answerer(QMessageBox::Cancel);
    EXPECT_FALSE(Frame()->close());
    EXPECT_EQ(answerer.Texts().size(), 1);
    EXPECT_TRUE(modeless.isNull());
    EXPECT_EQ(ReadSettingsFile().value(QStringLiteral("ViewSettings")).value(QStringLiteral("LineNumbers")),
              QStringLiteral("1"));
    EXPECT_EQ(Frame()->ChildFrames().size(), 1) << "the document stays open";
    EXPECT_TRUE(frame->GetDocument()->IsModified());
}

// --- Title, commands that depend on the children ---------------------------------------------

TEST_F(MainFrameTest, TitleFollowsTheActiveDocument)
{
    StartEmpty();
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("Morvane"));
    CScrivelFrame* a = OpenText(QStringLiteral("alpha.txt"));
    ASSERT_TRUE(a);
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("alpha.txt - Morvane"));
    ASSERT_TRUE(OpenText(QStringLiteral("beta.txt")));
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("beta.txt - Morvane"));
    Frame()->MdiArea()->setActiveSubWindow(a);
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("alpha.txt - Morvane"));
    Run(Cmd::FileNew);
    EXPECT_EQ(Frame()->windowTitle(),
              Frame()->ActiveChild()->GetDocument()->GetTitle() + QStringLiteral(" - Morvane"));
}

TEST_F(MainFrameTest, CloseAllButSelectedNeedsTwoChildrenAndKeepsTheActiveOne)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    ASSERT_TRUE(a);
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
    ASSERT_TRUE(OpenText(QStringLiteral("b.txt")));
    ASSERT_TRUE(OpenHex(QStringLiteral("c.bin")));
    EXPECT_TRUE(Enabled(Cmd::CloseAllButSelected));

    Frame()->MdiArea()->setActiveSubWindow(a);
    Run(Cmd::CloseAllButSelected);
    Settle();
    ASSERT_EQ(Frame()->ChildFrames().size(), 1);
    EXPECT_EQ(Frame()->ChildFrames().first(), a);
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
}

TEST_F(MainFrameTest, CloseAllButSelectedAsksAboutEachModifiedDocument)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    CScrivelFrame* b = OpenText(QStringLiteral("b.txt"));
    ASSERT_TRUE(a && b);
    b->GetView()->GetEditor()->SendScintilla(Sci::SCI_APPENDTEXT, 1UL, "x");
    Frame()->MdiArea()->setActiveSubWindow(a);

    TestSupport::ModalAnswerer answerer(QMessageBox::Cancel);
    Run(Cmd::CloseAllButSelected);
    QApplication::processEvents();
    EXPECT_EQ(answerer.Texts().size(), 1);
    EXPECT_EQ(Frame()->ChildFrames().size(), 2) << "a Cancel keeps the modified one";
}

TEST_F(MainFrameTest, NewWindowShowsTheSameTextInASecondFrame)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::WindowNew));
    CScrivelFrame* first = OpenText(QStringLiteral("shared.txt"), "one\n");
    ASSERT_TRUE(first);
    ASSERT_TRUE(Enabled(Cmd::WindowNew));
    Run(Cmd::WindowNew);
    auto* second = qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
    ASSERT_TRUE(second);
    ASSERT_NE(second, first);
    EXPECT_EQ(second->GetDocument(), first->GetDocument());

    second->GetView()->GetEditor()->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "two");
    EXPECT_EQ(first->GetView()->GetEditor()->GetText(), QByteArray("one\ntwo"));

    // Closing one of two views doesn't close the document.
    second->close();
    Settle();
    EXPECT_EQ(Frame()->ChildFrames().size(), 1);
    EXPECT_EQ(first->GetView()->GetEditor()->GetText(), QByteArray("one\ntwo"));
}

TEST_F(MainFrameTest, WindowMenuListsTheOpenDocumentsAndBringsOneForward)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    ASSERT_TRUE(a);
    ASSERT_TRUE(OpenHex(QStringLiteral("b.bin")));
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("WindowMenu"));
    ASSERT_TRUE(menu);

    auto listed = [menu] {
        QStringList entries;
        for (QAction* action : menu->actions()) {
            if (!action->data().isValid() && action->isCheckable())
                entries << action->text() + (action->isChecked() ? QStringLiteral(" *") : QString());
        }
        return entries;
    };
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("&1 a.txt"), QStringLiteral("&2 b.bin *")}));

    for (QAction* action : menu->actions()) {
        if (action->text() == QStringLiteral("&1 a.txt"))
            action->trigger();
    }
    EXPECT_EQ(Frame()->ActiveChild(), a);

    // Shown again, the list is rebuilt rather than added to.
    CloseAllDocuments();
    ASSERT_TRUE(OpenText(QStringLiteral("c.txt")));
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(listed(), QStringList{QStringLiteral("&1 c.txt *")});
}

TEST_F(MainFrameTest, NoTwoCommandsShareAKey)
{
    StartEmpty();
    QMap<QString, QString> owners;
    for (QAction* action : Frame()->findChildren<QAction*>()) {
        for (const QKeySequence& key : action->shortcuts()) {
            const QString name = key.toString();
            EXPECT_FALSE(owners.contains(name))
                << name.toStdString() << ": " << owners.value(name).toStdString() << " and "
                << action->text().toStdString();
            owners.insert(name, action->text());
        }
    }
    // Keys the control needs for itself are never taken.
    for (const char* key : {"Tab", "Shift+Tab", "Del", "Ins", "Backspace", "Return"})
        EXPECT_FALSE(owners.contains(QKeySequence(QString::fromLatin1(key)).toString())) << key;
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+G")), QStringLiteral("Goto..."));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+Q")), QStringLiteral("Comment"));
}

TEST_F(MainFrameTest, ToolbarIconSizeFollowsTheSettingReadAtStart)
{
    for (const auto& [large, size] : {std::pair{1, 24}, std::pair{0, 16}}) {
        App()->Shutdown();
        CRegistryStore().WriteProfileInt(QStringLiteral("ViewSettings"), QStringLiteral("LargeTBIcons"), large);
        ASSERT_TRUE(App()->InitInstance({}));
        auto* bar = Frame()->findChild<QToolBar*>(QStringLiteral("StandardToolBar"));
        ASSERT_TRUE(bar);
        EXPECT_EQ(bar->iconSize(), QSize(size, size)) << large;
        // Every button on the bar has an icon.
        for (QAction* action : bar->actions()) {
            if (!action->isSeparator() && !qobject_cast<QWidgetAction*>(action))
                EXPECT_FALSE(action->icon().isNull()) << action->text().toStdString();
        }
    }
}

TEST_F(MainFrameTest, PasteFollowsTheClipboardWithoutAnyOtherEvent)
{
    StartEmpty();
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    QApplication::clipboard()->clear();
    Settle();
    ASSERT_FALSE(Enabled(Cmd::EditPaste));

    QApplication::clipboard()->setText(QStringLiteral("pasted"));
    Settle();
    // No explicit update here: the change of the clipboard asks for one.
    EXPECT_TRUE(Frame()->Action(Cmd::EditPaste)->isEnabled());
}

// --- Navigation ---------------------------------------------------------------------------

TEST_F(MainFrameTest, BackAndForwardMoveTheCaretAcrossViews)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"), "0123456789\n0123456789\n");
    CScrivelFrame* b = OpenText(QStringLiteral("b.txt"), "abcdefghij\n");
    ASSERT_TRUE(a && b);
    NavigationHistory& history = App()->GetNavigation();
    history = NavigationHistory();
    EXPECT_FALSE(Enabled(Cmd::NavigateBack));

    history.Add(a->GetView(), 12);
    history.Add(b->GetView(), 5);
    history.Add(a->GetView(), 3);
    EXPECT_TRUE(Enabled(Cmd::NavigateBack));
    EXPECT_FALSE(Enabled(Cmd::NavigateForward));

    Run(Cmd::NavigateBack);
    EXPECT_EQ(Frame()->ActiveChild(), b);
    EXPECT_EQ(b->GetView()->GetEditor()->GetCurrentPos(), 5);
    Run(Cmd::NavigateBack);
    EXPECT_EQ(Frame()->ActiveChild(), a);
    EXPECT_EQ(a->GetView()->GetEditor()->GetCurrentPos(), 12);
    EXPECT_FALSE(Enabled(Cmd::NavigateBack));
    EXPECT_TRUE(Enabled(Cmd::NavigateForward));

    Run(Cmd::NavigateForward);
    EXPECT_EQ(Frame()->ActiveChild(), b);
    EXPECT_EQ(b->GetView()->GetEditor()->GetCurrentPos(), 5);
}

TEST_F(MainFrameTest, AClosedViewLeavesTheHistory)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"), "0123456789\n");
    CScrivelFrame* b = OpenText(QStringLiteral("b.txt"), "abcdefghij\n");
    ASSERT_TRUE(a && b);
    NavigationHistory& history = App()->GetNavigation();
    history = NavigationHistory();
    history.Add(a->GetView(), 1);
    history.Add(b->GetView(), 2);
    history.Add(a->GetView(), 3);
    b->close();
    Settle();
    for (const auto& entry : history.Entries())
        EXPECT_NE(entry.position, 2);
    EXPECT_EQ(history.Count(), 2);
}

// --- Find box, update check --------------------------------------------------------------

TEST_F(MainFrameTest, FindWithNoTextViewSaysThereIsNothingToDo)
{
    StartEmpty();
    CHistoryComboBox* box = Frame()->FindBox();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->objectName(), QStringLiteral("FindBox"));
    EXPECT_TRUE(box->isEditable());

    // (Find... and Replace... belong to the search, which decides what they do here.)
    for (const int id : {int(Cmd::EditFindNext), int(Cmd::EditFindPrevious)}) {
        TestSupport::ModalAnswerer answerer;
        Run(id);
        EXPECT_EQ(answerer.Texts(), QStringList{QStringLiteral("Find has nothing to do")}) << id;
    }

    // Enter in the box remembers the text, whatever the search then does.
    box->setFocus();
    box->lineEdit()->setText(QStringLiteral("needle"));
    {
        TestSupport::ModalAnswerer answerer;
        QTest::keyClick(box->lineEdit(), Qt::Key_Return);
        QApplication::processEvents();
    }
    EXPECT_EQ(box->history().value(0), QStringLiteral("needle"));
    EXPECT_EQ(Frame()->FindText(), QStringLiteral("needle"));
}

TEST_F(MainFrameTest, FindWithATextViewShowsNoSuchMessage)
{
    StartEmpty();
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    TestSupport::ModalAnswerer answerer;
    Run(Cmd::EditFindNext);
    QTest::qWait(50);
    for (const QString& text : answerer.Texts())
        EXPECT_NE(text, QStringLiteral("Find has nothing to do"));
}

class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public Q_SLOTS:
    void open(const QUrl& url) { urls << url; }
};

TEST_F(MainFrameTest, UpdateCheckOpensTheStoredPageOrSaysThereIsNone)
{
    StartEmpty();
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &catcher, "open");
    {
        TestSupport::ModalAnswerer answerer;
        Run(Cmd::CheckForUpdates);
        EXPECT_EQ(answerer.Texts(), QStringList{QStringLiteral("There is no update page configured.")});
    }
    EXPECT_TRUE(catcher.urls.isEmpty());

    CRegistryStore(CRegistryStore::LocalMachine)
        .WriteProfileString(QStringLiteral("Settings"), QStringLiteral("CheckForUpdates"),
                            QStringLiteral("https://updates.example.org/morvane"));
    Run(Cmd::CheckForUpdates);
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    ASSERT_EQ(catcher.urls.size(), 1);
    EXPECT_EQ(catcher.urls.first(), QUrl(QStringLiteral("https://updates.example.org/morvane")));
}

// --- Status bar ---------------------------------------------------------------------------

TEST_F(MainFrameTest, InsertKeyShowsOvertypeInTheStatusBar)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText(QStringLiteral("a.txt"));
    ASSERT_TRUE(frame);
    auto* pane = Frame()->findChild<QLabel*>(QStringLiteral("OvertypePane"));
    ASSERT_TRUE(pane);
    QApplication::processEvents();
    EXPECT_EQ(pane->text(), QStringLiteral("INS"));

    CMFCScintilla* editor = frame->GetView()->GetEditor();
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key_Insert);
    QApplication::processEvents();
    ASSERT_EQ(editor->SendScintilla(Sci::SCI_GETOVERTYPE), 1);
    EXPECT_EQ(pane->text(), QStringLiteral("OVR"));
    QTest::keyClick(editor, Qt::Key_Insert);
    QApplication::processEvents();
    EXPECT_EQ(pane->text(), QStringLiteral("INS"));

    for (const char* name : {"CapsPane", "NumPane", "ScrollPane", "PositionPane", "ProgressPane"})
        EXPECT_TRUE(Frame()->findChild<QWidget*>(QString::fromLatin1(name))) << name;
}

struct KeySpec
{
    int key;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    const char* text = "";
    bool repeat = false;
};

KeySpec Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const char* text = "",
            bool repeat = false)
{
    return KeySpec{key, modifiers, text, repeat};
}

TEST(KeyboardIndicators, LockKeysFlipAndTypedKeysRevealTheState)
{
    const struct
    {
        const char* name;
        std::vector<KeySpec> keys;
        bool caps, num, scroll;
    } cases[] = {
        {"nothing typed", {}, false, false, false},
        {"caps lock", {Key(Qt::Key_CapsLock)}, true, false, false},
        {"caps lock twice", {Key(Qt::Key_CapsLock), Key(Qt::Key_CapsLock)}, false, false, false},
        {"held caps lock flips once",
         {Key(Qt::Key_CapsLock), Key(Qt::Key_CapsLock, {}, "", true)}, true, false, false},
        {"upper case without shift", {Key(Qt::Key_A, {}, "A")}, true, false, false},
        {"lower case with shift", {Key(Qt::Key_A, Qt::ShiftModifier, "a")}, true, false, false},
        {"lower case corrects a wrong guess",
         {Key(Qt::Key_CapsLock), Key(Qt::Key_A, {}, "a")}, false, false, false},
        {"digits say nothing about caps", {Key(Qt::Key_CapsLock), Key(Qt::Key_1, {}, "1")}, true, false, false},
        {"ctrl letters say nothing", {Key(Qt::Key_A, Qt::ControlModifier, "A")}, false, false, false},
        {"num lock", {Key(Qt::Key_NumLock)}, false, true, false},
        {"keypad digit", {Key(Qt::Key_7, Qt::KeypadModifier, "7")}, false, true, false},
        {"keypad home means num lock is off",
         {Key(Qt::Key_NumLock), Key(Qt::Key_Home, Qt::KeypadModifier)}, false, false, false},
        {"scroll lock", {Key(Qt::Key_ScrollLock)}, false, false, true},
    };
    for (const auto& c : cases) {
        KeyboardIndicators indicators;
        for (const KeySpec& key : c.keys)
            indicators.Observe(QKeyEvent(QEvent::KeyPress, key.key, key.modifiers,
                                         QString::fromLatin1(key.text), key.repeat));
        EXPECT_EQ(indicators.CapsLock(), c.caps) << c.name;
        EXPECT_EQ(indicators.NumLock(), c.num) << c.name;
        EXPECT_EQ(indicators.ScrollLock(), c.scroll) << c.name;
    }
}

} // namespace

#include "MainFrameTest.moc"
