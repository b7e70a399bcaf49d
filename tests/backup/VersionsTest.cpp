#include "backup/CBackupHistoryDlg.h"
#include "backup/CBackupManager.h"
#include "backup/CBackupStore.h"
#include "backup/CPageVersion.h"
#include "compare/CCompareCommands.h"
#include "compare/CCompareFrame.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "framework/CChildFrame.h"
#include "framework/CDocument.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"

#include "CFakeShell.h"
#include "TestSupport.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QCheckBox>
#include <QRegularExpression>
#include <QTimer>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <gtest/gtest.h>

using TestSupport::ReadFile;
using TestSupport::WriteFile;

// A text document as the backups see it: it announces its loads and saves.
class CFakeTextDoc : public CDocument
{
    Q_OBJECT
public:
    void Load(const QString& path)
    {
        SetPathName(path, false);
        Q_EMIT loaded(path);
    }
    void Save(const QString& path, const QByteArray& bytes)
    {
        Q_EMIT aboutToSave(path);
        WriteFile(path, bytes);
        SetPathName(path, false);
        Q_EMIT saved(path);
    }
};

// Hex documents announce saves too, but keep no versions.
class CHexDocument : public CFakeTextDoc
{
    Q_OBJECT
};

namespace {

class VersionsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        MainFrameSettings& settings = shell.Settings();
        settings.BackupFolder = m_dir + QStringLiteral("/backup");
        settings.Enabled = 1;
        settings.Versions = 5;
        settings.DeleteOnExit = 0;
        QDir().mkpath(settings.BackupFolder);
        InstallCompare(shell);
        InstallVersions(shell);
        manager = CBackupManager::Find(shell);
    }
    void TearDown() override
    {
        for (CChildFrame* frame : shell.ChildFrames())
            delete frame;
        qDeleteAll(m_documents);
    }
    QString Path(const QString& name) const { return m_dir + QLatin1Char('/') + name; }
    // A document shown in a frame with a text control, as the program has it.
    CFakeTextDoc* OpenDocument(const QString& path, bool hex = false)
    {
        CFakeTextDoc* document = hex ? new CHexDocument : new CFakeTextDoc;
        m_documents << document;
        Q_EMIT shell.Events().documentCreated(document);
        auto* frame = new CChildFrame(document);
        auto* control = new QsciScintillaBase(frame);
        frame->setWidget(control);
        shell.AddChildFrame(frame);
        if (QFileInfo::exists(path)) {
            const QByteArray text = ReadFile(path);
            control->SendScintilla(QsciScintillaBase::SCI_SETTEXT, text.constData());
            document->Load(path);
        }
        return document;
    }
    static QsciScintillaBase* Control(CDocument* document)
    {
        return document->GetFrames().first()->findChild<QsciScintillaBase*>();
    }
    QStringList Versions(CDocument* document) const
    {
        QStringList contents;
        const CBackupStore* store = manager->Store(document);
        for (int i = 0; i < store->GetCount(); ++i)
            contents << QString::fromUtf8(ReadFile(store->GetEntry(i).m_path));
        return contents;
    }

    CFakeShell shell;
    CBackupManager* manager = nullptr;
    QString m_dir;
    QList<CDocument*> m_documents;
};

TEST_F(VersionsTest, EverySaveOverTheFileKeepsTheOldOne)
{
    const QString path = Path(QStringLiteral("notes.txt"));
    WriteFile(path, "v0");
    CFakeTextDoc* document = OpenDocument(path);
    EXPECT_FALSE(shell.Commands().State(Cmd::DocumentHistory).enabled);
    for (int i = 1; i <= 3; ++i)
        document->Save(path, "v" + QByteArray::number(i));
    EXPECT_EQ(Versions(document), (QStringList{"v0", "v1", "v2"}));
    EXPECT_TRUE(shell.Commands().State(Cmd::DocumentHistory).enabled);

    // Save As: no version for the new name, the old ones stay in the list.
    const QString other = Path(QStringLiteral("other.txt"));
    document->Save(other, "w0");
    EXPECT_EQ(Versions(document).size(), 3);
    document->Save(other, "w1");
    EXPECT_EQ(Versions(document).last(), QStringLiteral("w0"));
}

TEST_F(VersionsTest, FirstSaveOfANewDocumentOnlyAttaches)
{
    CFakeTextDoc* document = OpenDocument(QString());
    const QString path = Path(QStringLiteral("new.txt"));
    document->Save(path, "first");
    EXPECT_EQ(manager->Store(document)->GetCount(), 0);
    document->Save(path, "second");
    EXPECT_EQ(Versions(document), QStringList{"first"});
}

TEST_F(VersionsTest, HexDocumentsKeepNoVersions)
{
    const QString path = Path(QStringLiteral("data.bin"));
    WriteFile(path, "old");
    CFakeTextDoc* document = OpenDocument(path, true);
    document->Save(path, "new");
    EXPECT_EQ(manager->Store(document), nullptr);
    EXPECT_FALSE(QFileInfo::exists(shell.Settings().BackupFolder + QStringLiteral("/0")));
}

TEST_F(VersionsTest, ASideSavedFromACompareKeepsAVersionAnEditorOfItLists)
{
    const QString left = Path(QStringLiteral("left.txt"));
    const QString right = Path(QStringLiteral("right.txt"));
    WriteFile(left, "a\nold\n");
    WriteFile(right, "a\nnew\n");
    CFakeTextDoc* editor = OpenDocument(left);
    CCompareFrame* frame = OpenCompare(shell, left, right);
    ASSERT_TRUE(frame);
    frame->View()->WaitForCompare();
    if (!frame->View()->CanCopyTo(0))
        frame->View()->NextDifference();
    ASSERT_TRUE(frame->View()->CanCopyTo(0));
    frame->View()->CopyTo(0);
    ASSERT_TRUE(frame->View()->SaveModifiedSides());
    EXPECT_EQ(ReadFile(left), QByteArray("a\nnew\n"));
    EXPECT_EQ(Versions(editor), QStringList{"a\nold\n"});
    // The side not edited is not written and keeps no version.
    EXPECT_EQ(CRegistryStore().GetProfileInt(CBackupStore::FoldersSection, right, -1), -1);
}

TEST_F(VersionsTest, FailedCopyIsShownWithoutAnIconAndTheSaveGoesOn)
{
    const QString path = Path(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CFakeTextDoc* document = OpenDocument(path);
    QDir(shell.Settings().BackupFolder).removeRecursively();
    WriteFile(shell.Settings().BackupFolder, "a file where the root should be");
    TestSupport::ModalAnswerer ok;
    document->Save(path, "v1");
    ASSERT_EQ(ok.Texts().size(), 1);
    EXPECT_TRUE(ok.Texts().first().startsWith(QStringLiteral("failed with error "))) << ok.Texts().first().toStdString();
    EXPECT_EQ(ReadFile(path), QByteArray("v1"));
}

TEST_F(VersionsTest, DeleteOnExitActsWhenTheDocumentCloses)
{
    shell.Settings().DeleteOnExit = 1;
    const QString path = Path(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CFakeTextDoc* document = OpenDocument(path);
    document->Save(path, "v1");
    const QString folder = manager->Store(document)->GetFolder();
    ASSERT_TRUE(QFileInfo::exists(folder));
    document->OnCloseDocument();
    EXPECT_FALSE(QFileInfo::exists(folder));
    EXPECT_EQ(ReadFile(path), QByteArray("v1"));
}

TEST_F(VersionsTest, HistoryListsCurrentThenNewestFirstAndNeedsTwoRows)
{
    const QString path = Path(QStringLiteral("h.txt"));
    WriteFile(path, "v0");
    CFakeTextDoc* document = OpenDocument(path);
    document->Save(path, "v1");
    document->Save(path, "v2");
    CBackupHistoryDlg dialog(*manager->Store(document));
    QListWidget* list = dialog.List();
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("Current"));
    EXPECT_EQ(list->item(1)->data(Qt::UserRole).toUInt(), 1u);
    EXPECT_EQ(list->item(2)->data(Qt::UserRole).toUInt(), 0u);
    EXPECT_TRUE(list->item(1)->text().contains(QRegularExpression(QStringLiteral("^\\d\\d [A-Z][a-z]+ \\d{4}  \\d\\d:\\d\\d$"))));

    list->selectAll();
    {
        TestSupport::ModalAnswerer answer;
        dialog.accept();
        ASSERT_EQ(answer.Texts().size(), 1);
        EXPECT_EQ(answer.Texts().first(),
                  QStringLiteral("Please ensure that just two items are selected before requesting a compare."));
    }
    EXPECT_NE(dialog.result(), QDialog::Accepted);

    list->clearSelection();
    list->item(2)->setSelected(true);
    list->item(0)->setSelected(true);
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetFirst(), CBackupHistoryDlg::CurrentRow);
    EXPECT_EQ(dialog.GetSecond(), 0u);
}

TEST_F(VersionsTest, ChosenPairOpensACompareOfTheFileAndTheVersion)
{
    const QString path = Path(QStringLiteral("c.txt"));
    WriteFile(path, "line\nold\n");
    CFakeTextDoc* document = OpenDocument(path);
    document->Save(path, "line\nnew\n");
    // Answer the dialog: "Current" and the one version, then Compare.
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<CBackupHistoryDlg*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        dialog->List()->selectAll();
        dialog->accept();
    });
    shell.Commands().Execute(Cmd::DocumentHistory);
    auto* frame = qobject_cast<CCompareFrame*>(shell.ActiveChild());
    ASSERT_TRUE(frame);
    frame->View()->WaitForCompare();
    EXPECT_EQ(frame->View()->Pane(0)->Text(), QByteArray("line\nnew\n"));
    EXPECT_EQ(frame->View()->Pane(1)->Text(), QByteArray("line\nold\n"));
    EXPECT_EQ(frame->View()->DifferenceCount(), 1);
}

TEST_F(VersionsTest, RestorePutsTheVersionIntoTheEditorAsOneUndoStep)
{
    const QString path = Path(QStringLiteral("r.txt"));
    WriteFile(path, "first text\n");
    CFakeTextDoc* document = OpenDocument(path);
    document->Save(path, "second text\n");
    QsciScintillaBase* control = Control(document);
    control->SendScintilla(QsciScintillaBase::SCI_SETTEXT, "second text\nand more typing\n");
    control->SendScintilla(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);

    ASSERT_TRUE(manager->Restore(document, manager->Store(document)->GetEntry(0).m_path));
    auto text = [control] {
        const long length = control->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
        return QByteArray(reinterpret_cast<const char*>(control->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER)), length);
    };
    EXPECT_EQ(text(), QByteArray("first text\n"));
    EXPECT_EQ(ReadFile(path), QByteArray("second text\n")); // the file waits for a save
    control->SendScintilla(QsciScintillaBase::SCI_UNDO);
    EXPECT_EQ(text(), QByteArray("second text\nand more typing\n"));
}

TEST_F(VersionsTest, PageAppliesALowerLimitToEveryOpenDocument)
{
    CFakeTextDoc* documents[2];
    for (int d = 0; d < 2; ++d) {
        const QString path = Path(QStringLiteral("p%1.txt").arg(d));
        WriteFile(path, "0");
        documents[d] = OpenDocument(path);
        for (int i = 1; i <= 5; ++i)
            documents[d]->Save(path, QByteArray::number(i));
        ASSERT_EQ(manager->Store(documents[d])->GetCount(), 5);
    }
    CPageVersion page(*manager, shell.Settings());
    page.findChild<QLineEdit*>(QStringLiteral("3016"))->setText(QStringLiteral("2"));
    page.Apply();
    EXPECT_EQ(shell.Settings().Versions, 2);
    for (CFakeTextDoc* document : documents)
        EXPECT_EQ(Versions(document), (QStringList{"3", "4"}));
}

TEST_F(VersionsTest, SwitchingOffAsksBeforeWipingAndNoKeepsEveryVersion)
{
    const QString path = Path(QStringLiteral("s.txt"));
    WriteFile(path, "0");
    CFakeTextDoc* document = OpenDocument(path);
    document->Save(path, "1");
    const QString version = manager->Store(document)->GetEntry(0).m_path;

    for (const int answer : {int(QMessageBox::No), int(QMessageBox::Yes)}) {
        shell.Settings().Enabled = 1;
        CPageVersion page(*manager, shell.Settings());
        page.findChild<QCheckBox*>(QStringLiteral("3010"))->setChecked(false);
        EXPECT_FALSE(page.findChild<QLineEdit*>(QStringLiteral("1006"))->isEnabled());
        TestSupport::ModalAnswerer answerer(answer);
        page.Apply();
        ASSERT_EQ(answerer.Texts(), QStringList{QStringLiteral("Delete all file backups?")});
        EXPECT_EQ(shell.Settings().Enabled, 0);
        EXPECT_FALSE(manager->Store(document)->IsActive());
        EXPECT_EQ(QFileInfo::exists(version), answer == QMessageBox::No);
    }
}

TEST_F(VersionsTest, DeleteFilesWipesAndTheNextSaveStartsAgainAtFolderZero)
{
    const QString a = Path(QStringLiteral("a.txt"));
    const QString b = Path(QStringLiteral("b.txt"));
    WriteFile(a, "a");
    WriteFile(b, "b");
    OpenDocument(a);
    CFakeTextDoc* second = OpenDocument(b);
    second->Save(b, "b1");
    ASSERT_EQ(manager->Store(second)->GetFolderId(), 1);
    CPageVersion page(*manager, shell.Settings());
    {
        TestSupport::ModalAnswerer yes(QMessageBox::Yes);
        page.findChild<QPushButton*>(QStringLiteral("1002"))->click();
    }
    EXPECT_FALSE(manager->Store(second)->IsActive());
    EXPECT_FALSE(QFileInfo::exists(shell.Settings().BackupFolder + QStringLiteral("/1")));
    second->Save(b, "b2");
    EXPECT_EQ(manager->Store(second)->GetFolderId(), 0);
    EXPECT_EQ(manager->Store(second)->GetCount(), 0);
}

TEST_F(VersionsTest, VersionsBoxKeepsItsOddRules)
{
    shell.Settings().Versions = 1;
    CPageVersion page(*manager, shell.Settings());
    auto* edit = page.findChild<QLineEdit*>(QStringLiteral("3016"));
    auto* up = page.findChild<QToolButton*>(QStringLiteral("up"));
    // Each click shows the position before the step.
    up->click();
    EXPECT_EQ(edit->text(), QStringLiteral("1"));
    up->click();
    EXPECT_EQ(edit->text(), QStringLiteral("2"));
    edit->setText(QStringLiteral("0"));
    EXPECT_EQ(edit->text(), QStringLiteral("1"));
    edit->setText(QStringLiteral("7"));
    edit->setText(QStringLiteral("100"));
    EXPECT_EQ(edit->text(), QStringLiteral("2"));
    EXPECT_TRUE(page.IsModified());
    page.Apply();
    EXPECT_EQ(shell.Settings().Versions, 2);
}

TEST_F(VersionsTest, PageAndCommandsAreInstalled)
{
    EXPECT_EQ(shell.PropertyPages().size(), 1);
    std::unique_ptr<IPropertyPage> page(shell.PropertyPages().first()(nullptr));
    EXPECT_EQ(page->Title(), QStringLiteral("Backup Manager"));
    EXPECT_TRUE(shell.Commands().Contains(Cmd::BackupManager));
    EXPECT_EQ(shell.Commands().PlainText(Cmd::DocumentHistory), QStringLiteral("View Document History"));
}

} // namespace

#include "VersionsTest.moc"
