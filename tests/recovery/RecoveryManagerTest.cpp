#include "../app/MainFrameFixture.h"

#include "editor/TextEncoding.h"
#include "recovery/CRecoveryDialog.h"
#include "recovery/CRecoveryManager.h"
#include "recovery/SessionRestore.h"
#include "settings/CRegistryStore.h"

#include <Qsci/qsciscintillabase.h>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTreeWidget>

namespace {

QString RecoveryRoot()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("recovery"));
}

QList<RecoveryEntry> EntriesOf(CRecoveryManager& manager)
{
    manager.Store().Flush();
    return CRecoveryStore::ReadFolder(manager.Store().InstanceFolder(), nullptr);
}

void Type(CMFCScintilla* editor, const char* text)
{
    editor->SendScintilla(QsciScintillaBase::SCI_DOCUMENTEND);
    editor->SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, text);
}

// Runs the event loop until `done` or the time is up.
template <typename F>
bool WaitFor(F done, int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > ms)
            return false;
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

} // namespace

class RecoveryInProgram : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        MainFrameFixture::SetUp();
        // Nothing a previous test left may turn into a dialog at start.
        QDir(RecoveryRoot()).removeRecursively();
        StartEmpty();
        m_manager = Frame()->findChild<CRecoveryManager*>();
        ASSERT_NE(m_manager, nullptr);
    }
    void TearDown() override
    {
        MainFrameFixture::TearDown();
        QDir(RecoveryRoot()).removeRecursively();
    }

    CRecoveryManager* m_manager = nullptr;
};

TEST_F(RecoveryInProgram, TypingWritesACopyThatSavingRemoves)
{
    CScrivelFrame* frame = OpenText("notes.txt", "first line\n");
    ASSERT_NE(frame, nullptr);
    m_manager->SetDelays(50, 10000);
    Type(Editor(frame), "typed\n");
    ASSERT_TRUE(WaitFor([&] { return !EntriesOf(*m_manager).isEmpty(); }, 5000));

    const RecoveryEntry entry = EntriesOf(*m_manager).first();
    EXPECT_EQ(entry.path, frame->GetDocument()->GetPathName());
    EXPECT_EQ(TestSupport::ReadFile(entry.textFile), QByteArray("first line\ntyped\n"));

    ASSERT_TRUE(frame->GetDocument()->DoFileSave());
    EXPECT_TRUE(EntriesOf(*m_manager).isEmpty());
}

TEST_F(RecoveryInProgram, ContinuousTypingIsCopiedBeforeItPauses)
{
    CScrivelFrame* frame = OpenText("busy.txt", "");
    ASSERT_NE(frame, nullptr);
    m_manager->SetDelays(400, 150);
    QElapsedTimer typing;
    typing.start();
    bool seen = false;
    // Keystrokes every 20 ms never let the pause timer run out; the longest wait must.
    while (typing.elapsed() < 1200 && !seen) {
        Type(Editor(frame), "x");
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        seen = !EntriesOf(*m_manager).isEmpty();
    }
    EXPECT_TRUE(seen);
}

TEST_F(RecoveryInProgram, UndoingBackToTheSavedTextRemovesTheCopy)
{
    CScrivelFrame* frame = OpenText("undo.txt", "kept\n");
    ASSERT_NE(frame, nullptr);
    Type(Editor(frame), "more");
    m_manager->SnapshotNow(qobject_cast<CScrivelDoc*>(frame->GetDocument()));
    ASSERT_EQ(EntriesOf(*m_manager).size(), 1);
    Editor(frame)->SendScintilla(QsciScintillaBase::SCI_UNDO);
    Settle();
    EXPECT_FALSE(frame->GetDocument()->IsModified());
    EXPECT_TRUE(EntriesOf(*m_manager).isEmpty());
}

TEST_F(RecoveryInProgram, ClosingWithoutSavingAndACleanExitLeaveNothing)
{
    CScrivelFrame* kept = OpenText("a.txt", "a\n");
    CScrivelFrame* closed = OpenText("b.txt", "b\n");
    ASSERT_TRUE(kept && closed);
    for (CScrivelFrame* frame : {kept, closed}) {
        Type(Editor(frame), "change");
        m_manager->SnapshotNow(qobject_cast<CScrivelDoc*>(frame->GetDocument()));
    }
    ASSERT_EQ(EntriesOf(*m_manager).size(), 2);
    {
        TestSupport::ModalAnswerer answer(QMessageBox::No);
        closed->close();
        Settle();
    }
    EXPECT_EQ(EntriesOf(*m_manager).size(), 1);

    const QString folder = m_manager->Store().InstanceFolder();
    TestSupport::ModalAnswerer answer(QMessageBox::No);
    Frame()->close();
    Settle();
    EXPECT_FALSE(QDir(folder).exists());
    EXPECT_TRUE(QDir(RecoveryRoot()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
}

struct RecoverCase
{
    const char* name;
    bool named;
    int encoding;
    int eolMode;
    QByteArray text;
};

class RecoverInProgram : public RecoveryInProgram, public ::testing::WithParamInterface<RecoverCase>
{
};

TEST_P(RecoverInProgram, OpensModifiedWithItsPathEncodingAndLineEnds)
{
    const RecoverCase& c = GetParam();
    const QString folder = QDir(RecoveryRoot()).filePath(QStringLiteral("dead-instance"));
    ASSERT_TRUE(QDir().mkpath(folder));
    RecoveryEntry written;
    written.id = QStringLiteral("doc1");
    written.path = c.named ? QDir(m_dir).filePath(QStringLiteral("lost.txt")) : QString();
    written.title = QStringLiteral("Untitled1");
    written.encoding = c.encoding;
    written.writeMark = c.encoding != TextEncoding::Utf8;
    written.lineEnding = c.eolMode;
    written.time = QDateTime::currentDateTimeUtc();
    ASSERT_TRUE(CRecoveryStore::WriteNow(folder, written, c.text));

    const QList<RecoveryEntry> entries = m_manager->Store().ListOrphans();
    ASSERT_EQ(entries.size(), 1);
    auto* document = qobject_cast<CScrivelDoc*>(m_manager->Recover(entries.first()));
    ASSERT_NE(document, nullptr);
    Settle();
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(document->GetPathName(), written.path);
    EXPECT_EQ(document->Encoding, c.encoding);
    EXPECT_EQ(document->WriteMark, written.writeMark);
    EXPECT_EQ(document->GetEditor()->GetEOLMode(), c.eolMode);
    EXPECT_EQ(document->GetEditor()->GetText(), c.text);
    // The dead instance's copy is gone and this instance holds the text now.
    EXPECT_FALSE(QDir(folder).exists());
    const QList<RecoveryEntry> mine = EntriesOf(*m_manager);
    ASSERT_EQ(mine.size(), 1);
    EXPECT_EQ(TestSupport::ReadFile(mine.first().textFile), c.text);

    if (c.named) {
        // Saving writes the file in the recovered encoding.
        ASSERT_TRUE(document->DoFileSave());
        const QByteArray bytes = TestSupport::ReadFile(written.path);
        const QByteArray expected = c.encoding == TextEncoding::Utf16LE
                                        ? QByteArray("\xFF\xFE", 2)
                                              + QByteArray(reinterpret_cast<const char*>(QString::fromUtf8(c.text).utf16()),
                                                           QString::fromUtf8(c.text).size() * 2)
                                        : c.text;
        EXPECT_EQ(bytes, expected);
        EXPECT_TRUE(EntriesOf(*m_manager).isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, RecoverInProgram,
    ::testing::Values(RecoverCase{"NamedUtf8Lf", true, TextEncoding::Utf8, QsciScintillaBase::SC_EOL_LF, "one\ntwo\n"},
                      RecoverCase{"NamedUtf16Crlf", true, TextEncoding::Utf16LE, QsciScintillaBase::SC_EOL_CRLF,
                                  "gr\xC3\xBC\xC3\x9F" "e\r\n\xE2\x82\xAC\r\n"},
                      RecoverCase{"Untitled", false, TextEncoding::Utf8, QsciScintillaBase::SC_EOL_CR, "never saved\r"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(RecoveryInProgram, TheDialogRecoversDiscardsAndDefaultsToRecoverAll)
{
    const QString folder = QDir(RecoveryRoot()).filePath(QStringLiteral("dead-instance"));
    ASSERT_TRUE(QDir().mkpath(folder));
    for (const char* id : {"doc1", "doc2", "doc3"}) {
        RecoveryEntry entry;
        entry.id = QString::fromLatin1(id);
        entry.title = entry.id;
        entry.time = QDateTime::currentDateTimeUtc();
        ASSERT_TRUE(CRecoveryStore::WriteNow(folder, entry, QByteArray("text of ") + id));
    }
    CRecoveryDialog dialog(m_manager->Store().ListOrphans());
    dialog.SetRecover([&](const RecoveryEntry& e) { return m_manager->Recover(e) != nullptr; });
    dialog.SetDiscard([](const RecoveryEntry& e) { CRecoveryStore::Discard(e); });
    ASSERT_EQ(dialog.List()->topLevelItemCount(), 3);
    EXPECT_TRUE(dialog.RecoverAllButton()->isDefault());
    EXPECT_EQ(dialog.List()->topLevelItem(0)->text(3), QLocale().formattedDataSize(12));

    dialog.List()->setCurrentItem(dialog.List()->topLevelItem(0));
    dialog.DiscardButton()->click();
    EXPECT_EQ(dialog.List()->topLevelItemCount(), 2);
    dialog.List()->setCurrentItem(dialog.List()->topLevelItem(0));
    dialog.RecoverButton()->click();
    ASSERT_EQ(dialog.Remaining().size(), 1);
    EXPECT_EQ(Frame()->ChildFrames().size(), 1);
    dialog.RecoverAllButton()->click();
    EXPECT_TRUE(dialog.Remaining().isEmpty());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(Frame()->ChildFrames().size(), 2);
    EXPECT_FALSE(QDir(folder).exists());
}

TEST_F(RecoveryInProgram, AnEntryThatCannotBeReadStaysListed)
{
    const QString folder = QDir(RecoveryRoot()).filePath(QStringLiteral("dead-instance"));
    ASSERT_TRUE(QDir().mkpath(folder));
    RecoveryEntry entry;
    entry.id = QStringLiteral("doc1");
    entry.time = QDateTime::currentDateTimeUtc();
    ASSERT_TRUE(CRecoveryStore::WriteNow(folder, entry, "text"));
    QList<RecoveryEntry> entries = m_manager->Store().ListOrphans();
    ASSERT_EQ(entries.size(), 1);
    // The text vanished between listing and recovering.
    QFile::remove(entries.first().textFile);
    CRecoveryDialog dialog(entries);
    dialog.SetRecover([&](const RecoveryEntry& e) { return m_manager->Recover(e) != nullptr; });
    TestSupport::ModalAnswerer answer;
    dialog.RecoverAllButton()->click();
    EXPECT_EQ(dialog.Remaining().size(), 1);
    EXPECT_EQ(answer.Texts().size(), 1);
    EXPECT_TRUE(Frame()->ChildFrames().isEmpty());
}

class SessionInProgram : public RecoveryInProgram
{
protected:
    static void SetRestore(bool on)
    {
        CRegistryStore().WriteProfileInt(QStringLiteral("EditSettings"), QStringLiteral("RestoreSession"), on ? 1 : 0);
    }
    // Closes the window as the user does.
    static void CloseProgram()
    {
        TestSupport::ModalAnswerer answer(QMessageBox::No);
        Frame()->close();
        Settle();
        App()->Shutdown();
    }
    // Starts the program with no file named and lets the first idle moment pass.
    static void StartAgain()
    {
        ASSERT_TRUE(App()->InitInstance({}));
        WaitFor([] { return false; }, 300);
        Settle();
    }
    // The named documents open now, with their caret positions.
    static QMap<QString, long> OpenFiles()
    {
        QMap<QString, long> files;
        for (CChildFrame* frame : Frame()->ChildFrames())
            if (auto* document = qobject_cast<CScrivelDoc*>(frame->GetDocument()); document && !document->GetPathName().isEmpty())
                files.insert(QFileInfo(document->GetPathName()).fileName(), document->GetEditor()->GetCurrentPos());
        return files;
    }
};

TEST_F(SessionInProgram, FilesReopenWithTheirCaretsWhenTheSettingIsOn)
{
    SetRestore(true);
    CScrivelFrame* first = OpenText("one.txt", "0123456789\nabcdef\n");
    CScrivelFrame* second = OpenText("two.txt", "short\n");
    CScrivelFrame* third = OpenText("gone.txt", "soon deleted\n");
    ASSERT_TRUE(first && second && third);
    const QString gonePath = third->GetDocument()->GetPathName();
    Editor(first)->GotoPos(13);
    Editor(second)->GotoPos(2);
    CloseProgram();
    // A file gone since the last exit is left out without a word.
    QFile::remove(gonePath);
    StartAgain();
    const QMap<QString, long> expected{{QStringLiteral("one.txt"), 13}, {QStringLiteral("two.txt"), 2}};
    EXPECT_EQ(OpenFiles(), expected);
}

TEST_F(SessionInProgram, NothingReopensWhileTheSettingIsOff)
{
    SetRestore(false);
    ASSERT_NE(OpenText("one.txt", "text\n"), nullptr);
    CloseProgram();
    StartAgain();
    EXPECT_TRUE(OpenFiles().isEmpty());
    EXPECT_EQ(SessionRestore::Restore(*Frame()), 0);
}

TEST_F(SessionInProgram, ACaretPastTheEndOfAShortenedFileLandsAtItsEnd)
{
    SetRestore(true);
    CScrivelFrame* frame = OpenText("shrinks.txt", "a long line of text\n");
    ASSERT_NE(frame, nullptr);
    const QString path = frame->GetDocument()->GetPathName();
    Editor(frame)->GotoPos(15);
    CloseProgram();
    TestSupport::WriteFile(path, "tiny");
    StartAgain();
    const QMap<QString, long> expected{{QStringLiteral("shrinks.txt"), 4}};
    EXPECT_EQ(OpenFiles(), expected);
}
