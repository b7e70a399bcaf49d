// Another program changes or removes a file the editor has open.
#include "DocumentFixture.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QApplication>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "hex/CHexDocument.h"

#include <utility>

namespace {

// Answers each question box with the next of the given buttons, recording its text and
// which button it offered as the default.
class Answers : public QObject
{
public:
    explicit Answers(QList<QMessageBox::StandardButton> buttons) : m_buttons(std::move(buttons))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            texts.append(box->text());
            defaults.append(box->defaultButton() ? box->standardButton(box->defaultButton())
                                                 : QMessageBox::NoButton);
            offered.append(box->findChild<QAbstractButton*>(QStringLiteral("CompareWithDisk")) != nullptr);
            if (!clickNamed.isEmpty()) {
                if (auto* named = box->findChild<QAbstractButton*>(std::exchange(clickNamed, QString()))) {
                    named->click();
                    return;
                }
            }
            const auto button = m_buttons.isEmpty() ? QMessageBox::No : m_buttons.takeFirst();
            if (QAbstractButton* b = box->button(button))
                b->click();
            else
                box->done(QMessageBox::Cancel);
        });
        m_timer.start(10);
    }

    QStringList texts;
    QList<QMessageBox::StandardButton> defaults;
    QList<bool> offered; // whether each box offered to compare
    QString clickNamed;  // a button of our own to click instead, once

private:
    QList<QMessageBox::StandardButton> m_buttons;
    QTimer m_timer;
};

// Changes the file the way a user's shell command would.
void Shell(const QString& command)
{
    ASSERT_EQ(QProcess::execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command}), 0);
}

using ExternalChange = DocumentFixture;

struct ReloadCase
{
    const char* name;
    bool ownChanges;
    QMessageBox::StandardButton answer;
    QMessageBox::StandardButton expectedDefault;
    bool expectReloaded;
};

class ReloadQuestion : public DocumentFixture, public ::testing::WithParamInterface<ReloadCase> {};

TEST_P(ReloadQuestion, AsksAndDoesWhatTheUserSaid)
{
    m_answerer.reset(); // these tests answer for themselves
    const ReloadCase& c = GetParam();
    const QString path = Path(QStringLiteral("watched.txt"));
    TestSupport::WriteFile(path, "line one\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    if (c.ownChanges)
        Retype(document, "my own edit\n");
    Shell(QStringLiteral("printf 'from the other program\\n' > '%1'").arg(path));

    Answers answers({c.answer});
    document->CheckDiskChange();
    ASSERT_EQ(answers.texts.size(), 1);
    EXPECT_EQ(answers.texts.first(),
              QStringLiteral("\"%1\" has been changed by another program. Reload it?").arg(path));
    EXPECT_EQ(answers.defaults.first(), c.expectedDefault);
    const QByteArray text = document->GetEditor()->GetText();
    if (c.expectReloaded) {
        EXPECT_EQ(text, QByteArray("from the other program\n"));
        EXPECT_FALSE(document->IsModified());
    } else {
        EXPECT_EQ(text, c.ownChanges ? QByteArray("my own edit\n") : QByteArray("line one\n"));
    }
    // The same change is not asked about twice.
    document->CheckDiskChange();
    EXPECT_EQ(answers.texts.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReloadQuestion,
    ::testing::Values(
        ReloadCase{"UnmodifiedReloads", false, QMessageBox::Yes, QMessageBox::Yes, true},
        ReloadCase{"UnmodifiedKeeps", false, QMessageBox::No, QMessageBox::Yes, false},
        ReloadCase{"ModifiedDefaultsToKeep", true, QMessageBox::No, QMessageBox::No, false},
        ReloadCase{"ModifiedMayStillReload", true, QMessageBox::Yes, QMessageBox::No, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ExternalChange, UnchangedFileAsksNothing)
{
    m_answerer.reset();
    const QString path = Path(QStringLiteral("quiet.txt"));
    TestSupport::WriteFile(path, "same\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "edited\n");
    ASSERT_TRUE(document->DoSave(path));
    Answers answers({});
    document->CheckDiskChange();
    EXPECT_TRUE(answers.texts.isEmpty());
}

struct OverwriteCase
{
    const char* name;
    QMessageBox::StandardButton answer;
    bool declinedReloadFirst;
};

class SaveOverChangedFile : public DocumentFixture, public ::testing::WithParamInterface<OverwriteCase> {};

TEST_P(SaveOverChangedFile, AsksBeforeOverwritingTheOtherProgramsBytes)
{
    m_answerer.reset();
    const QString path = Path(QStringLiteral("shared.txt"));
    TestSupport::WriteFile(path, "original\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Retype(document, "ours\n");
    Shell(QStringLiteral("echo theirs > '%1'").arg(path));

    QList<QMessageBox::StandardButton> buttons;
    if (GetParam().declinedReloadFirst) {
        buttons.append(QMessageBox::No);
        Answers decline({QMessageBox::No});
        document->CheckDiskChange();
        ASSERT_EQ(decline.texts.size(), 1);
    }
    Answers answers({GetParam().answer});
    const bool saved = document->DoSave(path);
    ASSERT_EQ(answers.texts.size(), 1);
    EXPECT_TRUE(answers.texts.first().contains(QStringLiteral("has been changed by another program since it was read")));
    EXPECT_EQ(answers.defaults.first(), QMessageBox::No);
    if (GetParam().answer == QMessageBox::Yes) {
        EXPECT_TRUE(saved);
        EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("ours\n"));
        EXPECT_FALSE(document->IsModified());
        // Saved over with consent: the next save asks nothing.
        Retype(document, "ours again\n");
        Answers none({});
        EXPECT_TRUE(document->DoSave(path));
        EXPECT_TRUE(none.texts.isEmpty());
    } else {
        EXPECT_FALSE(saved);
        EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("theirs\n"));
        EXPECT_TRUE(document->IsModified());
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, SaveOverChangedFile,
                         ::testing::Values(OverwriteCase{"Refused", QMessageBox::No, false},
                                           OverwriteCase{"Agreed", QMessageBox::Yes, false},
                                           OverwriteCase{"RefusedAfterDecliningReload", QMessageBox::No, true}),
                         [](const auto& info) { return std::string(info.param.name); });

struct DeletedCase
{
    const char* name;
    QMessageBox::StandardButton answer;
};

class DeletedFile : public DocumentFixture, public ::testing::WithParamInterface<DeletedCase> {};

TEST_P(DeletedFile, OffersToKeepItOpen)
{
    m_answerer.reset();
    const QString path = Path(QStringLiteral("doomed.txt"));
    TestSupport::WriteFile(path, "last copy\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Shell(QStringLiteral("rm '%1'").arg(path));

    QSignalSpy closing(document, &CDocument::closing);
    Answers answers({GetParam().answer});
    document->CheckDiskChange();
    ASSERT_EQ(answers.texts.size(), 1);
    EXPECT_EQ(answers.texts.first(),
              QStringLiteral("\"%1\" has been deleted by another program. Keep it open in the editor?").arg(path));
    EXPECT_EQ(answers.defaults.first(), QMessageBox::Yes);
    if (GetParam().answer == QMessageBox::Yes) {
        EXPECT_EQ(closing.count(), 0);
        EXPECT_EQ(document->GetEditor()->GetText(), QByteArray("last copy\n"));
        // Kept as the only copy: modified, so that closing asks, and a save writes it back.
        EXPECT_TRUE(document->IsModified());
        Answers none({});
        EXPECT_TRUE(document->DoSave(path));
        EXPECT_TRUE(none.texts.isEmpty());
        EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("last copy\n"));
    } else {
        EXPECT_EQ(closing.count(), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Answers, DeletedFile,
                         ::testing::Values(DeletedCase{"Kept", QMessageBox::Yes},
                                           DeletedCase{"Closed", QMessageBox::No}),
                         [](const auto& info) { return std::string(info.param.name); });

// With changes of its own the document offers a compare before the choice; the compare
// decides nothing, so the question stays open.
TEST_F(ExternalChange, ModifiedDocumentOffersACompareThatDecidesNothing)
{
    m_answerer.reset();
    const QString path = Path(QStringLiteral("both.txt"));
    TestSupport::WriteFile(path, "base\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Shell(QStringLiteral("echo theirs > '%1'").arg(path));
    {
        // Nobody to show a compare: no such button, even with changes of its own.
        Retype(document, "mine\n");
        Answers answers({QMessageBox::No});
        document->CheckDiskChange();
        ASSERT_EQ(answers.offered, QList<bool>{false});
        Shell(QStringLiteral("echo theirs again > '%1'").arg(path));
    }
    QSignalSpy compare(document, &CScrivelDoc::compareWithDiskRequested);
    Answers answers({QMessageBox::No});
    answers.clickNamed = QStringLiteral("CompareWithDisk");
    document->CheckDiskChange();
    ASSERT_EQ(answers.offered, QList<bool>{true});
    EXPECT_EQ(compare.count(), 1);
    EXPECT_EQ(document->GetEditor()->GetText(), QByteArray("mine\n"));
    EXPECT_TRUE(document->IsModified());
    document->CheckDiskChange(); // still undecided: asked again, and No now keeps ours
    EXPECT_EQ(answers.texts.size(), 2);
    document->CheckDiskChange();
    EXPECT_EQ(answers.texts.size(), 2);

    // Without changes of its own there is nothing to compare.
    document->SetModifiedFlag(false);
    Shell(QStringLiteral("echo third > '%1'").arg(path));
    document->CheckDiskChange();
    EXPECT_EQ(answers.offered.last(), false);
}

// The hex document with its questions answered in turn and recorded.
class AnsweringHexDocument : public CHexDocument
{
public:
    QList<QMessageBox::StandardButton> answers;
    QStringList asked;
    QList<QMessageBox::StandardButton> defaults;

protected:
    void ShowMessage(QMessageBox::Icon, const QString& text) override { asked.append(text); }
    QMessageBox::StandardButton Ask(QMessageBox::Icon, const QString& text, QMessageBox::StandardButtons,
                                    QMessageBox::StandardButton byDefault) override
    {
        asked.append(text);
        defaults.append(byDefault);
        return answers.isEmpty() ? QMessageBox::No : answers.takeFirst();
    }
};

TEST_F(ExternalChange, HexDocumentNoticesChangesAndAsksBeforeOverwriting)
{
    const QString path = Path(QStringLiteral("blob.bin"));
    TestSupport::WriteFile(path, QByteArray("\x01\x02\x03\x04", 4));
    AnsweringHexDocument document;
    ASSERT_TRUE(document.OnOpenDocument(path));
    document.SetPathName(path);
    document.CheckDiskChange();
    EXPECT_TRUE(document.asked.isEmpty()) << "nothing changed yet";

    // Unmodified: Yes is the default and reloads the other program's bytes, even when
    // the file shrank under the mapping.
    Shell(QStringLiteral("printf 'AB' > '%1'").arg(path));
    document.answers = {QMessageBox::Yes};
    document.CheckDiskChange();
    ASSERT_EQ(document.asked.size(), 1);
    EXPECT_EQ(document.asked.first(), QStringLiteral("\"%1\" has been changed by another program. Reload it?").arg(path));
    EXPECT_EQ(document.defaults.first(), QMessageBox::Yes);
    EXPECT_EQ(document.Bytes().Read(0, document.Size()), QByteArray("AB"));

    // With edits of its own No is the default; the declined change is not asked again,
    // but a save over it asks, and No leaves the other program's bytes alone.
    // (Written beside and renamed over, as editors save: the bytes we map stay ours.)
    ASSERT_TRUE(document.Insert(0, "Z"));
    Shell(QStringLiteral("printf 'theirs' > '%1.new' && mv '%1.new' '%1'").arg(path));
    document.CheckDiskChange();
    EXPECT_EQ(document.defaults.last(), QMessageBox::No);
    document.CheckDiskChange();
    EXPECT_EQ(document.asked.size(), 2);
    document.answers = {QMessageBox::No};
    EXPECT_FALSE(document.DoFileSave());
    EXPECT_EQ(document.asked.last(),
              QStringLiteral("\"%1\" has been changed by another program since it was read. "
                             "Overwrite it with this document?").arg(path));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("theirs"));
    EXPECT_TRUE(document.IsModified());
    document.answers = {QMessageBox::Yes};
    EXPECT_TRUE(document.DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("ZAB"));
    document.CheckDiskChange();
    EXPECT_EQ(document.asked.size(), 4) << "our own save is no outside change";

    // Removed: kept open as the only copy, so that closing asks to save it.
    Shell(QStringLiteral("rm '%1'").arg(path));
    document.answers = {QMessageBox::Yes};
    document.CheckDiskChange();
    EXPECT_EQ(document.asked.last(),
              QStringLiteral("\"%1\" has been deleted by another program. Keep it open in the editor?").arg(path));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.Bytes().Read(0, document.Size()), QByteArray("ZAB"));
}

// The question comes when the program is brought back, not before.
TEST_F(ExternalChange, ComingBackToTheProgramTriggersTheCheck)
{
    m_answerer.reset();
    const QString path = Path(QStringLiteral("focus.txt"));
    TestSupport::WriteFile(path, "before\n");
    CScrivelDoc* document = Open(path);
    ASSERT_NE(document, nullptr);
    Shell(QStringLiteral("echo after > '%1'").arg(path));
    Answers answers({QMessageBox::Yes});
    QCoreApplication::processEvents();
    EXPECT_TRUE(answers.texts.isEmpty());
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    for (int i = 0; i < 50 && answers.texts.isEmpty(); ++i)
        QTest::qWait(10);
    ASSERT_EQ(answers.texts.size(), 1);
    EXPECT_EQ(document->GetEditor()->GetText(), QByteArray("after\n"));
}

} // namespace
