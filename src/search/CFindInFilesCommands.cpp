#include "CFindInFilesCommands.h"

#include "CFindInFilesDialog.h"
#include "CFindInFilesEngine.h"
#include "CFindInFilesRunner.h"
#include "CReplacePreviewDialog.h"
#include "FileReplacer.h"
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

#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>

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
    if (dialog.replaceChosen())
        ReplaceInFiles(options, dialog.replacement());
    else
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

QList<FindInFilesMatch> CFindInFilesCommands::CollectMatches(const FindInFilesOptions& options, QString* error)
{
    QList<FindInFilesMatch> matches;
    CFindInFilesEngine engine;
    QEventLoop loop;
    connect(&engine, &CFindInFilesEngine::matchesFound, &loop,
            [&matches](const QList<FindInFilesMatch>& batch) { matches += batch; });
    connect(&engine, &CFindInFilesEngine::finished, &loop, &QEventLoop::quit);
    if (!engine.start(options)) {
        if (error)
            *error = engine.errorString();
        return matches;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    QApplication::restoreOverrideCursor();
    return matches;
}

void CFindInFilesCommands::ReplaceInFiles(const FindInFilesOptions& options, const QString& replacement)
{
    QString error;
    const QList<FindInFilesMatch> matches = CollectMatches(options, &error);
    if (!error.isEmpty()) {
        m_page->showSearchError(error);
        return;
    }
    if (matches.isEmpty()) {
        QMessageBox::information(m_shell.Window(), tr("Replace in Files"), tr("The search text was not found"));
        return;
    }
    // What each file looked like when the user saw its matches.
    QHash<QString, FileStamp> previewed;
    for (const FindInFilesMatch& match : matches)
        if (!previewed.contains(match.path))
            previewed.insert(match.path, FileStamp::Of(match.path));
    CReplacePreviewDialog preview(options.text, replacement, matches, m_shell.Window());
    if (preview.exec() != QDialog::Accepted)
        return;
    const QStringList files = preview.chosenFiles();
    const QList<FindInFilesMatch> rows = ApplyReplacement(options, replacement, files, previewed);
    m_page->reportReplacement(tr("Replace \"%1\" with \"%2\"").arg(options.text, replacement), rows);
}

QList<FindInFilesMatch> CFindInFilesCommands::ApplyReplacement(const FindInFilesOptions& options,
                                                               const QString& replacement, const QStringList& files,
                                                               const QHash<QString, FileStamp>& previewed)
{
    // Open documents by the file they hold.
    QHash<QString, CScrivelFrame*> open;
    for (CChildFrame* child : m_shell.ChildFrames())
        if (auto* text = qobject_cast<CScrivelFrame*>(child); text && text->GetDocument())
            if (const QString path = QFileInfo(text->GetDocument()->GetPathName()).canonicalFilePath(); !path.isEmpty())
                open.insert(path, text);

    const SearchQuery query(options.text, options.matchCase, options.matchWord, options.regExp);
    const FileReplacer replacer(query, replacement, AnsiCodePage(options.ansiCodePage));
    QList<FindInFilesMatch> rows;
    for (const QString& path : files) {
        FindInFilesMatch row;
        row.path = path;
        row.line = 1;
        CScrivelFrame* frame = open.value(QFileInfo(path).canonicalFilePath());
        CMFCScintilla* editor = frame && frame->GetView() ? frame->GetView()->GetEditor() : nullptr;
        if (editor) {
            if (editor->SendScintilla(QsciScintillaBase::SCI_GETREADONLY)) {
                row.text = tr("skipped: the document is read-only");
            } else {
                // In the editor, so that the change is one step of its undo.
                CTextSearch search(editor);
                search.SetSearchFlags(options.matchCase, options.matchWord, options.regExp);
                const long count = search.ReplaceAll(options.text, replacement, false, options.regExp);
                row.text = tr("%n occurrence(s) replaced in the open document", nullptr, int(count));
            }
        } else {
            row.text = FileReplacer::Describe(replacer.Replace(path, previewed.value(path)));
        }
        rows += row;
    }
    return rows;
}
