#include "fileexplorer/CFileExplorerPage.h"
#include "fileexplorer/CFileSysTreeCtrl.h"
#include "fileexplorer/CFolderWatch.h"
#include "framework/CommandIds.h"

#include "CFakeShell.h"
#include "MenuTexts.h"
#include "TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QMenu>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

// Stands in for the desktop's file manager.
class UrlRecorder : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public Q_SLOTS:
    void open(const QUrl& url) { urls << url; }
};

class FileExplorerPageTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_root = TestSupport::MakeTempDir();
        QDir().mkpath(m_root + QStringLiteral("/sub"));
        TestSupport::WriteFile(m_root + QStringLiteral("/sub/inner.txt"), "inner");
        TestSupport::WriteFile(m_root + QStringLiteral("/notes.txt"), "notes");
        TestSupport::WriteFile(m_root + QStringLiteral("/.secret"), "s");
        m_shell = std::make_unique<CFakeShell>();
        m_page = InstallFileExplorer(*m_shell);
        m_tree = m_page->Tree();
        m_tree->resize(400, 600);
        m_tree->show();
        m_tree->FirstFill({m_root, TestSupport::MakeTempDir()});
    }
    void TearDown() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QModelIndex Item(const QString& relative) const
    {
        return m_tree->Model()->FindPath(m_root + QLatin1Char('/') + relative);
    }
    QStringList Names(const QModelIndex& parent) const
    {
        QStringList names;
        for (int row = 0; row < m_tree->Model()->rowCount(parent); ++row)
            names << m_tree->Model()->index(row, 0, parent).data().toString();
        return names;
    }
    QAction* MenuAction(QMenu* menu, int id) const
    {
        for (QAction* action : menu->actions()) {
            if (action->data().toInt() == id)
                return action;
        }
        return nullptr;
    }

    QString m_root;
    std::unique_ptr<CFakeShell> m_shell;
    CFileExplorerPage* m_page = nullptr;
    CFileSysTreeCtrl* m_tree = nullptr;
};

TEST_F(FileExplorerPageTest, InstallsOnePageWithItsToolStrip)
{
    ASSERT_EQ(m_shell->ExplorerPages().size(), 1);
    IExplorerPage* page = m_shell->ExplorerPages().first();
    EXPECT_EQ(page->Title(), QStringLiteral("File Explorer"));
    EXPECT_EQ(page->PageKind(), 1);
    EXPECT_EQ(page->ToolStrip(), (QList<int>{Cmd::RefreshFileSystemView, Cmd::FileExplorerShowHidden}));
    EXPECT_EQ(m_shell->Commands().PlainText(Cmd::RefreshFileSystemView), QStringLiteral("Refresh File System View"));
    EXPECT_EQ(page->Widget(), m_tree);
}

TEST_F(FileExplorerPageTest, FirstFillOpensAndSelectsTheFirstTopLevelItem)
{
    const QModelIndex first = m_tree->Model()->index(0, 0);
    EXPECT_TRUE(m_tree->isExpanded(first));
    EXPECT_EQ(m_tree->currentIndex(), first);
    EXPECT_EQ(Names(first), (QStringList{QStringLiteral("sub"), QStringLiteral("notes.txt")}));
    EXPECT_EQ(m_tree->Watch()->WatchedPath(), m_root);
}

TEST_F(FileExplorerPageTest, FirstIdleFillsTheTreeOnce)
{
    CFakeShell shell;
    CFileExplorerPage* page = InstallFileExplorer(shell);
    EXPECT_FALSE(page->Tree()->IsFilled()) << "nothing is read before the window is idle";
    Q_EMIT shell.Events().firstIdle();
    EXPECT_TRUE(page->Tree()->IsFilled());
    EXPECT_EQ(page->Tree()->Model()->Path(page->Tree()->Model()->index(0, 0)), QDir::cleanPath(QDir::homePath()));
    EXPECT_EQ(page->Tree()->Model()->Path(page->Tree()->Model()->index(1, 0)), QStringLiteral("/"));
}

TEST_F(FileExplorerPageTest, ShowHiddenFilesIsOffByDefaultAndRemembered)
{
    const QModelIndex first = m_tree->Model()->index(0, 0);
    EXPECT_FALSE(m_shell->Commands().State(Cmd::FileExplorerShowHidden).checked);
    m_shell->Commands().Execute(Cmd::FileExplorerShowHidden);
    EXPECT_TRUE(m_shell->Commands().State(Cmd::FileExplorerShowHidden).checked);
    EXPECT_TRUE(Names(first).contains(QStringLiteral(".secret")));
    Q_EMIT m_shell->Events().saveSettings();

    CFakeShell again;
    CFileExplorerPage* page = InstallFileExplorer(again);
    EXPECT_TRUE(page->ShowHidden());
    EXPECT_TRUE(page->Tree()->ShowHidden());
}

TEST_F(FileExplorerPageTest, RefreshCommandFollowsTheDiskUnderTheFirstItemOnly)
{
    const QModelIndex second = m_tree->Model()->index(1, 0);
    m_tree->expand(second);
    const QString secondPath = m_tree->Model()->Path(second);
    TestSupport::WriteFile(m_root + QStringLiteral("/added.txt"), "a");
    TestSupport::WriteFile(secondPath + QStringLiteral("/elsewhere.txt"), "b");
    m_tree->Watch()->Stop(); // only the command refreshes here

    m_shell->Commands().Execute(Cmd::RefreshFileSystemView);

    EXPECT_TRUE(Names(m_tree->Model()->index(0, 0)).contains(QStringLiteral("added.txt")));
    EXPECT_TRUE(Names(second).isEmpty());
}

TEST_F(FileExplorerPageTest, DoubleClickOnALabelOpensTheFileAsAnyOpenWould)
{
    const QModelIndex notes = Item(QStringLiteral("notes.txt"));
    const QRect label = m_tree->LabelRect(notes);
    ASSERT_TRUE(label.isValid());
    const QRect row = m_tree->visualRect(notes);
    ASSERT_GT(label.left(), row.left()) << "the icon stands before the label";

    QTest::mouseDClick(m_tree->viewport(), Qt::LeftButton, {}, QPoint(row.left() + 2, row.center().y()));
    EXPECT_TRUE(m_shell->openedPaths.isEmpty()) << "a double click on the icon opens nothing";

    QTest::mouseDClick(m_tree->viewport(), Qt::LeftButton, {}, label.center());
    ASSERT_EQ(m_shell->openedPaths, QStringList{m_root + QStringLiteral("/notes.txt")});
    const OpenOptions& options = m_shell->openedOptions.first();
    EXPECT_EQ(options.mode, OpenOptions::Detect);
    EXPECT_EQ(options.encoding, 4);
    EXPECT_EQ(options.bomLength, 0);
    EXPECT_FALSE(options.readOnly);
}

TEST_F(FileExplorerPageTest, MenuCommandsActOnTheSelectedFile)
{
    auto* recorder = new UrlRecorder;
    recorder->setParent(m_tree);
    QDesktopServices::setUrlHandler(QStringLiteral("file"), recorder, "open");
    const QString notes = m_root + QStringLiteral("/notes.txt");
    m_tree->setCurrentIndex(Item(QStringLiteral("notes.txt")));

    std::unique_ptr<QMenu> menu(m_tree->CreateItemMenu());
    EXPECT_EQ(MenuTexts(menu->actions()), (QStringList{QStringLiteral("Open"), QStringLiteral("Open As Hex"), QStringLiteral("-"),
                                  QStringLiteral("Copy Filepath to Clipboard"),
                                  QStringLiteral("Open Containing Folder"), QStringLiteral("-"),
                                  QStringLiteral("Properties")}));

    MenuAction(menu.get(), CFileSysTreeCtrl::CmdOpenAsHex)->trigger();
    ASSERT_EQ(m_shell->openedOptions.size(), 1);
    EXPECT_EQ(m_shell->openedOptions.first().mode, OpenOptions::Hex);
    EXPECT_EQ(m_shell->openedPaths.first(), notes);

    MenuAction(menu.get(), CFileSysTreeCtrl::CmdCopyPath)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QDir::toNativeSeparators(notes));

    MenuAction(menu.get(), CFileSysTreeCtrl::CmdOpenContainingFolder)->trigger();
    EXPECT_EQ(recorder->urls, QList<QUrl>{QUrl::fromLocalFile(m_root)});

    QString shown;
    m_tree->SetPropertiesHandler([&](const QString& path, QWidget*) { shown = path; });
    m_tree->OnProperties();
    EXPECT_EQ(shown, notes);
}

TEST_F(FileExplorerPageTest, ContextMenuShowsOnALabelAndNeverReachesTheBar)
{
    const QModelIndex notes = Item(QStringLiteral("notes.txt"));
    const QPoint label = m_tree->LabelRect(notes).center();
    QContextMenuEvent onLabel(QContextMenuEvent::Mouse, label, m_tree->viewport()->mapToGlobal(label));
    QApplication::sendEvent(m_tree->viewport(), &onLabel);
    EXPECT_TRUE(onLabel.isAccepted());
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("FileExplorerItemMenu"));
    EXPECT_EQ(m_tree->currentIndex(), notes);
    menu->close();

    const QPoint below(5, m_tree->viewport()->height() - 5);
    QContextMenuEvent nowhere(QContextMenuEvent::Mouse, below, m_tree->viewport()->mapToGlobal(below));
    QApplication::sendEvent(m_tree->viewport(), &nowhere);
    EXPECT_TRUE(nowhere.isAccepted()) << "the bar's own menu must not show over the tree";
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(FileExplorerPageTest, OnAFolderOnlyPropertiesDoesAnything)
{
    QString shown;
    m_tree->SetPropertiesHandler([&](const QString& path, QWidget*) { shown = path; });
    m_tree->setCurrentIndex(Item(QStringLiteral("sub")));
    QApplication::clipboard()->setText(QStringLiteral("before"));

    std::unique_ptr<QMenu> menu(m_tree->CreateItemMenu());
    for (int id : {CFileSysTreeCtrl::CmdOpen, CFileSysTreeCtrl::CmdOpenAsHex, CFileSysTreeCtrl::CmdCopyPath,
                   CFileSysTreeCtrl::CmdOpenContainingFolder})
        EXPECT_FALSE(MenuAction(menu.get(), id)->isEnabled()) << id;
    m_tree->OnOpen();
    m_tree->OnOpenAsHex();
    m_tree->OnCopyPath();
    EXPECT_TRUE(m_shell->openedPaths.isEmpty());
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));

    EXPECT_TRUE(MenuAction(menu.get(), CFileSysTreeCtrl::CmdProperties)->isEnabled());
    m_tree->OnProperties();
    EXPECT_EQ(shown, m_root + QStringLiteral("/sub"));
}

TEST_F(FileExplorerPageTest, PropertiesShowsTheFilePropertiesDialogForFilesAndFolders)
{
    for (const char* item : {"notes.txt", "sub"}) {
        m_tree->setCurrentIndex(Item(QString::fromLatin1(item)));
        TestSupport::ModalAnswerer answerer;
        m_tree->OnProperties();
        EXPECT_EQ(answerer.Texts(), QStringList{QStringLiteral("File Properties")}) << item;
    }
}

TEST_F(FileExplorerPageTest, AFileAppearingInTheSelectedItemsFolderShowsUp)
{
    m_tree->expand(Item(QStringLiteral("sub")));
    m_tree->setCurrentIndex(Item(QStringLiteral("sub/inner.txt")));
    ASSERT_EQ(m_tree->Watch()->WatchedPath(), m_root + QStringLiteral("/sub"));
    TestSupport::WriteFile(m_root + QStringLiteral("/sub/fresh.txt"), "f");
    QTRY_VERIFY_WITH_TIMEOUT(Item(QStringLiteral("sub/fresh.txt")).isValid(), 1000);
    // The file that was selected goes; the tree keeps running and the watch stays put.
    ASSERT_TRUE(QFile::remove(m_root + QStringLiteral("/sub/inner.txt")));
    QTRY_VERIFY_WITH_TIMEOUT(!Item(QStringLiteral("sub/inner.txt")).isValid(), 1000);
    EXPECT_EQ(m_tree->Watch()->WatchedPath(), m_root + QStringLiteral("/sub"));
}

TEST_F(FileExplorerPageTest, AFolderGoneBeforeItsExpandShowsWhyAndTakesNoCommand)
{
    const QModelIndex sub = Item(QStringLiteral("sub"));
    ASSERT_TRUE(QDir(m_root + QStringLiteral("/sub")).removeRecursively());
    m_tree->expand(sub);

    ASSERT_EQ(m_tree->Model()->rowCount(sub), 1);
    const QModelIndex line = m_tree->Model()->index(0, 0, sub);
    EXPECT_TRUE(line.data().toString().startsWith(QStringLiteral("Cannot read \"%1/sub\": ").arg(m_root)));
    EXPECT_FALSE(line.data(Qt::DecorationRole).value<QIcon>().isNull());
    const QPoint label = m_tree->LabelRect(line).center();
    QTest::mouseDClick(m_tree->viewport(), Qt::LeftButton, {}, label);
    QContextMenuEvent onLabel(QContextMenuEvent::Mouse, label, m_tree->viewport()->mapToGlobal(label));
    QApplication::sendEvent(m_tree->viewport(), &onLabel);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_TRUE(m_shell->openedPaths.isEmpty());
}

} // namespace

#include "FileExplorerPageTest.moc"
