#include "framework/CDocTemplate.h"
#include "settings/CRegistryStore.h"
#include "framework/CommandIds.h"
#include "framework/OpenOptions.h"
#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"
#include "hex/CHexFindDialog.h"
#include "hex/CHexFrame.h"
#include "hex/CHexValuesPanel.h"
#include "hex/HexTemplate.h"

#include "DocumentCleanup.h"
#include "HexTestFile.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMdiArea>
#include <QRadioButton>
#include <gtest/gtest.h>
#include <memory>

namespace {

// The document and frame with their message boxes and dialogs answered by the test.
class TestDocument : public CHexDocument
{
public:
    QStringList messages;
    QString saveAsAnswer;

protected:
    void ShowMessage(QMessageBox::Icon, const QString& text) override { messages.append(text); }
    QString AskSaveAsPath() override { return saveAsAnswer; }
};

class TestFrame : public CHexFrame
{
public:
    using CHexFrame::CHexFrame;
    QStringList messages;
    CHexFindRequest findAnswer;
    qint64 gotoAnswer = -1;

protected:
    void ShowMessage(QMessageBox::Icon, const QString& text) override { messages.append(text); }
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

TEST(HexDocument, TitleMarksChangesAndReadOnlyRefusesThem)
{
    const QString path = MakeFile("abc", QStringLiteral("image.bin"));
    TestDocument document;
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Overwrite(0, "x"));
    EXPECT_EQ(document.GetTitle(), QStringLiteral("image.bin*"));
    ASSERT_TRUE(document.Undo());
    EXPECT_EQ(document.GetTitle(), QStringLiteral("image.bin"));

    TestDocument readOnly;
    readOnly.SetReadOnly(true);
    ASSERT_TRUE(readOnly.OnOpenDocument(path));
    readOnly.SetPathName(path);
    EXPECT_FALSE(readOnly.Overwrite(0, "x"));
    EXPECT_FALSE(readOnly.Insert(0, "x"));
    EXPECT_FALSE(readOnly.Remove(0, 1));
    EXPECT_EQ(readOnly.Bytes().Read(0, 3), QByteArray("abc"));
    EXPECT_EQ(readOnly.GetTitle(), QStringLiteral("image.bin [Read Only]"));

    TestDocument missing;
    EXPECT_FALSE(missing.OnOpenDocument(path + QStringLiteral(".gone")));
    ASSERT_EQ(missing.messages.size(), 1);
    EXPECT_TRUE(missing.messages[0].startsWith(QStringLiteral("Cannot open \"")));
}

TEST(HexDocument, SaveSaveAsAndAFailedSave)
{
    TestDocument document;
    const QString path = MakeFile("0123456789");
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Insert(5, "--"));
    ASSERT_TRUE(document.DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("01234--56789"));
    EXPECT_FALSE(document.IsModified());

    // A failed save warns and keeps both the changes and the old file.
    ASSERT_TRUE(document.Overwrite(0, "X"));
    const QString folder = QFileInfo(path).absolutePath();
    EXPECT_FALSE(document.DoSave(folder + QStringLiteral("/no/such/folder/x.bin")));
    EXPECT_EQ(document.messages,
              QStringList{QStringLiteral("Failed to create a new file when saving the current document")});
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.GetPathName(), path);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("01234--56789"));

    // A cancelled Save As saves nothing; an answered one takes the new path.
    EXPECT_FALSE(document.DoSave(QString()));
    document.saveAsAnswer = folder + QStringLiteral("/renamed.bin");
    ASSERT_TRUE(document.DoSave(QString()));
    EXPECT_EQ(document.GetTitle(), QStringLiteral("renamed.bin"));
    EXPECT_EQ(TestSupport::ReadFile(document.saveAsAnswer), QByteArray("X1234--56789"));
}

// Listeners (versions, recovery) hear of every load and save, and of a save before the
// old file is touched; a failed save announces no "saved".
TEST(HexDocument, AnnouncesLoadsAndSavesWithTheOldFileStillThereBeforeASave)
{
    TestDocument document;
    const QString path = MakeFile("abc");
    QStringList events;
    QObject::connect(&document, &CDocument::loaded, [&](const QString& p) { events << "loaded " + p; });
    QObject::connect(&document, &CDocument::aboutToSave, [&](const QString& p) {
        events << "about " + QString::fromLatin1(QFileInfo::exists(p) ? TestSupport::ReadFile(p) : QByteArray("(none)"));
    });
    QObject::connect(&document, &CDocument::saved, [&](const QString& p) {
        events << "saved " + QString::fromLatin1(TestSupport::ReadFile(p));
    });
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    ASSERT_TRUE(document.Overwrite(0, "X"));
    ASSERT_TRUE(document.DoFileSave());
    const QString bad = QFileInfo(path).absolutePath() + QStringLiteral("/no/such/folder/x.bin");
    EXPECT_FALSE(document.DoSave(bad));
    EXPECT_EQ(events, (QStringList{"loaded " + path, "about abc", "saved Xbc", "about (none)"}));
}

class HexFrameTest : public ::testing::Test
{
protected:
    void Open(const QByteArray& bytes)
    {
        document = std::make_unique<TestDocument>();
        ASSERT_TRUE(document->OnOpenDocument(MakeFile(bytes)));
        frame = new TestFrame(document.get());
        area.addSubWindow(frame);
        area.resize(900, 500);
        area.show();
        frame->show();
        frame->OnInitialUpdate();
    }
    bool Enabled(int id)
    {
        CCmdUI ui;
        frame->OnUpdateCmdUI(id, ui);
        EXPECT_TRUE(ui.handled) << id;
        return ui.enabled;
    }
    void TearDown() override { delete frame; }

    QMdiArea area;
    std::unique_ptr<TestDocument> document;
    TestFrame* frame = nullptr;
};

TEST_F(HexFrameTest, CommandStatesFollowTheDocument)
{
    Open("abcdef");
    EXPECT_FALSE(Enabled(Cmd::EditUndo));
    EXPECT_FALSE(Enabled(Cmd::EditCut));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditSelectAll));
    EXPECT_TRUE(Enabled(Cmd::EditCut));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditCut));
    EXPECT_EQ(document->Size(), 0);
    EXPECT_TRUE(Enabled(Cmd::EditPaste));
    EXPECT_TRUE(frame->OnCmdMsg(Cmd::EditUndo));
    EXPECT_EQ(document->Size(), 6);
    EXPECT_TRUE(Enabled(Cmd::EditRedo));
    // Commands of the text editor are not ours.
    CCmdUI ui;
    frame->OnUpdateCmdUI(Cmd::ViewWordWrap, ui);
    EXPECT_FALSE(ui.handled);
    EXPECT_FALSE(frame->OnCmdMsg(Cmd::ViewWordWrap));
}

TEST_F(HexFrameTest, FindRepeatsBothWaysAndGotoMovesTheValuesPanel)
{
    Open("xxABxxABxxab\xFE\xFF");
    frame->findAnswer = CHexFindRequest{"AB", true, false};
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFind));
    EXPECT_EQ(frame->View()->SelectionStart(), 2);
    EXPECT_EQ(frame->View()->SelectionLength(), 2);
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindNext));
    EXPECT_EQ(frame->View()->SelectionStart(), 6);
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindNext));
    EXPECT_EQ(frame->messages, QStringList{QStringLiteral("The search text was not found")});
    EXPECT_EQ(frame->View()->SelectionStart(), 6) << "a failed find leaves the selection";
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditFindPrevious));
    EXPECT_EQ(frame->View()->SelectionStart(), 2);
    EXPECT_TRUE(frame->Find(CHexFindRequest{"AB", false, false}, true));
    EXPECT_TRUE(frame->Find(CHexFindRequest{"AB", false, false}, true));
    EXPECT_EQ(frame->View()->SelectionStart(), 10) << "ignoring case finds the lower-case pair";

    frame->gotoAnswer = 12;
    ASSERT_TRUE(frame->OnCmdMsg(Cmd::EditGoto));
    EXPECT_EQ(frame->View()->CaretOffset(), 12);
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("Int16"), true), QStringLiteral("-2"));
    frame->View()->SetCaret(13);
    EXPECT_EQ(frame->ValuesPanel()->ValueText(QStringLiteral("UInt16"), true), QStringLiteral("-"));
}

TEST(HexTemplate, OpensReadOnlyInAFrame)
{
    QMdiArea area;
    std::unique_ptr<CDocTemplate> docTemplate(CreateHexTemplate(nullptr));
    OpenOptions options;
    options.readOnly = true;
    docTemplate->SetMdiArea(&area);
    docTemplate->SetOpenOptions(&options);
    const QString image = MakeFile(QByteArray("\x00\x01", 2), QStringLiteral("disk.img"));
    auto* document = qobject_cast<CHexDocument*>(docTemplate->OpenDocumentFile(image));
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->IsReadOnly());
    ASSERT_EQ(document->GetFrames().size(), 1);
    EXPECT_EQ(document->GetFrames().first()->windowTitle(), QStringLiteral("disk.img [Read Only]"));
    DocumentCleanup::DeleteAll(*docTemplate);
}

TEST(HexFindDialog, RefusesBadHexAndRemembersItsChoices)
{
    TestSupport::ClearSettings();
    {
        CHexFindDialog dialog;
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
        dialog.TextButton()->setChecked(true);
        dialog.MatchCaseBox()->setChecked(false);
        dialog.UpButton()->setChecked(true);
        dialog.accept();
    }
    CHexFindDialog again;
    EXPECT_TRUE(again.TextButton()->isChecked());
    EXPECT_TRUE(again.UpButton()->isChecked());
    EXPECT_FALSE(again.MatchCaseBox()->isChecked());
}

} // namespace
