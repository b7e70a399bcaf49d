#include "CSearchCommands.h"

#include "CFindBar.h"
#include "CFindDialog.h"
#include "CHistoryComboBox.h"
#include "CReplaceDialog.h"
#include "editor/CTextSearch.h"

#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QToolBar>

CSearchCommands::CSearchCommands(QWidget* window, EditorProvider activeEditor)
    : QObject(window)
    , m_window(window)
    , m_activeEditor(std::move(activeEditor))
{
}

CSearchCommands::~CSearchCommands()
{
    // The dialogs call back into this object; they never outlive it.
    delete m_findDialog.data();
    delete m_replaceDialog.data();
}

CSearchCommands* CSearchCommands::Of(IShell& shell)
{
    QMainWindow* window = shell.Window();
    return window ? window->findChild<CSearchCommands*>(QString(), Qt::FindDirectChildrenOnly)
                  : nullptr;
}

CSearchCommands* CSearchCommands::Install(IShell& shell)
{
    if (CSearchCommands* existing = Of(shell))
        return existing;
    auto* commands = new CSearchCommands(shell.Window(), [&shell]() -> CMFCScintilla* {
        auto* child = qobject_cast<CScrivelFrame*>(shell.ActiveChild());
        return child && child->GetView() ? child->GetView()->GetEditor() : nullptr;
    });
    commands->m_shell = &shell;
    commands->SetModelessTracker([&shell](QWidget* dialog) { shell.AddModelessWindow(dialog); });
    commands->RegisterCommands();
    commands->CreateFindBox();
    connect(&shell.Events(), &CShellEvents::saveSettings, commands, [] {
        // What the dialog last offered from the selection is not kept between runs.
        CRegistryStore().DeleteValue(QStringLiteral("FindReplace"), QStringLiteral("LastSelectedValue"));
    });
    return commands;
}

void CSearchCommands::RegisterCommands()
{
    // A text or hex frame answers these first; the handlers here reach the text view.
    CCommandRegistry& registry = m_shell->Commands();
    auto textView = [this](CCmdUI& ui) { ui.enabled = ActiveEditor() != nullptr; };
    // Always enabled: with no text view they say that there is nothing to do.
    auto always = [](CCmdUI& ui) { ui.enabled = true; };
    const QString category = tr("Search");
    registry.Register({.id = Cmd::EditFind, .text = tr("Find..."), .category = category,
                       .shortcut = QKeySequence(QKeySequence::Find), .iconName = QStringLiteral("edit-find"),
                       .run = [this] { OnEditFind(); }, .update = textView});
    registry.Register({.id = Cmd::EditReplace, .text = tr("Replace..."), .category = category,
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+H")),
                       .iconName = QStringLiteral("edit-find-replace"),
                       .run = [this] { OnEditReplace(); }, .update = textView});
    registry.Register({.id = Cmd::EditFindNext, .text = tr("Find Next"), .category = category,
                       .shortcut = QKeySequence(QStringLiteral("F3")), .iconName = QStringLiteral("go-down"),
                       .run = [this] { OnFindNextFromBox(false); }, .update = always});
    registry.Register({.id = Cmd::EditFindPrevious, .text = tr("Find Previous"), .category = category,
                       .shortcut = QKeySequence(QStringLiteral("Shift+F3")), .iconName = QStringLiteral("go-up"),
                       .run = [this] { OnFindNextFromBox(true); }, .update = always});
    registry.Register({.id = Cmd::EditIncrementalFind, .text = tr("&Incremental Find"), .category = category,
                       .shortcut = QKeySequence(QStringLiteral("Ctrl+I")), .iconName = QStringLiteral("edit-find"),
                       .run = [this] { OnIncrementalFind(); }, .update = textView});
    CMenuPlaces& menus = m_shell->Menus();
    for (const int id : {int(Cmd::EditFind), int(Cmd::EditIncrementalFind), int(Cmd::EditReplace),
                         int(Cmd::EditFindNext), int(Cmd::EditFindPrevious)})
        menus.AddCommand(MenuId::Search, MenuGroup::SearchFind, id);
}

void CSearchCommands::CreateFindBox()
{
    QToolBar* bar = m_shell->Menus().ToolBar(ToolBarId::Standard);
    auto* box = new CHistoryComboBox(bar);
    box->setObjectName(QStringLiteral("FindBox"));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setHistorySection(QStringLiteral("FindBox"));
    box->setFixedWidth(110);
    box->setMaxVisibleItems(8); // a list about 150 pixels high
    box->setToolTip(tr("Find"));
    box->loadHistory();
    box->lineEdit()->setPlaceholderText(tr("Find"));
    connect(box->lineEdit(), &QLineEdit::returnPressed, this, [this, box] {
        box->addToHistory(box->currentText());
        m_shell->Commands().Execute(Cmd::EditFindNext);
    });
    m_findBox = box;
    CMenuPlaces& menus = m_shell->Menus();
    menus.AddToolBarWidget(ToolBarId::Standard, ToolBarGroup::Find, box);
    for (const int id : {int(Cmd::EditFindNext), int(Cmd::EditFindPrevious), int(Cmd::EditFind),
                         int(Cmd::EditReplace)})
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Find, id);
}

void CSearchCommands::TrackDialog(QWidget* dialog)
{
    // The window closes its modeless windows first, without their options being written.
    if (m_trackModeless)
        m_trackModeless(dialog);
}

QKeySequence CSearchCommands::CommandShortcut(int id) const
{
    if (m_shell) {
        if (const QKeySequence key = m_shell->Commands().Shortcut(id); !key.isEmpty())
            return key;
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
    TrackDialog(m_findDialog);
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
    TrackDialog(m_replaceDialog);
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
    if (m_shell)
        search.SetProgressSink(&m_shell->Progress());
    search.SetSearchFlags(0);
    // Forward wraps, backward stops at the top.
    if (search.FindText(text, previous, !previous) == -1 && !search.WasCancelled())
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
    if (m_shell)
        search.SetProgressSink(&m_shell->Progress());
    search.SetSearchFlags(matchCase, matchWord, regExp);
    if (search.FindText(text, searchUp, wrapAround) == -1 && !search.WasCancelled())
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
    if (m_shell)
        search.SetProgressSink(&m_shell->Progress());
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
    if (m_shell)
        search.SetProgressSink(&m_shell->Progress());
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
        if (result == -1 && !search.WasCancelled())
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

void CSearchCommands::OnIncrementalFind()
{
    CMFCScintilla* editor = ActiveEditor();
    CFindBar* bar = CFindBar::ForEditor(editor);
    if (!bar)
        return;
    // A short selection on one line is what the user wants to find.
    QString seed;
    const QByteArray selected = editor->GetSelText();
    if (!selected.isEmpty() && selected.size() < 100 && !selected.contains('\n'))
        seed = QString::fromUtf8(selected);
    bar->Open(seed);
}
