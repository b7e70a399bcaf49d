#include "CFindInFilesCommands.h"

#include "CFindInFilesDialog.h"
#include "CFindInFilesRunner.h"
#include "CTextSearch.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "tools/COutputBar.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>

CFindInFilesCommands::CFindInFilesCommands(CMainFrame* frame)
    : QObject(frame)
    , m_frame(frame)
    , m_bar(new COutputBar(frame))
{
    m_bar->setVisible(false);
    frame->addDockWidget(Qt::BottomDockWidgetArea, m_bar);
    m_runner = new CFindInFilesRunner(m_bar, this);
    connect(m_bar, &COutputBar::openLocation, this, &CFindInFilesCommands::OpenLocation);
}

CFindInFilesCommands* CFindInFilesCommands::Install(CMainFrame* frame)
{
    if (auto* existing = frame->findChild<CFindInFilesCommands*>(QString(), Qt::FindDirectChildrenOnly))
        return existing;
    auto* commands = new CFindInFilesCommands(frame);
    frame->AddCommand(Cmd::FindInFiles, tr("Find in F&iles..."), QKeySequence(tr("Ctrl+Shift+F")),
                      [commands] { commands->OnFindInFiles(); });
    QAction* toggle = frame->AddCommand(
        Cmd::ViewOutputBar, tr("&Output Bar"), QKeySequence(),
        [commands] {
            if (commands->m_bar)
                commands->m_bar->setVisible(!commands->m_bar->isVisible());
        },
        [commands](CCmdUI& ui) {
            ui.handled = true;
            ui.checked = commands->m_bar && commands->m_bar->isVisible();
        });
    toggle->setCheckable(true);
    if (auto* view = frame->findChild<QMenu*>(QStringLiteral("ViewMenu")); view && !view->actions().contains(toggle))
        view->addAction(toggle);
    return commands;
}

void CFindInFilesCommands::OnFindInFiles()
{
    QString word;
    QString folder;
    if (auto* text = qobject_cast<CScrivelFrame*>(m_frame->ActiveChild())) {
        word = text->GetView()->GetEditor()->GetSearchSeed();
        const QString path = text->GetDocument() ? text->GetDocument()->GetPathName() : QString();
        if (!path.isEmpty())
            folder = QFileInfo(path).absolutePath();
    }
    CFindInFilesDialog dialog(word, folder, m_frame);
    if (dialog.exec() != QDialog::Accepted)
        return;
    FindInFilesOptions options = dialog.options();
    // Columns then count tabs the way the editor does.
    options.tabWidth = m_frame->Settings().view.TabWidth;
    m_runner->start(options);
}

void CFindInFilesCommands::OpenLocation(const QString& path, int line, int column)
{
    CMorvaneApp* app = CMorvaneApp::Instance();
    if (!app)
        return;
    CDocument* document = app->OpenDetected(path);
    // A document that is open already is only brought forward, and is the active one now.
    if (!document && m_frame->ActiveChild())
        document = m_frame->ActiveChild()->GetDocument();
    if (auto* text = qobject_cast<CScrivelDoc*>(document);
        text && QFileInfo(text->GetPathName()) == QFileInfo(path)) {
        text->GoToLineColumn(line, column);
        if (CMFCScintilla* editor = text->GetEditor())
            SelectFoundText(editor, m_runner->lastOptions());
    }
}
