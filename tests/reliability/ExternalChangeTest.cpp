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
