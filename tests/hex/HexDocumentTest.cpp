#include "app/CDocTemplate.h"
#include "app/CRegistryStore.h"
#include "app/CommandIds.h"
#include "app/IStatusSink.h"
#include "app/OpenOptions.h"
#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"
#include "hex/CHexFindDialog.h"
#include "hex/CHexFrame.h"
#include "hex/CHexGotoDialog.h"
#include "hex/CHexValuesPanel.h"
#include "hex/HexTemplate.h"

#include "TestSupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

struct Message
{
    QMessageBox::Icon icon;
    QString text;
};

// The document with its message boxes and Save As dialog answered by the test.
class TestDocument : public CHexDocument
{
public:
    QList<Message> messages;
    QString saveAsAnswer;

protected:
    void ShowMessage(QMessageBox::Icon icon, const QString& text) override
    {
        messages.append({icon, text});
    }
    QString AskSaveAsPath() override { return saveAsAnswer; }
};

class TestFrame : public CHexFrame
{
public:
    using CHexFrame::CHexFrame;
    QList<Message> messages;
    CHexFindRequest findAnswer;
    qint64 gotoAnswer = -1;

protected:
    void ShowMessage(QMessageBox::Icon icon, const QString& text) override
    {
        messages.append({icon, text});
    }
    bool RunFindDialog(CHexFindRequest* request) override
    {
        *request = findAnswer;
        return findAnswer.IsValid();
    }
    bool RunGotoDialog(qint64* offset) override
    {
        *offset = gotoAnswer;
        return gotoAnswer >= 0;
    }
};

QString MakeFile(const QByteArray& bytes, const QString& name = QStringLiteral("doc.bin"))
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(name);
    TestSupport::WriteFile(path, bytes);
    return path;
}

TEST(HexDocument, TitleShowsNameModifiedMarkAndReadOnly)
{
    TestDocument document;
    const QString path = MakeFile("abc", QStringLiteral("image.bin"));
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    EXPECT_EQ(document.GetTitle(), QStringLiteral("image.bin"));
    ASSERT_TRUE(document.Overwrite(0, "x"));
    EXPECT_EQ(document.GetTitle(), QStringLiteral("image.bin*"));
    ASSERT_TRUE(document.Undo());
    EXPECT_EQ(document.GetTitle(), QStringLiteral("image.bin"));

    TestDocument readOnly;
    readOnly.SetReadOnly(true);
    ASSERT_TRUE(readOnly.OnOpenDocument(path));
    readOnly.SetPathName(path);
    EXPECT_EQ(readOnly.GetTitle(), QStringLiteral("image.bin [Read Only]"));
    EXPECT_FALSE(readOnly.Overwrite(0, "x"));
    EXPECT_FALSE(readOnly.Insert(0, "x"));
    EXPECT_FALSE(readOnly.Remove(0, 1));
    EXPECT_EQ(readOnly.Bytes().Read(0, 3), QByteArray("abc"));
    EXPECT_EQ(readOnly.GetTitle(), QStringLiteral("image.bin [Read Only]"));
}

TEST(HexDocument, UnopenableFileSaysWhyAndOpensNothing)
{
    TestDocument document;
    const QString missing = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("gone.bin"));
    EXPECT_FALSE(document.OnOpenDocument(missing));
    ASSERT_EQ(document.messages.size(), 1);
    EXPECT_EQ(document.messages[0].icon, QMessageBox::Warning);
    EXPECT_TRUE(document.messages[0].text.startsWith(QStringLiteral("Cannot open \"")))
        << document.messages[0].text.toStdString();
}

TEST(HexDocument, SaveWritesTheFileAndClearsTheMark)
{
    TestDocument document;
    const QString path = MakeFile("0123456789");
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Insert(5, "--"));
    ASSERT_TRUE(document.DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("01234--56789"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(document.GetTitle(), QStringLiteral("doc.bin"));
    EXPECT_TRUE(document.messages.isEmpty());
}

TEST(HexDocument, SaveAsAsksForAPathAndTakesIt)
{
    TestDocument document;
    const QString path = MakeFile("abc");
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Overwrite(3, "d"));
    document.saveAsAnswer = QFileInfo(path).absolutePath() + QStringLiteral("/renamed.bin");
    ASSERT_TRUE(document.DoSave(QString()));
    EXPECT_EQ(document.GetPathName(), document.saveAsAnswer);
    EXPECT_EQ(document.GetTitle(), QStringLiteral("renamed.bin"));
    EXPECT_EQ(TestSupport::ReadFile(document.saveAsAnswer), QByteArray("abcd"));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("abc"));
    // A cancelled dialog saves nothing.
    ASSERT_TRUE(document.Overwrite(0, "z"));
    document.saveAsAnswer.clear();
    EXPECT_FALSE(document.DoSave(QString()));
    EXPECT_TRUE(document.IsModified());
}

TEST(HexDocument, FailedSaveWarnsKeepsChangesAndTheOldFile)
{
    TestDocument document;
    const QString path = MakeFile("abc");
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Overwrite(0, "X"));
    const QString bad = QFileInfo(path).absolutePath() + QStringLiteral("/no/such/folder/x.bin");
    EXPECT_FALSE(document.DoSave(bad));
    ASSERT_EQ(document.messages.size(), 1);
    EXPECT_EQ(document.messages[0].icon, QMessageBox::Warning);
    EXPECT_EQ(document.messages[0].text,
              QStringLiteral("Failed to create a new file when saving the current document"));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.GetPathName(), path);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("abc"));
    EXPECT_EQ(document.Bytes().Read(0, 3), QByteArray("Xbc"));
}

TEST(HexDocument, EmptyFileOpensAndGrows)
{
    TestDocument document;
    const QString path = MakeFile(QByteArray());
    ASSERT_TRUE(document.OnOpenDocument(path));
    EXPECT_EQ(document.Size(), 0);
    ASSERT_TRUE(document.Insert(0, "new"));
    ASSERT_TRUE(document.DoSave(path));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("new"));
}

class HexFrameTest : public ::testing::Test
{
protected:
    void Open(const QByteArray& bytes)
    {
        path = MakeFile(bytes);
        document = new TestDocument;
        ASSERT_TRUE(document->OnOpenDocument(path));
        document->SetPathName(path);
        frame = new TestFrame(document);
        area.addSubWindow(frame);
        area.resize(900, 500);
        area.show();
        frame->show();
        frame->OnInitialUpdate();
    }
    void TearDown() override
    {
        delete frame;
        delete document;
    }

    QMdiArea area;
    QString path;
    TestDocument* document = nullptr;
    TestFrame* frame = nullptr;
};

TEST_F(HexFrameTest, StatusTextShowsOffsetSelectionAndMode)
{
    Open(QByteArray(300, 'a'));
    QSignalSpy spy(frame, &CChildFrame::statusTextChanged);
    frame->View()->SetCaret(255);
    ASSERT_GE(spy.count(), 1);
    EXPECT_EQ(spy.last().at(0).toString(), frame->StatusText());
    EXPECT_TRUE(frame->StatusText().contains(QStringLiteral("0xFF (255)")))
        << frame->StatusText().toStdString();
    EXPECT_TRUE(frame->StatusText().contains(QStringLiteral("OVR")));
    frame->View()->Select(10, 20);
    EXPECT_TRUE(frame->StatusText().contains(QStringLiteral("Selected: 20")));
    frame->View()->SetInsertMode(true);
    EXPECT_TRUE(frame->StatusText().contains(QStringLiteral("INS")));
}

TEST_F(HexFrameTest, CommandStatesFollowTheDocument)
{
    Open("abcdef");
    auto state = [this](int id) {
        CCmdUI ui;
        frame->OnUpdateCmdUI(id, ui);
        EXPECT_TRUE(ui.handled) << id;
        return ui.enabled;
    };
    EXPECT_FALSE(state(Cmd::EditUndo));
    EXPECT_FALSE(state(Cmd::EditCopy));
    EXPECT_FALSE(state(Cmd::EditCut));
    EXPECT_FALSE(state(Cmd::BookmarkToggle));
    EXPECT_TRUE(state(Cmd::EditSelectAll));
    EXPECT_TRUE(state(Cmd::EditFind));
    EXPECT_TRUE(state(Cmd::EditGoto));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditSelectAll));
    EXPECT_TRUE(state(Cmd::EditCopy));
    EXPECT_TRUE(state(Cmd::EditCut));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditCut));
    EXPECT_EQ(document->Size(), 0);
    EXPECT_TRUE(state(Cmd::EditUndo));
    EXPECT_TRUE(state(Cmd::EditPaste));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditUndo));
    EXPECT_EQ(document->Size(), 6);
    EXPECT_TRUE(state(Cmd::EditRedo));
    // Commands of the text editor are not ours.
    CCmdUI ui;
    frame->OnUpdateCmdUI(Cmd::ViewWordWrap, ui);
    EXPECT_FALSE(ui.handled);
    EXPECT_FALSE(frame->OnCmdMsg(Cmd::ViewWordWrap));
}

TEST_F(HexFrameTest, ReadOnlyDocumentOffersNoChangingCommand)
{
    path = MakeFile("abcdef");
    document = new TestDocument;
    document->SetReadOnly(true);
    ASSERT_TRUE(document->OnOpenDocument(path));
    frame = new TestFrame(document);
    frame->View()->SelectAll();
    QApplication::clipboard()->setText(QStringLiteral("00"));
    for (const int id : {int(Cmd::EditUndo), int(Cmd::EditRedo), int(Cmd::EditCut),
                         int(Cmd::EditPaste)}) {
        CCmdUI ui;
        frame->OnUpdateCmdUI(id, ui);
        EXPECT_TRUE(ui.handled);
        EXPECT_FALSE(ui.enabled) << id;
    }
    CCmdUI copy;
    frame->OnUpdateCmdUI(Cmd::EditCopy, copy);
    EXPECT_TRUE(copy.enabled);
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditCut));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditPaste));
    EXPECT_EQ(document->Bytes().Read(0, document->Size()), QByteArray("abcdef"));
}

TEST_F(HexFrameTest, FindSelectsMatchesAndRepeatsBothWays)
{
    Open("xxABxxABxxab");
    frame->findAnswer = CHexFindRequest{"AB", true, false};
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFind));
    EXPECT_EQ(frame->View()->SelectionStart(), 2);
    EXPECT_EQ(frame->View()->SelectionLength(), 2);
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindNext));
    EXPECT_EQ(frame->View()->SelectionStart(), 6);
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindNext));
    ASSERT_EQ(frame->messages.size(), 1);
    EXPECT_EQ(frame->messages[0].icon, QMessageBox::Information);
    EXPECT_EQ(frame->messages[0].text, QStringLiteral("The search text was not found"));
    EXPECT_EQ(frame->View()->SelectionStart(), 6) << "a failed find leaves the selection";
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindPrevious));
    EXPECT_EQ(frame->View()->SelectionStart(), 2);
    // Ignoring case finds the lower-case pair too.
    EXPECT_TRUE(frame->Find(CHexFindRequest{"AB", false, false}, true));
    EXPECT_TRUE(frame->Find(CHexFindRequest{"AB", false, false}, true));
    EXPECT_EQ(frame->View()->SelectionStart(), 10);
}

TEST_F(HexFrameTest, GotoMovesTheCaretAndValuesPanelFollows)
{
    QByteArray bytes(64, '\0');
    bytes[40] = char(0xFE);
    bytes[41] = char(0xFF);
    Open(bytes);
    frame->gotoAnswer = 40;
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditGoto));
    EXPECT_EQ(frame->View()->CaretOffset(), 40);
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("Int16"), true), QStringLiteral("-2"));
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("UInt16"), false),
              QStringLiteral("65279"));
    frame->View()->SetCaret(63);
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("UInt8"), true), QStringLiteral("0"));
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("UInt16"), true), QStringLiteral("-"));
}

TEST(HexTemplate, OpensDocumentsInFramesAndHonoursReadOnly)
{
    QMdiArea area;
    std::unique_ptr<CDocTemplate> docTemplate(CreateHexTemplate(nullptr));
    OpenOptions options;
    options.mode = OpenOptions::Hex;
    options.readOnly = true;
    docTemplate->SetMdiArea(&area);
    docTemplate->SetOpenOptions(&options);
    const QString path = MakeFile(QByteArray("\x00\x01", 2), QStringLiteral("disk.img"));
    auto* document = qobject_cast<CHexDocument*>(docTemplate->OpenDocumentFile(path));
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->IsReadOnly());
    EXPECT_EQ(document->GetTitle(), QStringLiteral("disk.img [Read Only]"));
    ASSERT_EQ(document->GetFrames().size(), 1);
    auto* frame = qobject_cast<CHexFrame*>(document->GetFrames().first());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->windowTitle(), QStringLiteral("disk.img [Read Only]"));

    options.readOnly = false;
    CDocument* untitled = docTemplate->OpenDocumentFile(QString());
    ASSERT_NE(untitled, nullptr);
    EXPECT_EQ(untitled->GetTitle(), QStringLiteral("Hex1"));
    EXPECT_EQ(docTemplate->GetDocuments().size(), 2);
}

// The status bar's progress during a save, through the template's sink.
class RecordingSink : public IProgressSink
{
public:
    void StartProgress(qint64 range) override { events.append(QStringLiteral("start %1").arg(range)); }
    void SetProgress(qint64 done) override { last = done; }
    void StopProgress() override { events.append(QStringLiteral("stop")); }
    QStringList events;
    qint64 last = -1;
};

TEST(HexTemplate, SaveReportsProgressToTheSink)
{
    std::unique_ptr<CDocTemplate> docTemplate(CreateHexTemplate(nullptr));
    OpenOptions options;
    docTemplate->SetOpenOptions(&options);
    RecordingSink sink;
    docTemplate->SetProgressSink(&sink);
    const QString path = MakeFile(QByteArray(5000, 's'));
    auto* document = qobject_cast<CHexDocument*>(docTemplate->OpenDocumentFile(path, false));
    ASSERT_NE(document, nullptr);
    ASSERT_TRUE(document->Insert(0, "12345"));
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(sink.events, (QStringList{QStringLiteral("start 5005"), QStringLiteral("stop")}));
    EXPECT_EQ(sink.last, 5005);
    EXPECT_EQ(TestSupport::ReadFile(path).left(6), QByteArray("12345s"));
}

TEST(HexFindDialog, RemembersItsChoicesAndRefusesBadHex)
{
    TestSupport::ClearSettings();
    {
        CHexFindDialog dialog;
        EXPECT_TRUE(dialog.HexButton()->isChecked());
        EXPECT_FALSE(dialog.MatchCaseBox()->isEnabled()) << "case means nothing for hex";
        dialog.FindEdit()->setText(QStringLiteral("4G"));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Rejected);
        EXPECT_FALSE(dialog.ErrorText().isEmpty());
        dialog.FindEdit()->setText(QStringLiteral("4d 5a"));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        EXPECT_EQ(dialog.Request().pattern, QByteArray("MZ"));
        EXPECT_TRUE(dialog.Request().matchCase) << "bytes always match exactly";
    }
    {
        CHexFindDialog dialog;
        dialog.TextButton()->setChecked(true);
        EXPECT_TRUE(dialog.MatchCaseBox()->isEnabled());
        dialog.MatchCaseBox()->setChecked(false);
        dialog.UpButton()->setChecked(true);
        dialog.FindEdit()->setText(QStringLiteral("Hello"));
        dialog.accept();
        EXPECT_EQ(dialog.Request().pattern, QByteArray("Hello"));
        EXPECT_FALSE(dialog.Request().matchCase);
        EXPECT_TRUE(dialog.Request().up);
    }
    const CRegistryStore store;
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("HexFindDialog"), QStringLiteral("SearchAscii"), 0), 1);
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("HexFindDialog"), QStringLiteral("MatchCase"), 1), 0);
    EXPECT_EQ(store.GetProfileInt(QStringLiteral("HexFindDialog"), QStringLiteral("SearchUp"), 0), 1);
    CHexFindDialog again;
    EXPECT_TRUE(again.TextButton()->isChecked());
    EXPECT_TRUE(again.UpButton()->isChecked());
    EXPECT_FALSE(again.MatchCaseBox()->isChecked());
}

TEST(HexGotoDialog, RefusesOutOfRangeAndRemembersTheBase)
{
    TestSupport::ClearSettings();
    {
        CHexGotoDialog dialog(0, 256);
        EXPECT_TRUE(dialog.DecimalButton()->isChecked());
        dialog.OffsetEdit()->setText(QStringLiteral("256"));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Rejected);
        EXPECT_TRUE(dialog.ErrorText().contains(QStringLiteral("255")));
        dialog.HexButton()->setChecked(true);
        dialog.OffsetEdit()->setText(QStringLiteral("ff"));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        EXPECT_EQ(dialog.Offset(), 255);
    }
    EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("HexGoto"), QStringLiteral("Hex"), 0), 1);
    CHexGotoDialog again(0, 256);
    EXPECT_TRUE(again.HexButton()->isChecked());
}

} // namespace
