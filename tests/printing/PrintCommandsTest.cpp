#include "CFakeShell.h"
#include "TestSupport.h"
#include "TextDocuments.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "printing/PrintCommands.h"
#include "DocumentCleanup.h"
#include "../reliability/FaultInjector.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFileDialog>
#include <QMenu>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QProgressDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QTimer>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

namespace {

class PrintCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_template = TextDocuments::MakeTemplate(&m_options);
        InstallPrinting(m_shell);
    }
    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }
    CScrivelFrame* NewFrame(int lines)
    {
        CScrivelFrame* frame = TextDocuments::NewFrame(*m_template);
        QByteArray text;
        for (int i = 0; i < lines; ++i)
            text += "line " + QByteArray::number(i) + "\n";
        frame->GetView()->GetEditor()->AddText(text.constData(), text.size());
        m_shell.AddChildFrame(frame);
        return frame;
    }
    bool Enabled(int id) { return m_shell.Commands().State(id).enabled; }

    OpenOptions m_options = OpenOptions::defaults();
    std::unique_ptr<CDocTemplate> m_template;
    CFakeShell m_shell;
};

TEST_F(PrintCommandsTest, TheFileMenuOffersThePrintCommandsForTextDocumentsOnly)
{
    const QList<int> ids{Cmd::FilePageSetup, Cmd::FilePrintPreview, Cmd::FilePrint, Cmd::FilePrintDirect,
                         Cmd::FileExportPdf};
    QList<int> inMenu;
    for (QAction* action : m_shell.Menus().Menu(QString::fromLatin1(MenuId::File))->actions()) {
        if (!action->isSeparator() && action->data().toInt() > 0)
            inMenu << action->data().toInt();
    }
    EXPECT_EQ(inMenu, ids);
    EXPECT_EQ(m_shell.Commands().Shortcut(Cmd::FilePrint), QKeySequence(QKeySequence::Print));
    EXPECT_EQ(m_shell.Commands().PlainText(Cmd::FileExportPdf), QStringLiteral("Export as PDF..."));

    for (const int id : {int(Cmd::FilePrint), int(Cmd::FilePrintPreview), int(Cmd::FileExportPdf)})
        EXPECT_FALSE(Enabled(id)) << id;
    EXPECT_TRUE(Enabled(Cmd::FilePageSetup)) << "the page can be set up before any document";
    NewFrame(3);
    for (const int id : {int(Cmd::FilePrint), int(Cmd::FilePrintPreview), int(Cmd::FileExportPdf)})
        EXPECT_TRUE(Enabled(id)) << id;
}

TEST_F(PrintCommandsTest, PreviewShowsEveryPageOfTheDocument)
{
    m_shell.Settings().PrintFooter = 1;
    NewFrame(400);
    int previewPages = -1;
    // Waits until the preview has painted its pages (the same count twice), then closes it.
    std::function<void()> poll = [&] {
        auto* preview = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        auto* pages = preview ? preview->findChild<QPrintPreviewWidget*>() : nullptr;
        if (pages && pages->pageCount() > 0 && pages->pageCount() == previewPages) {
            preview->reject();
            return;
        }
        if (pages)
            previewPages = pages->pageCount();
        QTimer::singleShot(100, poll);
    };
    QTimer::singleShot(100, poll);
    m_shell.Commands().Execute(Cmd::FilePrintPreview);
    // 400 lines at the default font and margins fill several A4 or Letter pages.
    EXPECT_GE(previewPages, 4);
    EXPECT_LE(previewPages, 12);
}

// Answers the windows of one export as a user would: picks `target` in the file chooser,
// cancels the progress window when asked to, and notes the warnings shown.
class CExportUser : public QObject
{
public:
    CExportUser(QString target, bool cancel) : m_target(std::move(target)), m_cancel(cancel)
    {
        connect(&m_poll, &QTimer::timeout, this, [this] { Answer(); });
        m_poll.start(20);
    }
    QStringList warnings;
    QString suggested; // the name the chooser offered first
    bool chose = false;

private:
    void Answer()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* chooser = qobject_cast<QFileDialog*>(modal)) {
            suggested = chooser->selectedFiles().value(0);
            // Typed into the name field, as a user does; the chooser reads it on accept.
            chooser->setDirectory(QFileInfo(m_target).absolutePath());
            if (auto* name = chooser->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
                name->setText(QFileInfo(m_target).fileName());
            chose = true;
            // Queued: what accepting opens runs its own loop, and this poll must go on.
            QMetaObject::invokeMethod(chooser, "accept", Qt::QueuedConnection);
        } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            // The chooser asks before replacing the earlier file: yes.
            if (qobject_cast<QFileDialog*>(box->parentWidget()))
                box->button(QMessageBox::Yes)->click();
            else
                warnings << box->text();
            box->close();
        }
        if (m_cancel) {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                for (auto* progress : window->findChildren<QProgressDialog*>())
                    progress->cancel();
            }
        }
    }

    QString m_target;
    bool m_cancel;
    QTimer m_poll;
};

struct ExportCase
{
    const char* name;
    int diskError;   // every write in the folder fails with it; 0: none
    bool cancel;
    bool replaced;   // the earlier file is replaced by the export
    bool warned;
};

class ExportCommandTest : public PrintCommandsTest, public ::testing::WithParamInterface<ExportCase>
{
};

TEST_P(ExportCommandTest, ReplacesTheEarlierFileOnlyWhenWholeAndSaysWhyItDidNot)
{
    const ExportCase& c = GetParam();
    NewFrame(20000);
    const QString folder = QDir(TestSupport::MakeTempDir()).absolutePath();
    const QString target = folder + QStringLiteral("/listing.pdf");
    const QByteArray earlier = "%PDF-1.4 an earlier export\n%%EOF\n";
    TestSupport::WriteFile(target, earlier);
    if (c.diskError) {
        FaultInjector::Watch(folder.toStdString());
        FaultInjector::Arm(FaultInjector::Call::Write, 1, c.diskError, false, true);
    }
    CExportUser user(target, c.cancel);
    m_shell.Commands().Execute(Cmd::FileExportPdf);
    FaultInjector::Reset();

    ASSERT_TRUE(user.chose);
    EXPECT_EQ(QFileInfo(user.suggested).fileName(), QStringLiteral("Untitled1.pdf"))
        << "the modified mark of the tab is not part of the name";
    const QByteArray now = TestSupport::ReadFile(target);
    if (c.replaced) {
        EXPECT_TRUE(now.startsWith("%PDF-") && now.size() > 10000) << now.left(40).toStdString();
        ASSERT_EQ(m_shell.statusMessages.size(), 1);
        EXPECT_TRUE(m_shell.statusMessages.front().contains(QStringLiteral("listing.pdf")));
    } else {
        EXPECT_EQ(now, earlier);
        EXPECT_TRUE(m_shell.statusMessages.isEmpty()) << m_shell.statusMessages.join(QLatin1Char('|')).toStdString();
    }
    if (c.warned) {
        ASSERT_EQ(user.warnings.size(), 1);
        EXPECT_TRUE(user.warnings.front().startsWith(QStringLiteral("Cannot write \"%1\": ").arg(target)))
            << user.warnings.front().toStdString();
        EXPECT_GT(user.warnings.front().size(), QStringLiteral("Cannot write \"%1\": ").arg(target).size())
            << "the reason is missing";
    } else {
        EXPECT_TRUE(user.warnings.isEmpty()) << user.warnings.join(QLatin1Char('|')).toStdString();
    }
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("listing.pdf")})
        << "nothing is left beside the export";
}

INSTANTIATE_TEST_SUITE_P(
    Outcomes, ExportCommandTest,
    ::testing::Values(ExportCase{"written", 0, false, true, false},
                      ExportCase{"diskFull", ENOSPC, false, false, true},
                      ExportCase{"ioError", EIO, false, false, true},
                      ExportCase{"cancelled", 0, true, false, false}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
