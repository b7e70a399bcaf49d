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

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QTimer>
#include <gtest/gtest.h>

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

} // namespace
