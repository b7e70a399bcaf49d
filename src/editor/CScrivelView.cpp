#include "CScrivelView.h"

#include <QCursor>
#include <climits>

#include "CMFCScintilla.h"
#include "CScrivelDoc.h"
#include "CScrivelFrame.h"
#include "framework/CChildFrame.h"
#include "CEditorCommands.h"
#include "CTextSearch.h"
#include "LargeFileMode.h"
#include "LongLineStyler.h"
#include "framework/CommandIds.h"
#include "framework/ThemeColours.h"
#include "shell/IShell.h"
#include "syntax/SyntaxApplier.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QVBoxLayout>

namespace {

using Sci = QsciScintillaBase;

// Pieces need style bytes, and the control's notices give positions as int.
bool LongLineStylesFit(CMFCScintilla& editor)
{
    const long options = editor.SendScintilla(Sci::SCI_GETDOCUMENTOPTIONS);
    return !(options & LargeFileMode::StylesNone) && editor.GetLength() < INT_MAX;
}

} // namespace

CScrivelView::CScrivelView(CScrivelDoc* document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_editor(new CMFCScintilla(this))
    , m_longLines(new LongLineStyler(m_editor))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_editor);
    setFocusProxy(m_editor);
    m_editor->installEventFilter(this);

    m_editor->Setup();
    if (m_document)
        m_document->AttachView(m_editor);

    ApplyViewSettings(ViewSettings());

    connect(m_editor, &Sci::SCN_SAVEPOINTREACHED, this, [this] {
        if (m_document)
            m_document->SetModifiedFlag(false);
    });
    connect(m_editor, &Sci::SCN_SAVEPOINTLEFT, this, [this] {
        if (m_document)
            m_document->SetModifiedFlag(true);
    });
    connect(m_editor, &Sci::SCN_CHARADDED, this, &CScrivelView::OnCharAdded);
    connect(m_editor, &Sci::SCN_UPDATEUI, this, [this](int) { OnUpdateUi(); });
    connect(m_editor, &Sci::SCN_MODIFIED, this, &CScrivelView::OnModified);
    connect(m_editor, &Sci::SCN_MARGINCLICK, this, &CScrivelView::OnMarginClick);
    connect(m_editor, &CMFCScintilla::caretJumped, this, &CScrivelView::RecordNavigation);
    connect(m_editor, &CMFCScintilla::contextMenuRequested, this, &CScrivelView::ShowContextMenu);
    if (m_document)
        connect(m_document, &CScrivelDoc::formatChanged, this, &CScrivelView::UpdateLongLineStyling);
}

CScrivelView::~CScrivelView()
{
    if (m_host) {
        // Positions of a view that is gone are never offered again.
        m_host->Navigation().RemoveView(this);
        if (m_host->ActiveView() == this)
            m_host->SetActiveView(nullptr);
    }
    if (m_document)
        m_document->DetachView(m_editor);
}

void CScrivelView::SetHost(CEditorCommands* host)
{
    m_host = host;
    if (host)
        ApplyViewSettings(host->View());
}

CEditorCommands* CScrivelView::Host() const
{
    return m_host;
}

const ViewSettings& CScrivelView::Settings() const
{
    // With a host its settings are the live ones: the toggles change them for every
    // view at once.
    if (m_host)
        return m_host->View();
    return m_settings;
}

void CScrivelView::RequestCommandUpdate()
{
    if (m_host)
        m_host->Shell().RequestCommandUpdate();
}

CScrivelFrame* CScrivelView::GetFrame() const
{
    for (QWidget* widget = parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* frame = qobject_cast<CScrivelFrame*>(widget))
            return frame;
    }
    return nullptr;
}

bool CScrivelView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_editor && event->type() == QEvent::FocusIn && m_host)
        m_host->SetActiveView(this);
    return QWidget::eventFilter(watched, event);
}

void CScrivelView::ApplyViewSettings(const ViewSettings& settings)
{
    const bool foldingWasOn = m_settings.CodeFolding != 0;
    m_settings = settings;
    m_editor->SetWordWrap(settings.WordWrap != 0);
    m_editor->SetViewEOL(settings.LineEndings != 0);
    m_editor->SetViewWS(settings.Whitespace == 1 ? Sci::SCWS_VISIBLEALWAYS : Sci::SCWS_INVISIBLE);
    m_editor->SetCaretLine(settings.CaretLine != 0, settings.CaretLineColour,
                           settings.CaretLineTransparency);
    m_editor->SetLineNumberMargin(settings.LineNumbers != 0);
    if (settings.CodeFolding || foldingWasOn)
        SetFolding(settings.CodeFolding != 0);
    else
        m_editor->SetFolding(false);
    m_editor->SetBlockSelect(settings.BlockSelect != 0);
    if (!settings.MatchBracket) {
        m_editor->ClearBraceHighlight();
        m_braceLit = false;
    }
    m_editor->SetUseTabs(settings.TabAsSpaces == 0);
    m_editor->SetIndentationGuides(settings.TabGuides ? Sci::SC_IV_LOOKBOTH : Sci::SC_IV_NONE);
    m_editor->SetTabWidth(settings.TabWidth);
    SetFont(settings.FontStyle, settings.FontSize, settings.FontBold != 0, settings.FontItalic != 0);
}

void CScrivelView::ApplyEditorSettings(bool useTabs, bool tabGuides, int tabWidth, quint32 caretColour,
                                       int caretAlpha)
{
    m_settings.TabAsSpaces = useTabs ? 0 : 1;
    m_settings.TabGuides = tabGuides ? 1 : 0;
    m_settings.TabWidth = tabWidth;
    m_settings.CaretLineColour = caretColour;
    m_settings.CaretLineTransparency = caretAlpha;
    m_editor->SetIndentationGuides(tabGuides ? Sci::SC_IV_LOOKBOTH : Sci::SC_IV_NONE);
    m_editor->SetUseTabs(useTabs);
    m_editor->SetTabWidth(tabWidth);
    // The caret line keeps its on/off setting; only its look changes here.
    m_editor->SetCaretLine(m_settings.CaretLine != 0, caretColour, caretAlpha);
}

void CScrivelView::SetFont(const QString& face, int size, bool bold, bool italic)
{
    m_settings.FontStyle = face;
    m_settings.FontSize = size;
    m_settings.FontBold = bold ? 1 : 0;
    m_settings.FontItalic = italic ? 1 : 0;
    m_editor->SetFont(face, size, bold, italic);
    if (Settings().LineNumbers)
        m_editor->SetLineNumberMargin(true);
}

void CScrivelView::SetFolding(bool on)
{
    if (!on) {
        // Unfold what the margin folded, so that no line stays hidden without a margin
        // to bring it back.
        for (long line : std::as_const(m_foldedLines)) {
            if (!m_editor->GetFoldExpanded(line))
                m_editor->ToggleFold(line);
        }
        m_foldedLines.clear();
        // Lines inserted above a fold moved it away from the number kept for it.
        for (long line = m_editor->SendScintilla(Sci::SCI_CONTRACTEDFOLDNEXT, 0UL); line >= 0;
             line = m_editor->SendScintilla(Sci::SCI_CONTRACTEDFOLDNEXT, static_cast<unsigned long>(line + 1)))
            m_editor->ToggleFold(line);
    }
    m_settings.CodeFolding = on ? 1 : 0;
    m_editor->SetFolding(on);
}

void CScrivelView::ApplyParser(const CSyntaxParser& parser)
{
    SyntaxApplier::Apply(*m_editor, parser, Settings());
    if (m_document && m_document->ColouringOff()) {
        // The parser's fonts and colours stay for the day colouring comes back; its
        // lexer, and the folding that comes from it, go.
        m_editor->SendScintilla(Sci::SCI_SETLEXER, static_cast<unsigned long>(Sci::SCLEX_NULL));
        m_editor->SetFolding(false);
    } else {
        // A new lexer starts without the fold properties.
        m_editor->SetFolding(Settings().CodeFolding != 0);
    }
    UpdateLongLineStyling();
    // Clearing the styles took the line numbers' colour and font too.
    m_editor->SendScintilla(Sci::SCI_STYLESETFORE, CMFCScintilla::LineNumberStyle,
                            static_cast<long>(ThemeColours::Current().LineNumber()));
    SetFont(Settings().FontStyle, Settings().FontSize, Settings().FontBold != 0, Settings().FontItalic != 0);
}

void CScrivelView::UpdateLongLineStyling()
{
    m_longLines->SetActive(m_document && m_document->ColouringOffReason() == CScrivelDoc::PlainReason::LongLine
                           && LongLineStylesFit(*m_editor));
}

QString CScrivelView::PositionText() const
{
    const long line = m_editor->GetCurrentLine() + 1;
    const long column = m_editor->GetColumn();
    QString text = QString::asprintf("Ln %2ld Col %2ld", line, column);
    if (m_document) {
        switch (m_document->ColouringOffReason()) {
        case CScrivelDoc::PlainReason::LargeFile:
            text += QStringLiteral("   ") + tr("Large file: no colouring or folding");
            break;
        case CScrivelDoc::PlainReason::LongLine:
            text += QStringLiteral("   ") + tr("Long lines: no colouring or folding");
            break;
        case CScrivelDoc::PlainReason::None:
            break;
        }
    }
    return text;
}

QString CScrivelView::GetSearchSeed()
{
    return m_editor->GetSearchSeed();
}

void CScrivelView::SetSearchFlags(bool matchCase, bool wholeWord, bool regexp)
{
    CTextSearch(m_editor).SetSearchFlags(matchCase, wholeWord, regexp);
}

void CScrivelView::GotoPosition(long position)
{
    const long from = m_editor->GetCurrentPos();
    m_editor->GotoPos(position);
    m_editor->ScrollCaret();
    RecordNavigation(from, m_editor->GetCurrentPos());
}

void CScrivelView::RecordNavigation(long from, long to)
{
    m_lastCaret = to;
    if (!m_host || from == to)
        return;
    NavigationHistory& history = m_host->Navigation();
    // A step back or forward through the history lands on the entry under its cursor;
    // recording it again would move the cursor to the newest entry.
    const int cursor = history.Cursor();
    if (cursor >= 0 && cursor < history.Count() && history.Entries().at(cursor) == NavigationHistory::Entry{this, to})
        return;
    history.Add(this, from);
    history.Add(this, to);
}

QByteArray CScrivelView::CommentToken() const
{
    const CScrivelFrame* frame = GetFrame();
    return frame ? m_editor->ToControlText(frame->CommentToken()) : QByteArray();
}

bool CScrivelView::IndentsAfterBrace() const
{
    const CScrivelFrame* frame = GetFrame();
    return frame && frame->IndentsAfterBrace();
}

// Notifications ------------------------------------------------------------------------

void CScrivelView::OnCharAdded(int ch)
{
    m_editor->AutoIndent(ch, IndentsAfterBrace());
}

void CScrivelView::OnUpdateUi()
{
    // A move of more than a screenful, by whatever means, is a place worth going back to.
    const long caret = m_editor->GetCurrentPos();
    const long linesOnScreen = std::max(1L, long(m_editor->SendScintilla(Sci::SCI_LINESONSCREEN)));
    const long lastLine = m_editor->LineFromPosition(std::min(m_lastCaret, m_editor->GetLength()));
    if (std::abs(m_editor->LineFromPosition(caret) - lastLine) > linesOnScreen)
        RecordNavigation(std::min(m_lastCaret, m_editor->GetLength()), caret);
    m_lastCaret = caret;

    Q_EMIT positionChanged(PositionText());

    const bool selection = m_editor->HasSelection();
    if (selection || m_hasSelection) {
        m_hasSelection = selection;
        RequestCommandUpdate();
    }
    if (Settings().MatchBracket) {
        m_editor->HighlightBrace();
        m_braceLit = true;
    } else if (m_braceLit) {
        // Matching was switched off since the last light.
        m_editor->ClearBraceHighlight();
        m_braceLit = false;
    }
}

void CScrivelView::OnModified(int position, int type, const char* text, int length, int linesAdded,
                              int line, int foldNow, int foldPrev)
{
    Q_UNUSED(position);
    Q_UNUSED(text);
    Q_UNUSED(length);
    if ((type & Sci::SC_MOD_CHANGEFOLD) && Settings().CodeFolding)
        OnFoldChanged(line, foldNow, foldPrev);
    if (linesAdded != 0 && Settings().LineNumbers)
        m_editor->SetLineNumberMargin(true);
    // Undo, Redo and the like change with every edit; the menus catch up once the
    // event loop is idle.
    if (type & (Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT))
        RequestCommandUpdate();
}

void CScrivelView::OnMarginClick(int position, int modifiers, int margin)
{
    Q_UNUSED(modifiers);
    // The notification carries 32 bits: past 2 GB the line is found from the mouse.
    long line = m_editor->LineFromPosition(position);
    if (m_editor->GetLength() > long(INT_MAX)) {
        const QPoint at = m_editor->viewport()->mapFromGlobal(QCursor::pos());
        line = m_editor->LineFromPosition(m_editor->SendScintilla(
            Sci::SCI_POSITIONFROMPOINT, static_cast<unsigned long>(at.x()), static_cast<long>(at.y())));
    }
    switch (margin) {
    case 0:
        m_editor->ToggleBookmark(line);
        break;
    case 1:
        m_editor->SelectLine(line);
        break;
    case CMFCScintilla::FoldMargin:
        if (Settings().CodeFolding && (m_editor->GetFoldLevel(line) & Sci::SC_FOLDLEVELHEADERFLAG)) {
            if (m_editor->ToggleFold(line))
                m_foldedLines.removeAll(line);
            else if (!m_foldedLines.contains(line))
                m_foldedLines.append(line);
        }
        break;
    default:
        break;
    }
}

void CScrivelView::OnFoldChanged(long line, int levelNow, int levelPrev)
{
    const int header = Sci::SC_FOLDLEVELHEADERFLAG;
    if ((levelNow & header) && !(levelPrev & header)) {
        // A new header starts expanded, with its block visible.
        m_editor->SetFoldExpanded(line, true);
        long walk = line;
        ExpandRange(walk, true, false, 0, levelPrev);
    } else if ((levelPrev & header) && !(levelNow & header)) {
        // A header that went away must not leave its former block hidden.
        if (!m_editor->GetFoldExpanded(line)) {
            long walk = line;
            ExpandRange(walk, true, false, 0, levelPrev);
        }
        m_foldedLines.removeAll(line);
        // It may itself have been inside a folded block that is gone too.
        ShowIfParentOpen(line);
    } else if (!(levelNow & Sci::SC_FOLDLEVELWHITEFLAG)
               && (levelNow & Sci::SC_FOLDLEVELNUMBERMASK) < (levelPrev & Sci::SC_FOLDLEVELNUMBERMASK)) {
        // A line that left a folded block shows when its new parent is open.
        ShowIfParentOpen(line);
    }
}

void CScrivelView::ShowIfParentOpen(long line)
{
    if (m_editor->GetLineVisible(line))
        return;
    const long parent = m_editor->GetFoldParent(line);
    if (parent < 0 || (m_editor->GetFoldExpanded(parent) && m_editor->GetLineVisible(parent)))
        m_editor->ShowLines(line, line);
}

void CScrivelView::ExpandRange(long& line, bool doExpand, bool force, int visibleLevels, int level)
{
    if (level == -1)
        level = m_editor->GetFoldLevel(line);
    const long last = m_editor->GetLastChild(line, level & Sci::SC_FOLDLEVELNUMBERMASK);
    ++line;
    while (line <= last) {
        if (force) {
            if (visibleLevels > 0)
                m_editor->ShowLines(line, line);
            else
                m_editor->HideLines(line, line);
        } else if (doExpand) {
            m_editor->ShowLines(line, line);
        }
        const int lineLevel = m_editor->GetFoldLevel(line);
        if (lineLevel & Sci::SC_FOLDLEVELHEADERFLAG) {
            if (force) {
                m_editor->SetFoldExpanded(line, visibleLevels > 1);
                ExpandRange(line, doExpand, force, visibleLevels - 1);
            } else if (doExpand) {
                if (!m_editor->GetFoldExpanded(line))
                    m_editor->SetFoldExpanded(line, true);
                ExpandRange(line, true, force, visibleLevels - 1);
            } else {
                ExpandRange(line, false, force, visibleLevels - 1);
            }
        } else {
            ++line;
        }
    }
}

// Commands -----------------------------------------------------------------------------

void CScrivelView::ConvertWholeDocument(const QString& find, const QString& replace, int flags)
{
    const long line = m_editor->GetCurrentLine();
    CTextSearch search(m_editor);
    if (flags >= 0)
        search.SetSearchFlags(flags);
    search.ReplaceAll(find, replace, false, false);
    m_editor->GotoLine(std::min(line, m_editor->GetLineCount() - 1));
}

bool CScrivelView::OnCmdMsg(int id)
{
    CMFCScintilla& e = *m_editor;
    switch (id) {
    case Cmd::EditUndo: e.Undo(); break;
    case Cmd::EditRedo: e.Redo(); break;
    case Cmd::EditCut: e.Cut(); break;
    case Cmd::EditCopy: e.Copy(); break;
    case Cmd::EditPaste: e.Paste(); break;
    case Cmd::EditCutAppend: e.CutAppend(); break;
    case Cmd::EditCopyAppend: e.CopyAppend(); break;
    case Cmd::EditSelectAll: e.SelectAll(); break;
    case Cmd::EditSelectWord: e.SelectWord(e.GetCurrentPos()); break;
    case Cmd::EditSelectLine: e.SelectLine(e.GetCurrentLine()); break;
    case Cmd::EditInsertDate: e.InsertDate(); break;
    case Cmd::EditInsertTime: e.InsertTime(); break;
    case Cmd::EditInsertFileName:
        if (m_document)
            e.InsertText(m_document->GetTitle());
        break;
    case Cmd::EditUpperCase:
        if (e.HasSelection())
            e.UpperCase();
        break;
    case Cmd::EditLowerCase:
        if (e.HasSelection())
            e.LowerCase();
        break;
    case Cmd::EditIndentRight: e.Indent(); break;
    case Cmd::EditIndentLeft: e.BackTab(); break;
    case Cmd::EditComment: e.CommentLines(true, CommentToken()); break;
    case Cmd::EditUncomment: e.CommentLines(false, CommentToken()); break;
    case Cmd::EditSwapLines: e.LineTranspose(); break;
    case Cmd::EditCutLine: e.LineCut(); break;
    case Cmd::EditCopyLine: e.LineCopy(); break;
    case Cmd::EditDeleteWord: e.DeleteWord(); break;
    case Cmd::EditDeleteToEol: e.DelLineRight(); break;
    case Cmd::EditDeleteLine: e.LineDelete(); break;
    case Cmd::BookmarkToggle: e.ToggleBookmark(-1); break;
    case Cmd::BookmarkNext: e.NextBookmark(true, false); break;
    case Cmd::BookmarkPrevious: e.NextBookmark(false, false); break;
    case Cmd::BookmarkClear: e.MarkerDeleteAll(); break;
    case Cmd::EditTabsToSpaces:
        // The search flags stay as the last search left them.
        ConvertWholeDocument(QStringLiteral("\t"), QString(Settings().TabWidth, QLatin1Char(' ')), -1);
        break;
    case Cmd::EditSpacesToTabs:
        ConvertWholeDocument(QString(Settings().TabWidth, QLatin1Char(' ')), QStringLiteral("\t"), -1);
        break;
    case Cmd::EditTrimTrailing:
        ConvertWholeDocument(QStringLiteral("[ \\t]+$"), QString(), Sci::SCFIND_REGEXP);
        break;
    default:
        return false;
    }
    return true;
}

void CScrivelView::OnUpdateCmdUI(int id, CCmdUI& ui) const
{
    const CMFCScintilla& e = *m_editor;
    switch (id) {
    case Cmd::EditUndo: ui.enabled = e.CanUndo(); break;
    case Cmd::EditRedo: ui.enabled = e.CanRedo(); break;
    case Cmd::EditPaste: ui.enabled = e.CanPaste(); break;
    case Cmd::EditCut:
    case Cmd::EditCopy:
    case Cmd::EditCutAppend:
    case Cmd::EditCopyAppend:
    case Cmd::CreateTemplateFromSelection:
        ui.enabled = e.GetSelectionSize() > 0;
        break;
    case Cmd::EditSelectAll:
    case Cmd::EditSelectWord:
    case Cmd::EditSelectLine:
    case Cmd::EditInsertDate:
    case Cmd::EditInsertTime:
    case Cmd::EditInsertFileName:
    case Cmd::EditUpperCase:
    case Cmd::EditLowerCase:
    case Cmd::EditIndentRight:
    case Cmd::EditIndentLeft:
    case Cmd::EditComment:
    case Cmd::EditUncomment:
    case Cmd::EditSwapLines:
    case Cmd::EditCutLine:
    case Cmd::EditCopyLine:
    case Cmd::EditDeleteWord:
    case Cmd::EditDeleteToEol:
    case Cmd::EditDeleteLine:
    case Cmd::EditTabsToSpaces:
    case Cmd::EditSpacesToTabs:
    case Cmd::EditTrimTrailing:
    case Cmd::BookmarkToggle:
    case Cmd::BookmarkNext:
    case Cmd::BookmarkPrevious:
    case Cmd::BookmarkClear:
        ui.enabled = true;
        break;
    default:
        return;
    }
    ui.handled = true;
}

// Context menu -------------------------------------------------------------------------

QMenu* CScrivelView::CreateContextMenu()
{
    if (m_host)
        return m_host->CreateContextMenu();

    // Standing alone: local actions carried out by this view.
    struct Entry
    {
        int id; // 0: a separator
        const char* text;
    };
    // "Delete" carries the template command's id, as it always has.
    static constexpr Entry entries[] = {
        {Cmd::EditUndo, QT_TR_NOOP("Undo")},
        {Cmd::EditRedo, QT_TR_NOOP("Redo")},
        {0, nullptr},
        {Cmd::EditCut, QT_TR_NOOP("Cut")},
        {Cmd::EditCopy, QT_TR_NOOP("Copy")},
        {Cmd::EditPaste, QT_TR_NOOP("Paste")},
        {Cmd::CreateTemplateFromSelection, QT_TR_NOOP("Delete")},
        {0, nullptr},
        {Cmd::EditCutAppend, QT_TR_NOOP("Cut Append")},
        {Cmd::EditCopyAppend, QT_TR_NOOP("Copy Append")},
        {0, nullptr},
        {Cmd::EditUpperCase, QT_TR_NOOP("Upper Case")},
        {Cmd::EditLowerCase, QT_TR_NOOP("Lower Case")},
        {0, nullptr},
    };
    static constexpr Entry insertEntries[] = {
        {Cmd::EditInsertDate, QT_TR_NOOP("Date")},
        {Cmd::EditInsertTime, QT_TR_NOOP("Time")},
        {Cmd::EditInsertFileName, QT_TR_NOOP("File Name")},
    };
    static constexpr Entry tailEntries[] = {
        {0, nullptr},
        {Cmd::EditSelectAll, QT_TR_NOOP("Select All")},
        {0, nullptr},
        {Cmd::CreateTemplateFromSelection, QT_TR_NOOP("Create template from Selection")},
    };

    auto* menu = new QMenu(this);
    auto add = [&](QMenu* target, const Entry& entry) {
        if (!entry.id) {
            target->addSeparator();
            return;
        }
        QAction* local = target->addAction(tr(entry.text));
        local->setData(entry.id);
        CCmdUI ui;
        OnUpdateCmdUI(entry.id, ui);
        local->setEnabled(ui.enabled);
        const int id = entry.id;
        connect(local, &QAction::triggered, this, [this, id] { RouteCommand(id); });
    };
    for (const Entry& entry : entries)
        add(menu, entry);
    QMenu* insert = menu->addMenu(tr("Insert"));
    for (const Entry& entry : insertEntries)
        add(insert, entry);
    for (const Entry& entry : tailEntries)
        add(menu, entry);
    return menu;
}

void CScrivelView::RouteCommand(int id)
{
    if (CScrivelFrame* frame = GetFrame())
        frame->OnCmdMsg(id);
    else
        OnCmdMsg(id);
}

void CScrivelView::ShowContextMenu(const QPoint& globalPos)
{
    QMenu* menu = CreateContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(globalPos);
}
