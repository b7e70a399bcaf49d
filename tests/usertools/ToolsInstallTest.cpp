#include "CFakeShell.h"
#include "TestSupport.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "usertools/CCustomiseSheet.h"
#include "usertools/CShortcutsPage.h"
#include "usertools/CToolBarCustomiser.h"
#include "usertools/CToolResultsModel.h"
#include "usertools/CToolOutputPage.h"
#include "usertools/CToolsPage.h"
#include "usertools/CUserToolStore.h"
#include "usertools/CUserToolsManager.h"
#include "usertools/InstallTools.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QDockWidget>
#include <QKeySequenceEdit>
#include <QMessageBox>
#include <QTimer>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>
#include <gtest/gtest.h>

#include <memory>

namespace {

UserTool ShellTool(const QString& name, const QString& script, const QString& directory = {})
{
    UserTool tool;
    tool.name = name;
    tool.command = QStringLiteral("/bin/sh");
    tool.arguments = QStringLiteral("-c '%1'").arg(script);
    tool.initialDirectory = directory;
    return tool;
}

QStringList PageLines(const CUserToolsManager& tools)
{
    QStringList lines;
    const CToolResultsModel* model = tools.Page()->Model();
    for (int row = 0; row < model->rowCount(); ++row)
        lines << model->RowText(row);
    return lines;
}

class ToolsInstallTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }

    // A fresh window with the tools installed, as at a start of the program.
    void Start()
    {
        installed = {};
        shell = std::make_unique<CFakeShell>();
        for (int id : {Cmd::FileNew, Cmd::FileOpen, Cmd::FileSave, Cmd::EditCut}) {
            shell->Commands().Register({.id = id, .text = QStringLiteral("Command %1").arg(id),
                                        .category = QStringLiteral("File"),
                                        .shortcut = id == Cmd::FileSave ? QKeySequence(QStringLiteral("Ctrl+S"))
                                                                        : QKeySequence(),
                                        .run = [] {}});
        }
        shell->Menus().AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, Cmd::FileNew);
        shell->Menus().AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, Cmd::FileOpen);
        shell->Menus().AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Clipboard, Cmd::EditCut);
        installed = InstallTools(*shell);
        Q_EMIT shell->Events().firstIdle();
    }
    void Quit() { Q_EMIT shell->Events().saveSettings(); }
    bool RunAndWait(int index)
    {
        bool ended = false;
        auto connection = QObject::connect(&installed.tools->Runner(), &CToolRunner::finished, [&] { ended = true; });
        installed.tools->Run(index);
        const bool ok = QTest::qWaitFor([&] { return ended; }, 10000);
        QObject::disconnect(connection);
        QCoreApplication::processEvents();
        return ok;
    }
    QStringList ToolsMenu() const
    {
        QStringList texts;
        for (const QAction* action : shell->Menus().Menu(MenuId::Tools)->actions())
            if (!action->isSeparator() && action->data().toInt() >= UserTools::FirstCommand)
                texts << action->text();
        return texts;
    }

    std::unique_ptr<CFakeShell> shell;
    InstalledTools installed;
};

TEST_F(ToolsInstallTest, ToolsBecomeCommandsWithTheirKeysAndFollowTheList)
{
    Start();
    UserTool make = ShellTool(QStringLiteral("&Make"), QStringLiteral("true"));
    make.shortcut = QStringLiteral("Ctrl+Shift+B");
    installed.tools->SetTools({make, ShellTool(QStringLiteral("Lint"), QStringLiteral("true"))});
    EXPECT_EQ(ToolsMenu(), (QStringList{"&&Make", "Lint"}));
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+B"))), 53000);
    installed.tools->SetTools({ShellTool(QStringLiteral("Lint"), QStringLiteral("true"))});
    EXPECT_EQ(ToolsMenu(), QStringList{"Lint"});
    EXPECT_FALSE(shell->Commands().Contains(53001));
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+B"))), 0);
    // Stored at once, and read back by the next start.
    Start();
    EXPECT_EQ(ToolsMenu(), QStringList{"Lint"});
}

TEST_F(ToolsInstallTest, OutputGoesToTheToolResultsPageAndReuseDecidesWhetherItIsCleared)
{
    Start();
    const QString dir = TestSupport::MakeTempDir();
    installed.tools->SetTools({ShellTool(QStringLiteral("Build"), QStringLiteral("echo src/a.c:3:1: error: boom; exit 2"), dir)});
    ASSERT_TRUE(shell->OutputPages().contains(installed.tools->Page()));

    shell->Settings().ReuseWindows = 1;
    ASSERT_TRUE(RunAndWait(0));
    ASSERT_TRUE(RunAndWait(0));
    QStringList lines = PageLines(*installed.tools);
    ASSERT_EQ(lines.size(), 3) << lines.join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("> /bin/sh -c")));
    EXPECT_EQ(lines[1], QStringLiteral("src/a.c:3:1: error: boom"));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("Exit code 2, ")));

    shell->Settings().ReuseWindows = 0;
    ASSERT_TRUE(RunAndWait(0));
    lines = PageLines(*installed.tools);
    EXPECT_EQ(lines.size(), 7) << lines.join(QLatin1Char('|')).toStdString();

    // F4 goes to the error, resolved against the tool's folder, and opens it.
    installed.tools->Page()->View()->setCurrentIndex({});
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(Qt::Key_F4)), Cmd::NextToolResult);
    shell->Commands().Execute(Cmd::NextToolResult);
    ASSERT_FALSE(shell->openedPaths.isEmpty());
    EXPECT_EQ(shell->openedPaths.last(), QDir::cleanPath(dir + QStringLiteral("/src/a.c")));
    EXPECT_EQ(installed.tools->Page()->View()->currentIndex().row(), 1);
    EXPECT_TRUE(installed.tools->Page()->GoToNextLink(true));
    EXPECT_EQ(installed.tools->Page()->View()->currentIndex().row(), 5);
    EXPECT_FALSE(installed.tools->Page()->GoToNextLink(true));
    EXPECT_TRUE(installed.tools->Page()->GoToNextLink(false));
    EXPECT_EQ(installed.tools->Page()->View()->currentIndex().row(), 1);
}

TEST_F(ToolsInstallTest, F4StaysWithTheOutputBarWhenItTookTheKeyFirst)
{
    installed = {};
    shell = std::make_unique<CFakeShell>();
    shell->Commands().Register({.id = 1, .text = QStringLiteral("Next Result"), .shortcut = QKeySequence(Qt::Key_F4),
                                .run = [] {}});
    installed = InstallTools(*shell);
    Q_EMIT shell->Events().firstIdle();
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(Qt::Key_F4)), 1);
    EXPECT_TRUE(shell->Commands().Shortcut(Cmd::NextToolResult).isEmpty());
    EXPECT_EQ(shell->Commands().Shortcut(Cmd::PreviousToolResult), QKeySequence(Qt::SHIFT | Qt::Key_F4));
}

TEST_F(ToolsInstallTest, ThePageOutlivesItsWidgetWhenTheBarGoesFirst)
{
    Start();
    CToolOutputPage* page = installed.tools->Page();
    QDockWidget* dock = shell->AddDock(QStringLiteral("OutputBar"), QStringLiteral("Output"), page->Widget(),
                                       Qt::BottomDockWidgetArea);
    delete dock; // the window's end deletes docks before their owners' objects
    EXPECT_EQ(page->Widget(), nullptr);
    page->Model()->AppendLines({QStringLiteral("a.c:1: x")});
    EXPECT_FALSE(page->GoToNextLink(true));
    QCoreApplication::processEvents();
    installed = {};
    shell.reset(); // and the page goes last, without touching the widget again
}

TEST_F(ToolsInstallTest, StopToolIsOnlyEnabledWhileAToolRunsAndStopsIt)
{
    Start();
    installed.tools->SetTools({ShellTool(QStringLiteral("Long"), QStringLiteral("echo go; sleep 30"))});
    EXPECT_FALSE(shell->Commands().State(UserTools::StopCommand).enabled);
    installed.tools->Run(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return PageLines(*installed.tools).contains(QStringLiteral("go")); }, 5000));
    EXPECT_TRUE(shell->Commands().State(UserTools::StopCommand).enabled);
    shell->Commands().Execute(UserTools::StopCommand);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !installed.tools->IsRunning(); }, 7000));
    EXPECT_FALSE(shell->Commands().State(UserTools::StopCommand).enabled);
    EXPECT_TRUE(PageLines(*installed.tools).last().startsWith(QStringLiteral("Ended by signal 15")));
}

TEST_F(ToolsInstallTest, ASecondToolAsksAndRunsOnceTheFirstHasStopped)
{
    Start();
    installed.tools->SetTools({ShellTool(QStringLiteral("Long"), QStringLiteral("sleep 30")),
                               ShellTool(QStringLiteral("Quick"), QStringLiteral("echo quick"))});
    installed.tools->Run(0);
    ASSERT_TRUE(installed.tools->IsRunning());
    {
        TestSupport::ModalAnswerer no(QMessageBox::No);
        installed.tools->Run(1);
        ASSERT_EQ(no.Texts().size(), 1);
        EXPECT_TRUE(no.Texts().first().contains(QStringLiteral("\"Quick\"")));
    }
    EXPECT_TRUE(installed.tools->IsRunning());
    TestSupport::ModalAnswerer yes(QMessageBox::Yes);
    installed.tools->Run(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return PageLines(*installed.tools).contains(QStringLiteral("quick")); }, 8000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !installed.tools->IsRunning(); }, 5000));
}

TEST_F(ToolsInstallTest, ANewDocumentThatCannotBeMadeIsSaidSo)
{
    Start();
    UserTool tool = ShellTool(QStringLiteral("Into doc"), QStringLiteral("echo x"));
    tool.kind = UserTool::NewDocument;
    installed.tools->SetTools({tool});
    shell->newDocumentHandler = [](int) { return nullptr; };
    TestSupport::ModalAnswerer answerer;
    installed.tools->Run(0);
    EXPECT_EQ(answerer.Texts(), QStringList{"CMAINFRAME::ONTOOLSMANAGER::FAILED TO CREATE A NEW DOCUMENT"});
    EXPECT_FALSE(installed.tools->IsRunning());
}

TEST_F(ToolsInstallTest, LaunchedToolsRunDetachedWithTheirArguments)
{
    Start();
    const QString dir = TestSupport::MakeTempDir();
    UserTool tool;
    tool.name = QStringLiteral("Touch");
    tool.command = QStringLiteral("/bin/sh");
    tool.arguments = QStringLiteral("-c 'echo \"$1\" > out.txt' sh \"$AppDir\"");
    tool.initialDirectory = dir;
    tool.kind = UserTool::Launch;
    installed.tools->SetTools({tool});
    installed.tools->Run(0);
    EXPECT_FALSE(installed.tools->IsRunning());
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(dir + QStringLiteral("/out.txt")); }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !TestSupport::ReadFile(dir + QStringLiteral("/out.txt")).isEmpty(); }, 5000));
    EXPECT_EQ(TestSupport::ReadFile(dir + QStringLiteral("/out.txt")), (QDir::currentPath() + QLatin1Char('\n')).toUtf8());
}

TEST_F(ToolsInstallTest, CustomiseCommandsWriteTheActivePageAndOpenTheSheetThere)
{
    Start();
    const QList<QPair<int, int>> commands{{Cmd::CustomiseToolBars, 0}, {Cmd::CustomiseKeyboard, 2},
                                          {Cmd::CustomiseTools, 3}, {Cmd::CustomiseOptions, 4}};
    for (const auto& [id, page] : commands) {
        int shownPage = -1;
        QTimer::singleShot(0, [&] {
            if (auto* sheet = qobject_cast<CCustomiseSheet*>(QApplication::activeModalWidget())) {
                shownPage = sheet->Tabs()->currentIndex();
                sheet->reject();
            }
        });
        shell->Commands().Execute(id);
        EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("Settings"), QStringLiteral("Active Page"), -1), page);
        EXPECT_EQ(shownPage, page);
    }
}

TEST_F(ToolsInstallTest, ReassignedKeysAndChangedToolBarsSurviveARestart)
{
    Start();
    {
        CCustomiseSheet sheet(*shell, *installed.toolBars, *installed.tools, CCustomiseSheet::KeyboardShortcuts);
        CShortcutsPage* keys = sheet.ShortcutsPage();
        ASSERT_TRUE(keys->SelectCommand(Cmd::FileOpen));
        // Ctrl+S belongs to Save: the warning names it, and assigning moves the key.
        ASSERT_TRUE(keys->Assign(QKeySequence(QStringLiteral("Ctrl+S")), false));
        EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+S"))), Cmd::FileOpen);
        EXPECT_TRUE(shell->Commands().Shortcut(Cmd::FileSave).isEmpty());

        // Toolbars: Standard loses Cut and gains Save at its front, after a line.
        sheet.ChooseToolBar(QString::fromLatin1(ToolBarId::Standard));
        QListWidget* buttons = sheet.ButtonList();
        ASSERT_EQ(buttons->count(), 4);
        buttons->setCurrentRow(3);
        sheet.RemoveSelectedButton();
        const auto save = sheet.AvailableList()->findItems(QStringLiteral("File: Command 57603"), Qt::MatchExactly);
        ASSERT_EQ(save.size(), 1);
        sheet.AvailableList()->setCurrentItem(save.first());
        sheet.AddSelectedCommand();
        sheet.MoveSelectedButton(-1);
        sheet.MoveSelectedButton(-1);
        sheet.AddSeparator();
        EXPECT_EQ(shell->Menus().ToolBarCommands(ToolBarId::Standard),
                  (QList<int>{Cmd::FileSave, 0, Cmd::FileNew, Cmd::FileOpen}));
        // A toolbar of the user's own.
        const QString mine = sheet.NewToolBar(QStringLiteral("My Tools"));
        installed.toolBars->SetCommands(mine, {Cmd::EditCut, 4242});
        sheet.LargeIconsBox()->setChecked(false);
        EXPECT_EQ(shell->Menus().ToolBar(mine)->iconSize(), QSize(16, 16));
        // The main window stores the icon size with its view settings.
        EXPECT_EQ(shell->Settings().view.LargeTBIcons, 0);
        sheet.ToolTipsBox()->setChecked(false);
    }
    Quit();

    Start();
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+S"))), Cmd::FileOpen);
    EXPECT_EQ(shell->Menus().ToolBarCommands(ToolBarId::Standard),
              (QList<int>{Cmd::FileSave, 0, Cmd::FileNew, Cmd::FileOpen}));
    const QString mine = QStringLiteral("User1");
    ASSERT_NE(shell->Menus().ToolBar(mine), nullptr);
    EXPECT_EQ(shell->Menus().ToolBar(mine)->windowTitle(), QStringLiteral("My Tools"));
    // 4242 is no command any more (a tool since removed): it is simply left out.
    EXPECT_EQ(shell->Menus().ToolBarCommands(mine), QList<int>{Cmd::EditCut});
    EXPECT_FALSE(installed.toolBars->ShowToolTips());

    // Everything back as it came.
    installed.toolBars->ResetAll();
    CCustomiseSheet sheet(*shell, *installed.toolBars, *installed.tools, CCustomiseSheet::KeyboardShortcuts);
    sheet.ShortcutsPage()->ResetAll();
    Quit();
    Start();
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+S"))), Cmd::FileSave);
    EXPECT_EQ(shell->Menus().ToolBarCommands(ToolBarId::Standard), (QList<int>{Cmd::FileNew, Cmd::FileOpen, 0, Cmd::EditCut}));
    EXPECT_EQ(shell->Menus().ToolBar(mine), nullptr);
    EXPECT_TRUE(installed.toolBars->ShowToolTips());
}

TEST_F(ToolsInstallTest, KeyboardPageSearchesWarnsAndGivesToolKeysToTheTools)
{
    Start();
    installed.tools->SetTools({ShellTool(QStringLiteral("Format"), QStringLiteral("true"))});
    CCustomiseSheet sheet(*shell, *installed.toolBars, *installed.tools, CCustomiseSheet::KeyboardShortcuts);
    CShortcutsPage* keys = sheet.ShortcutsPage();
    keys->SetFilter(QStringLiteral("format"));
    EXPECT_FALSE(keys->SelectCommand(Cmd::FileOpen));
    ASSERT_TRUE(keys->SelectCommand(53000));
    // Typing a taken key shows whose it is before anything changes.
    auto* edit = keys->findChild<QKeySequenceEdit*>();
    ASSERT_NE(edit, nullptr);
    edit->setKeySequence(QKeySequence(QStringLiteral("Ctrl+S")));
    EXPECT_TRUE(keys->ConflictText().contains(QStringLiteral("Command 57603"))) << keys->ConflictText().toStdString();
    {
        TestSupport::ModalAnswerer no(QMessageBox::No);
        EXPECT_FALSE(keys->Assign(QKeySequence(QStringLiteral("Ctrl+S"))));
        EXPECT_EQ(no.Texts().size(), 1);
    }
    EXPECT_EQ(shell->Commands().CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+S"))), Cmd::FileSave);
    ASSERT_TRUE(keys->Assign(QKeySequence(QStringLiteral("Alt+F")), false));
    EXPECT_EQ(installed.tools->Tools().first().shortcut, QStringLiteral("Alt+F"));
    EXPECT_EQ(CUserToolStore::Load().first().shortcut, QStringLiteral("Alt+F"));
}

TEST_F(ToolsInstallTest, ToolsPageEditsReachTheMenuAndTheStore)
{
    Start();
    CCustomiseSheet sheet(*shell, *installed.toolBars, *installed.tools, CCustomiseSheet::Tools);
    CToolsPage* page = sheet.ToolsPage();
    page->AddTool();
    page->NameEdit()->setText(QStringLiteral("Compile"));
    page->CommandEdit()->setText(QStringLiteral("gcc"));
    page->ArgumentsEdit()->setText(QStringLiteral("-c $FileName"));
    page->SaveBox()->setChecked(true);
    page->Commit();
    page->AddTool();
    page->NameEdit()->setText(QStringLiteral("Run"));
    page->Commit();
    page->MoveTool(-1);
    EXPECT_EQ(ToolsMenu(), (QStringList{"Run", "Compile"}));
    const QList<UserTool> stored = CUserToolStore::Load();
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored[1].arguments, QStringLiteral("-c $FileName"));
    EXPECT_TRUE(stored[1].saveBeforeRun);
    page->SetCurrentRow(0);
    page->RemoveTool();
    EXPECT_EQ(ToolsMenu(), QStringList{"Compile"});
}

} // namespace

namespace {

// A document whose save the test decides.
class SavingDocument : public CDocument
{
public:
    bool DoSave(const QString& path, bool) override
    {
        ++saves;
        if (!allowSave)
            return false;
        if (!path.isEmpty())
            SetPathName(path, false);
        SetModifiedFlag(false);
        return true;
    }
    bool allowSave = true;
    int saves = 0;
};

TEST_F(ToolsInstallTest, FileNameReachesTheToolAsOneArgumentAfterTheSaveItAskedFor)
{
    Start();
    const QString dir = TestSupport::MakeTempDir() + QStringLiteral("/with space");
    const QString path = dir + QStringLiteral("/it's \"quoted\".c");
    TestSupport::WriteFile(path, "int x;\n");
    SavingDocument document;
    document.SetPathName(path, false);
    document.SetModifiedFlag(true);
    CChildFrame frame(&document);
    shell->AddChildFrame(&frame);

    UserTool tool;
    tool.name = QStringLiteral("Args");
    tool.command = QStringLiteral("/bin/sh");
    tool.arguments = QStringLiteral("-c 'echo \"$#|$1|$2|$3\"' sh $FileName $FileTitle $Selection");
    tool.saveBeforeRun = true;
    installed.tools->SetTools({tool});

    // A save that fails (cancelled, disk full) keeps the tool from running.
    document.allowSave = false;
    installed.tools->Run(0);
    EXPECT_EQ(document.saves, 1);
    EXPECT_FALSE(installed.tools->IsRunning());
    EXPECT_TRUE(shell->statusMessages.last().contains(QStringLiteral("not saved")));

    document.allowSave = true;
    ASSERT_TRUE(RunAndWait(0));
    EXPECT_EQ(document.saves, 2);
    EXPECT_FALSE(document.IsModified());
    // The empty selection is no argument at all; the path with its quotes is one.
    EXPECT_TRUE(PageLines(*installed.tools).contains(QStringLiteral("2|%1|it's \"quoted\"|").arg(path)))
        << PageLines(*installed.tools).join(QLatin1Char('\n')).toStdString();
    // With no folder given the tool runs beside the document.
    EXPECT_EQ(installed.tools->Runner().WorkingDirectory(), dir);
    shell->ActivateChild(nullptr);
}

} // namespace
