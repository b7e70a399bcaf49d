#include "CSearchCommands.h"

#include "CFindDialog.h"
#include "CHistoryComboBox.h"
#include "CReplaceDialog.h"
#include "CTextSearch.h"

#include "app/CMainFrame.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QMessageBox>

namespace {

const char* const ObjectName = "SearchCommands";

} // namespace

CSearchCommands::CSearchCommands(QWidget* window, EditorProvider activeEditor)
    : QObject(window)
    , m_window(window)
    , m_activeEditor(std::move(activeEditor))
{
    setObjectName(QLatin1String(ObjectName));
    // The dialogs go before the window closes, without writing their options.
    if (window)
        window->installEventFilter(this);
}

CSearchCommands::~CSearchCommands()
{
    DestroyDialogs();
}

CSearchCommands* CSearchCommands::Of(const QObject* frame)
{
    return frame ? frame->findChild<CSearchCommands*>(QLatin1String(ObjectName),
                                                      Qt::FindDirectChildrenOnly)
                 : nullptr;
}

CSearchCommands* CSearchCommands::Install(CMainFrame* frame)
{
    if (!frame)
        return nullptr;
    CSearchCommands* commands = Of(frame);
    if (!commands) {
        commands = new CSearchCommands(frame, [frame]() -> CMFCScintilla* {
            auto* child = qobject_cast<CScrivelFrame*>(frame->ActiveChild());
            return child && child->GetView() ? child->GetView()->GetEditor() : nullptr;
        });
        commands->m_frame = frame;
    }
    auto textView = [commands](CCmdUI& ui) { ui.enabled = commands->ActiveEditor() != nullptr; };
    frame->AddCommand(Cmd::EditFind, tr("Find..."), QKeySequence(),
                      [commands] { commands->OnEditFind(); }, textView);
    frame->AddCommand(Cmd::EditReplace, tr("Replace..."), QKeySequence(),
                      [commands] { commands->OnEditReplace(); }, textView);
    // Always enabled: with no text view they say that there is nothing to do.
    auto always = [](CCmdUI& ui) { ui.enabled = true; };
    frame->AddCommand(Cmd::EditFindNext, tr("Find Next"), QKeySequence(),
                      [commands] { commands->OnFindNextFromBox(false); }, always);
    frame->AddCommand(Cmd::EditFindPrevious, tr("Find Previous"), QKeySequence(),
                      [commands] { commands->OnFindNextFromBox(true); }, always);
    return commands;
}

bool CSearchCommands::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::Close)
        DestroyDialogs();
    return QObject::eventFilter(watched, event);
}

void CSearchCommands::DestroyDialogs()
{
    delete m_findDialog.data();
    delete m_replaceDialog.data();
}

QKeySequence CSearchCommands::CommandShortcut(int id) const
{
    if (m_frame) {
        if (QAction* action = m_frame->Action(id); action && !action->shortcut().isEmpty())
            return action->shortcut();
    }
    switch (id) {
    case Cmd::EditFind:
        return QKeySequence::Find;
    case Cmd::EditReplace:
        return QKeySequence(QStringLiteral("Ctrl+H"));
    case Cmd::EditFindNext:
        return QKeySequence(QStringLiteral("F3"));
    case Cmd::EditFindPrevious:
        return QKeySequence(QStringLiteral("Shift+F3"));
    default:
        return {};
    }
}

void CSearchCommands::ShowFindDialog(const QString& text)
{
    // A dialog may ask for its sibling from one of its own slots: it is hidden now and
    // freed once that slot has returned.
    if (CReplaceDialog* replace = m_replaceDialog) {
        m_replaceDialog.clear();
        replace->hide();
        replace->deleteLater();
    }
    if (m_findDialog) {
        m_findDialog->raise();
        m_findDialog->activateWindow();
        m_findDialog->FocusFindBox();
        return;
    }
    m_findDialog = new CFindDialog(this, text, m_window);
    m_findDialog->show();
}

void CSearchCommands::ShowReplaceDialog(const QString& text)
{
    if (CFindDialog* find = m_findDialog) {
        m_findDialog.clear();
        find->hide();
        find->deleteLater();
    }
    if (m_replaceDialog) {
        m_replaceDialog->raise();
        m_replaceDialog->activateWindow();
        m_replaceDialog->FocusFindBox();
        return;
    }
    m_replaceDialog = new CReplaceDialog(this, text, m_window);
    m_replaceDialog->show();
}

void CSearchCommands::OnEditFind()
{
    if (CMFCScintilla* editor = ActiveEditor())
        ShowFindDialog(CTextSearch(editor).GetSearchSeed());
}

void CSearchCommands::OnEditReplace()
{
    if (CMFCScintilla* editor = ActiveEditor())
        ShowReplaceDialog(CTextSearch(editor).GetSearchSeed());
}

QComboBox* CSearchCommands::FindBox() const
{
    return m_window ? m_window->findChild<QComboBox*>(QStringLiteral("FindBox")) : nullptr;
}

void CSearchCommands::RefreshFindBox()
{
    QComboBox* box = FindBox();
    if (!box || m_lastSearchText.isEmpty())
        return;
    if (auto* history = qobject_cast<CHistoryComboBox*>(box))
        history->addToHistory(m_lastSearchText);
    box->setEditText(m_lastSearchText);
}

void CSearchCommands::OnFindNextFromBox(bool previous)
{
    CMFCScintilla* editor = ActiveEditor();
    if (!editor) {
        QMessageBox::warning(MessageParent(), tr("Morvane"), tr("Find has nothing to do"));
        return;
    }
    const QComboBox* box = FindBox();
    const QString text = box ? box->currentText() : QString();
    if (text.isEmpty())
        return;
    m_lastSearchText = text;
    CTextSearch search(editor);
    search.SetSearchFlags(0);
    // Forward wraps, backward stops at the top.
    if (search.FindText(text, previous, !previous) == -1)
        Information(tr("The search text was not found"));
}

void CSearchCommands::FindInActiveView(const QString& text, bool matchCase, bool matchWord,
                                       bool regExp, bool searchUp, bool wrapAround)
{
    m_lastSearchText = text;
    CMFCScintilla* editor = ActiveEditor();
    if (!editor)
        return;
    CTextSearch search(editor);
    search.SetSearchFlags(matchCase, matchWord, regExp);
    if (search.FindText(text, searchUp, wrapAround) == -1)
        Information(tr("The search text was not found"));
    RefreshFindBox();
}

void CSearchCommands::MarkAllInActiveView(const QString& text, bool matchCase, bool matchWord,
                                          bool regExp)
{
    m_lastSearchText = text;
    CMFCScintilla* editor = ActiveEditor();
    if (!editor)
        return;
    CTextSearch search(editor);
    search.SetSearchFlags(matchCase, matchWord, regExp);
    if (!search.MarkAll(text))
        Information(tr("The search text was not found"));
}

long CSearchCommands::ReplaceInActiveView(const QString& find, const QString& replace,
                                          bool matchCase, bool matchWord, bool regExp,
                                          bool selectionScope, bool replaceAll, long lastFound)
{
    m_lastSearchText = find;
    CMFCScintilla* editor = ActiveEditor();
    if (editor != m_replaceView) {
        // Whatever is selected in another view was not found by us: only find there.
        lastFound = -1;
        m_replaceView = editor;
    }
    if (!editor)
        return -1;
    CTextSearch search(editor);
    search.SetSearchFlags(matchCase, matchWord, regExp);
    long result = -1;
    if (replaceAll) {
        const long count = search.ReplaceAll(find, replace, selectionScope, regExp);
        if (count == CTextSearch::ScopeEmpty)
            Information(tr("Could not replace in selection as nothing was selected."));
        else if (count >= 0)
            Information(tr("%1 occurrence(s) replaced").arg(count));
        else
            Information(tr("Search text not found."));
    } else {
        result = search.ReplaceNext(find, replace, regExp, lastFound);
        if (result == -1)
            Information(tr("The search text was not found"));
    }
    RefreshFindBox();
    return result;
}

QWidget* CSearchCommands::MessageParent() const
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return m_window;
}

void CSearchCommands::Information(const QString& text) const
{
    QMessageBox::information(MessageParent(), tr("Morvane"), text);
}
