#include "MainFrameFixture.h"
#include "MnemonicCheck.h"

#include "properties/CPageGeneral.h"
#include "shell/CMenuPlaces.h"
#include "properties/CPageGeneralMore.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"
#include "shell/CShellEvents.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QFontDialog>
#include <QFontInfo>
#include <QMap>
#include <QMenuBar>
#include <QMenu>
#include <QTimer>
#include <QToolBar>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QSet>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>

namespace {

using Sci = QsciScintillaBase;

// A fresh look at the user's settings file.
std::unique_ptr<QSettings> SettingsFile()
{
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Brackwyn"),
                                       QStringLiteral("Morvane"));
}

struct ToggleCase
{
    const char* name;
    int id;
    unsigned int query;   // the control's read-back message
    unsigned long wParam; // its argument (a margin)
    long whenOff;
    long whenOn; // -1: any width above 0
};

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
    static void Expect(CScrivelFrame* frame, bool on)
    {
        const ToggleCase& c = GetParam();
        const long value = Sci(frame, c.query, c.wParam);
        if (on && c.whenOn == -1)
            EXPECT_GT(value, 0) << frame->windowTitle().toStdString();
        else
            EXPECT_EQ(value, on ? c.whenOn : c.whenOff) << frame->windowTitle().toStdString();
    }
};

TEST_P(ViewToggleTest, ReachesEveryTextViewAndNoOtherKind)
{
    const int id = GetParam().id;
    StartEmpty();
    CScrivelFrame* first = OpenText("one.txt", "alpha\nbeta\n");
    CScrivelFrame* second = OpenText("two.txt", "gamma\n");
    // The hex frame is the active one: the command still reaches the text views.
    ASSERT_TRUE(first && second && OpenHex("three.bin"));
    EXPECT_EQ(CEditorCommands::Of(*Frame())->TextViews().size(), 2);
    Expect(first, false);
    EXPECT_FALSE(Checked(id));

    Run(id);
    Expect(first, true);
    Expect(second, true);
    EXPECT_TRUE(Checked(id));
    // A view opened afterwards starts with the setting as it stands. (Not block selection:
    // loading the text moves the caret, which ends rectangular mode in the control.)
    CScrivelFrame* third = OpenText("four.txt", "delta\n");
    ASSERT_TRUE(third);
    if (id != Cmd::ViewBlockSelect)
        Expect(third, true);

    Run(id);
    for (CScrivelFrame* frame : {first, second, third})
        Expect(frame, false);
    EXPECT_FALSE(Checked(id));
}

INSTANTIATE_TEST_SUITE_P(Toggles, ViewToggleTest, ::testing::ValuesIn(kToggleCases),
                         [](const auto& info) { return std::string(info.param.name); });

using MainFrameTest = MainFrameFixture;

TEST_F(MainFrameTest, TogglesWithNoDocumentFlipTheSettingAndTheCheckMark)
{
    StartEmpty();
    ASSERT_TRUE(Enabled(Cmd::ViewWordWrap));
    Run(Cmd::ViewWordWrap);
    EXPECT_EQ(Frame()->Settings().view.WordWrap, 1);
    for (const int matchBracket : {1, 0}) {
        Run(Cmd::ViewMatchBracket);
        EXPECT_EQ(Frame()->Settings().view.MatchBracket, matchBracket);
        EXPECT_EQ(Checked(Cmd::ViewMatchBracket), matchBracket == 1);
    }
}

TEST_F(MainFrameTest, TheFirstCloseWritesEveryValueAndTheNextStartReadsThem)
{
    // Every value the settings know (their own test names them) is to be written.
    MainFrameSettings defaults;
    defaults.Load();
    defaults.Save();
    const QStringList every = SettingsFile()->allKeys();
    ASSERT_GT(every.size(), 20);
    TestSupport::ClearSettings();

    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_FALSE(SettingsFile()->childGroups().contains(QStringLiteral("ViewSettings"))) << "nothing before the close";
    Run(Cmd::ViewWordWrap);
    CRegistryStore().WriteProfileString(QStringLiteral("FindReplace"), QStringLiteral("LastSelectedValue"),
                                        QStringLiteral("word"));
    ASSERT_TRUE(Frame()->close());
    const auto file = SettingsFile();
    for (const QString& key : every)
        EXPECT_TRUE(file->contains(key)) << key.toStdString();
    EXPECT_EQ(file->value(QStringLiteral("ViewSettings/WordWrap")).toInt(), 1);
    EXPECT_FALSE(file->contains(QStringLiteral("FindReplace/LastSelectedValue")));
    EXPECT_TRUE(file->contains(QStringLiteral("Control Bar State/State")));

    App()->Shutdown();
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(Checked(Cmd::ViewWordWrap));
}

TEST_F(MainFrameTest, CancelAtTheSavePromptLeavesModelessWindowsGoneAndSettingsWritten)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText("a.txt", "old\n");
    ASSERT_TRUE(frame);
    Editor(frame)->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
    QPointer<QDialog> modeless = new QDialog(Frame());
    modeless->show();
    Frame()->AddModelessWindow(modeless);
    Run(Cmd::ViewLineNumbers);

    TestSupport::ModalAnswerer answerer(QMessageBox::Cancel);
    EXPECT_FALSE(Frame()->close());
    EXPECT_EQ(answerer.Texts(), QStringList{QStringLiteral("Save changes to a.txt?")});
    EXPECT_TRUE(Frame()->isVisible()) << "Cancel keeps the program running";
    EXPECT_TRUE(modeless.isNull());
    EXPECT_EQ(SettingsFile()->value(QStringLiteral("ViewSettings/LineNumbers")).toInt(), 1);
    EXPECT_TRUE(SettingsFile()->contains(QStringLiteral("Control Bar State/State")));
    EXPECT_TRUE(frame->GetDocument()->IsModified());
    EXPECT_EQ(TestSupport::ReadFile(QDir(m_dir).filePath(QStringLiteral("a.txt"))), QByteArray("old\n"));
}

// Answers each save question at quit with the next button of a list, noting which
// document was in front when it was asked.
class QuitAnswerer : public QObject
{
public:
    explicit QuitAnswerer(QList<int> answers)
        : m_answers(std::move(answers))
    {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || m_answers.isEmpty())
                return;
            CDocument* front = CMorvaneApp::MainFrame()->ActiveDocument();
            asked << (front ? QFileInfo(front->GetPathName()).fileName() : QString());
            offersAll = box->button(QMessageBox::YesToAll) && box->button(QMessageBox::NoToAll);
            EXPECT_TRUE(box->text().contains(asked.last())) << box->text().toStdString();
            box->button(QMessageBox::StandardButton(m_answers.takeFirst()))->click();
        });
        m_timer.start();
    }
    QStringList asked;
    bool offersAll = false;

private:
    QTimer m_timer;
    QList<int> m_answers;
};

TEST_F(MainFrameTest, QuittingAsksAboutEachModifiedDocumentInFrontWithAnswersForAll)
{
    struct Case
    {
        const char* name;
        QList<int> answers;
        QStringList asked;
        QList<bool> saved; // a.txt, c.txt, d.txt
        bool closes;
    };
    const QStringList all{QStringLiteral("a.txt"), QStringLiteral("c.txt"), QStringLiteral("d.txt")};
    const Case cases[] = {
        {"each", {QMessageBox::Yes, QMessageBox::No, QMessageBox::Yes}, all, {true, false, true}, true},
        {"yes to all", {QMessageBox::No, QMessageBox::YesToAll}, all.mid(0, 2), {false, true, true}, true},
        {"no to all", {QMessageBox::Yes, QMessageBox::NoToAll}, all.mid(0, 2), {true, false, false}, true},
        {"cancel", {QMessageBox::Yes, QMessageBox::Cancel}, all.mid(0, 2), {true, false, false}, false},
    };
    for (const Case& c : cases) {
        App()->Shutdown();
        StartEmpty();
        QList<CScrivelFrame*> frames;
        for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
            frames << OpenText(name, "old\n");
        ASSERT_FALSE(frames.contains(nullptr));
        for (CScrivelFrame* frame : {frames[0], frames[2], frames[3]})
            Editor(frame)->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
        QuitAnswerer answerer(c.answers);
        EXPECT_EQ(Frame()->close(), c.closes) << c.name;
        EXPECT_EQ(answerer.asked, c.asked) << c.name;
        EXPECT_TRUE(answerer.offersAll) << c.name;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(TestSupport::ReadFile(QDir(m_dir).filePath(all[i])),
                      c.saved[i] ? QByteArray("old\nnew") : QByteArray("old\n"))
                << c.name << " " << all[i].toStdString();
        }
    }
}

TEST_F(MainFrameTest, OneModifiedDocumentIsAskedAboutWithoutAnswersForAll)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText("a.txt", "old\n");
    ASSERT_TRUE(frame && OpenText("b.txt"));
    Editor(frame)->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
    QuitAnswerer answerer({QMessageBox::No});
    EXPECT_TRUE(Frame()->close());
    EXPECT_EQ(answerer.asked, QStringList{QStringLiteral("a.txt")});
    EXPECT_FALSE(answerer.offersAll);
}

TEST_F(MainFrameTest, PositionPaneShowsForTheFirstDocument)
{
    // Opened from the command line, before the window shows, and into an empty window.
    for (const bool atStart : {true, false}) {
        App()->Shutdown();
        const QString path = MakeFile(QStringLiteral("first.txt"), "one\ntwo\n");
        if (atStart) {
            ASSERT_TRUE(App()->InitInstance({path}));
        } else {
            StartEmpty();
            EXPECT_EQ(Frame()->PositionText(), QString());
            ASSERT_TRUE(OpenText("first.txt", "one\ntwo\n"));
        }
        Settle();
        EXPECT_TRUE(Frame()->PositionText().startsWith(QStringLiteral("Ln  1 "))) << atStart << " "
            << Frame()->PositionText().toStdString();
        auto* frame = qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
        ASSERT_TRUE(frame);
        Editor(frame)->GotoPos(Sci(frame, Sci::SCI_POSITIONFROMLINE, 1));
        Settle();
        EXPECT_TRUE(Frame()->PositionText().startsWith(QStringLiteral("Ln  2 "))) << atStart;
    }
}

TEST_F(MainFrameTest, TitleFollowsTheActiveDocument)
{
    StartEmpty();
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("Morvane"));
    CScrivelFrame* a = OpenText("alpha.txt");
    ASSERT_TRUE(a && OpenText("beta.txt"));
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("beta.txt - Morvane"));
    Frame()->MdiArea()->setActiveSubWindow(a);
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("alpha.txt - Morvane"));
    Run(Cmd::FileNew);
    EXPECT_EQ(Frame()->windowTitle(), Frame()->ActiveChild()->GetDocument()->GetTitle() + QStringLiteral(" - Morvane"));
}

TEST_F(MainFrameTest, CloseAllButSelectedNeedsTwoChildrenAsksAboutChangesAndKeepsTheActiveOne)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
    CScrivelFrame* a = OpenText("a.txt");
    ASSERT_TRUE(a);
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
    CScrivelFrame* b = OpenText("b.txt");
    ASSERT_TRUE(b && OpenHex("c.bin") && Enabled(Cmd::CloseAllButSelected));
    Editor(b)->SendScintilla(Sci::SCI_APPENDTEXT, 1UL, "x");
    Frame()->MdiArea()->setActiveSubWindow(a);
    for (const int answer : {int(QMessageBox::Cancel), int(QMessageBox::No)}) {
        TestSupport::ModalAnswerer answerer(answer);
        Run(Cmd::CloseAllButSelected);
        EXPECT_EQ(answerer.Texts().size(), 1);
        EXPECT_EQ(Frame()->ChildFrames().contains(b), answer == QMessageBox::Cancel);
    }
    EXPECT_EQ(Frame()->ChildFrames(), QList<CChildFrame*>{a});
    EXPECT_FALSE(Enabled(Cmd::CloseAllButSelected));
}

TEST_F(MainFrameTest, NewWindowShowsTheSameTextAndClosingOneViewKeepsTheDocument)
{
    StartEmpty();
    EXPECT_FALSE(Enabled(Cmd::WindowNew));
    CScrivelFrame* first = OpenText("shared.txt", "one\n");
    ASSERT_TRUE(first);
    Run(Cmd::WindowNew);
    auto* second = qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
    ASSERT_TRUE(second && second != first);
    Editor(second)->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "two");
    EXPECT_EQ(Editor(first)->GetText(), QByteArray("one\ntwo"));
    second->close();
    Settle();
    EXPECT_EQ(Frame()->ChildFrames().size(), 1);
    EXPECT_EQ(Editor(first)->GetText(), QByteArray("one\ntwo"));
}

TEST_F(MainFrameTest, NoTwoCommandsShareAKey)
{
    StartEmpty();
    // Each kind of sub-window brings its own window menu: with two of a kind open, a key
    // bound there would be bound twice.
    ASSERT_TRUE(OpenText("a.txt") && OpenText("b.txt") && OpenHex("c.bin") && OpenHex("d.bin"));
    QSet<QAction*> actions;
    for (QAction* action : Frame()->findChildren<QAction*>())
        actions.insert(action);
    for (QWidget* widget : Frame()->findChildren<QWidget*>()) {
        for (QAction* action : widget->actions())
            actions.insert(action);
    }
    QMap<QString, QString> owners;
    for (QAction* action : std::as_const(actions)) {
        for (const QKeySequence& key : action->shortcuts()) {
            EXPECT_FALSE(owners.contains(key.toString()))
                << key.toString().toStdString() << ": " << owners.value(key.toString()).toStdString() << " and "
                << action->text().toStdString();
            owners.insert(key.toString(), action->text());
        }
    }
    // Keys the control needs for itself are never taken.
    for (const char* key : {"Tab", "Shift+Tab", "Del", "Ins", "Backspace", "Return"})
        EXPECT_FALSE(owners.contains(QKeySequence(QString::fromLatin1(key)).toString())) << key;
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+G")), QStringLiteral("Goto..."));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+Q")), QStringLiteral("Comment"));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+W")), QStringLiteral("&Close"));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+F4")), QStringLiteral("&Close"));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+Shift+O")), QStringLiteral("Open as &Hex..."));
    EXPECT_EQ(owners.value(QStringLiteral("Ctrl+Shift+F")), QStringLiteral("Find in Files..."));
}

// Each menu's items, and the menu bar's titles, use a mnemonic letter once.
void CollectMnemonicClashes(const QString& where, const QList<QAction*>& actions, QStringList& clashes)
{
    QMap<QChar, QString> seen;
    for (QAction* action : actions) {
        if (action->isSeparator() || !action->isVisible())
            continue;
        const QChar key = MnemonicCheck::Mnemonic(action->text());
        if (!key.isNull() && !key.isSpace()) {
            if (seen.contains(key))
                clashes << QStringLiteral("%1: '%2' in \"%3\" and \"%4\"").arg(where, key, seen.value(key), action->text());
            seen.insert(key, action->text());
        } else if (action->text().endsWith(QLatin1Char('&'))) {
            clashes << QStringLiteral("%1: \"%2\" ends in an ampersand").arg(where, action->text());
        }
        if (QMenu* sub = action->menu())
            CollectMnemonicClashes(where + QStringLiteral(" > ") + action->text(), sub->actions(), clashes);
    }
}

TEST_F(MainFrameTest, EveryMenuUsesEachMnemonicOnce)
{
    StartEmpty();
    // Documents of each kind bring the window list and their own commands.
    ASSERT_TRUE(OpenText("a.txt") && OpenText("b.txt") && OpenHex("c.bin"));
    QStringList clashes;
    const QList<QMenu*> menus = Frame()->menuBar()->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    for (QMenu* menu : menus)
        Q_EMIT menu->aboutToShow(); // menus filled on opening, such as the window list
    CollectMnemonicClashes(QStringLiteral("menu bar"), Frame()->menuBar()->actions(), clashes);
    if (QMenu* tabs = Frame()->findChild<QMenu*>(QStringLiteral("TabContextMenu")))
        CollectMnemonicClashes(QStringLiteral("tab menu"), tabs->actions(), clashes);
    EXPECT_EQ(clashes, QStringList());
}

TEST_F(MainFrameTest, TheToolbarFitsAWindowAThousandPixelsWide)
{
    StartEmpty();
    ASSERT_TRUE(OpenText("a.txt"));
    Frame()->resize(1000, 700);
    Settle();
    QToolBar* bar = Frame()->Menus().ToolBar(ToolBarId::Standard);
    ASSERT_TRUE(bar);
    // No button goes behind an overflow arrow.
    EXPECT_LE(bar->sizeHint().width(), Frame()->width());
    for (QAction* action : bar->actions()) {
        QWidget* button = bar->widgetForAction(action);
        EXPECT_TRUE(action->isSeparator() || (button && button->isVisible())) << action->text().toStdString();
    }
}

TEST_F(MainFrameTest, TheFontDialogStartsAtTheFontTheEditorDraws)
{
    StartEmpty();
    ASSERT_TRUE(OpenText("a.txt"));
    Frame()->Settings().view.FontSize = 13;
    QFont shown;
    QTimer poll;
    poll.setInterval(10);
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget())) {
            shown = dialog->currentFont();
            dialog->reject();
        }
    });
    poll.start();
    Run(Cmd::ViewFont);
    // The configured family may be one the system stands another font in for.
    const QString drawn = QFontInfo(QFont(Frame()->Settings().view.FontStyle, 13)).family();
    EXPECT_EQ(shown.family(), drawn);
    EXPECT_EQ(shown.pointSize(), 13);
}

TEST_F(MainFrameTest, PasteFollowsTheClipboardWithoutAnyOtherEvent)
{
    StartEmpty();
    ASSERT_TRUE(OpenText("a.txt"));
    QApplication::clipboard()->clear();
    Settle();
    ASSERT_FALSE(Enabled(Cmd::EditPaste));
    QApplication::clipboard()->setText(QStringLiteral("pasted"));
    Settle();
    // No explicit update here: the change of the clipboard asks for one.
    EXPECT_TRUE(Frame()->Action(Cmd::EditPaste)->isEnabled());
}

TEST_F(MainFrameTest, BackAndForwardMoveTheCaretAcrossViewsAndAClosedViewLeavesTheHistory)
{
    StartEmpty();
    CScrivelFrame* a = OpenText("a.txt", "0123456789\n0123456789\n");
    CScrivelFrame* b = OpenText("b.txt", "abcdefghij\n");
    ASSERT_TRUE(a && b);
    NavigationHistory& history = CEditorCommands::Of(*Frame())->Navigation();
    history = NavigationHistory();
    EXPECT_FALSE(Enabled(Cmd::NavigateBack));
    history.Add(a->GetView(), 12);
    history.Add(b->GetView(), 5);
    history.Add(a->GetView(), 3);
    EXPECT_FALSE(Enabled(Cmd::NavigateForward));

    Run(Cmd::NavigateBack);
    Run(Cmd::NavigateBack);
    EXPECT_EQ(Frame()->ActiveChild(), a);
    EXPECT_EQ(Editor(a)->GetCurrentPos(), 12);
    EXPECT_FALSE(Enabled(Cmd::NavigateBack));
    Run(Cmd::NavigateForward);
    EXPECT_EQ(Frame()->ActiveChild(), b);
    EXPECT_EQ(Editor(b)->GetCurrentPos(), 5);
    b->close();
    Settle();
    EXPECT_EQ(history.Entries(), (QList<NavigationHistory::Entry>{{a->GetView(), 12}, {a->GetView(), 3}}));
}

TEST_F(MainFrameTest, FirstIdleComesOnceAfterTheWindowShows)
{
    ASSERT_TRUE(App()->InitInstance({}));
    QSignalSpy idle(&Frame()->Events(), &CShellEvents::firstIdle);
    EXPECT_TRUE(Frame()->isVisible());
    EXPECT_EQ(idle.count(), 0) << "not before the event loop runs";
    Settle();
    EXPECT_EQ(idle.count(), 1);
    Frame()->ShowMainWindow();
    Settle();
    EXPECT_EQ(idle.count(), 1);
}

// Every part writes its settings before anyone is asked about unsaved work, and hears
// of the end only once the documents have all been let go.
TEST_F(MainFrameTest, TheCloseOrderRunsClosingSaveSettingsTheDocumentsThenAboutToQuit)
{
    StartEmpty();
    CScrivelFrame* frame = OpenText("a.txt", "old\n");
    ASSERT_TRUE(frame);
    Editor(frame)->SendScintilla(Sci::SCI_APPENDTEXT, 3UL, "new");
    QPointer<QDialog> modeless = new QDialog(Frame());
    Frame()->AddModelessWindow(modeless);
    TestSupport::ModalAnswerer answerer(QMessageBox::No);
    QStringList order;
    CShellEvents& events = Frame()->Events();
    QObject::connect(&events, &CShellEvents::closing, [&] {
        order << QStringLiteral("closing");
        EXPECT_TRUE(modeless.isNull()) << "the modeless windows went first";
    });
    QObject::connect(&events, &CShellEvents::saveSettings, [&] {
        order << QStringLiteral("saveSettings");
        EXPECT_TRUE(answerer.Texts().isEmpty()) << "nobody was asked yet";
    });
    QObject::connect(&events, &CShellEvents::aboutToQuit, [&] {
        order << QStringLiteral("aboutToQuit");
        EXPECT_EQ(answerer.Texts().size(), 1) << "the document was asked";
    });
    EXPECT_TRUE(Frame()->close());
    EXPECT_EQ(order, (QStringList{"closing", "saveSettings", "aboutToQuit"}));
}

} // namespace

namespace {

// The icon size of every command toolbar, the user's own included.
QList<int> ToolBarIconSizes(CMainFrame* frame)
{
    QList<int> sizes;
    for (const QString& id : frame->Menus().ToolBarIds())
        sizes << frame->Menus().ToolBar(id)->iconSize().width();
    return sizes;
}

} // namespace

TEST_F(MainFrameTest, TheSheetsPagesReachEveryOpenViewAndTheWindowAtOnce)
{
    StartEmpty();
    CScrivelFrame* first = OpenText("one.txt", "alpha\nbeta\n");
    CScrivelFrame* second = OpenText("two.txt", "gamma\n");
    ASSERT_TRUE(first && second);
    ASSERT_EQ(Frame()->Settings().view.LargeTBIcons, 1);
    EXPECT_FALSE(ToolBarIconSizes(Frame()).contains(16));

    CPageGeneralMore more(*Frame(), nullptr);
    more.Reset();
    more.LargeIcons()->setChecked(false);
    more.Apply();
    const QList<int> small = ToolBarIconSizes(Frame());
    ASSERT_FALSE(small.isEmpty());
    EXPECT_EQ(small.count(16), small.size());

    CPageGeneral general(*Frame(), nullptr);
    general.Reset();
    general.findChild<QSpinBox*>(QStringLiteral("FontSize"))->setValue(17);
    general.Apply();
    for (CScrivelFrame* frame : {first, second})
        EXPECT_EQ(frame->GetView()->GetEditor()->SendScintilla(QsciScintillaBase::SCI_STYLEGETSIZE,
                                                               QsciScintillaBase::STYLE_DEFAULT), 17);

    more.LargeIcons()->setChecked(true);
    more.Apply();
    EXPECT_FALSE(ToolBarIconSizes(Frame()).contains(16));
}
