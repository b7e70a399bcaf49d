#include "CFindInFilesCommands.h"

#include "CFindInFilesDialog.h"
#include "CFindInFilesRunner.h"
#include "CFindResultsPage.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/CTextSearch.h"
#include "framework/CommandIds.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QFileInfo>
#include <QMainWindow>

namespace {

// Selects, in a file opened from a result with the caret on the match, the text that
// `options` found there.
bool SelectFoundText(CMFCScintilla* editor, const FindInFilesOptions& options)
{
    CTextSearch search(editor);
    search.SetSearchFlags(options.matchCase, options.matchWord, options.regExp);
    return search.SelectMatchAtCaret(options.text);
}

} // namespace

CFindInFilesCommands::CFindInFilesCommands(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
    , m_page(new CFindResultsPage)
{
    m_runner = new CFindInFilesRunner(m_page, this);
    connect(m_page, &CFindResultsPage::openLocation, this, &CFindInFilesCommands::OpenLocation);
    connect(m_page, &CFindResultsPage::showRequested, this,
            [this] { m_shell.ShowOutputPage(m_page); });
    shell.AddOutputPage(m_page);

    shell.Commands().Register({.id = Cmd::FindInFiles,
                               .text = tr("Find in Files..."),
                               .category = tr("Search"),
                               .shortcut = QKeySequence(QStringLiteral("Ctrl+Shift+F")),
                               .iconName = QStringLiteral("system-search"),
                               .run = [this] { OnFindInFiles(); }});
    // Listed with the other finds, without a line between.
    shell.Menus().AddCommand(MenuId::Search, MenuGroup::SearchFind, Cmd::FindInFiles);
    shell.Menus().AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Find, Cmd::FindInFiles);
}

CFindInFilesCommands* CFindInFilesCommands::Of(IShell& shell)
{
    QMainWindow* window = shell.Window();
    return window ? window->findChild<CFindInFilesCommands*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

void CFindInFilesCommands::OnFindInFiles()
{
    QString word;
    QString folder;
    if (auto* text = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild())) {
        word = text->GetView()->GetEditor()->GetSearchSeed();
        const QString path = text->GetDocument() ? text->GetDocument()->GetPathName() : QString();
        if (!path.isEmpty())
            folder = QFileInfo(path).absolutePath();
    }
    CFindInFilesDialog dialog(word, folder, m_shell.Window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    FindInFilesOptions options = dialog.options();
    // Columns then count tabs the way the editor does.
    options.tabWidth = m_shell.Settings().view.TabWidth;
    m_runner->start(options);
}

void CFindInFilesCommands::OpenLocation(const QString& path, int line, int column)
{
    OpenOptions options;
    const QFileInfo info(path);
    options.readOnly = info.exists() && !info.isWritable();
    CDocument* document = m_shell.OpenPath(path, options);
    // A document that is open already is only brought forward, and is the active one now.
    if (!document && m_shell.ActiveChild())
        document = m_shell.ActiveChild()->GetDocument();
    if (auto* text = qobject_cast<CScrivelDoc*>(document);
        text && QFileInfo(text->GetPathName()) == info) {
        text->GoToLineColumn(line, column);
        if (CMFCScintilla* editor = text->GetEditor())
            SelectFoundText(editor, m_runner->lastOptions());
    }
}
