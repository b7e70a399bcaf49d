#include "CHexFrame.h"

#include "CHexDocument.h"
#include "CHexEditView.h"
#include "CHexGotoDialog.h"
#include "CHexValuesPanel.h"
#include "HexText.h"
#include "framework/CommandIds.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressDialog>
#include <QRadioButton>
#include <QSplitter>

namespace {
// Shorter searches finish before a progress window would be worth showing.
constexpr qint64 kShowProgressAbove = qint64(64) << 20;
}

CHexFrame::CHexFrame(CHexDocument* document, QWidget* parent)
    : CChildFrame(document, parent)
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    m_view = new CHexEditView(document, splitter);
    m_valuesPanel = new CHexValuesPanel(splitter);
    splitter->addWidget(m_view);
    splitter->addWidget(m_valuesPanel);
    // The view's rows have a fixed width; room beyond it goes to the values panel.
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setCollapsible(0, false);
    splitter->setSizes({m_view->sizeHint().width(), 420});
    setWidget(splitter);
    setFocusProxy(m_view);
    connect(m_view, &CHexEditView::caretChanged, this, &CHexFrame::UpdateStatus);
    UpdateStatus();
}

CHexFrame::~CHexFrame() = default;

CHexDocument* CHexFrame::GetHexDocument() const
{
    return qobject_cast<CHexDocument*>(GetDocument());
}

void CHexFrame::OnInitialUpdate()
{
    m_view->setFocus();
    UpdateStatus();
}

QString CHexFrame::StatusText() const
{
    const qint64 caret = m_view->CaretOffset();
    QString text = tr("Offset: 0x%1 (%2)")
                       .arg(QString::number(caret, 16).toUpper())
                       .arg(caret);
    text += QStringLiteral("   ") + tr("Selected: %1").arg(m_view->SelectionLength());
    text += QStringLiteral("   ") + (m_view->IsInsertMode() ? tr("INS") : tr("OVR"));
    return text;
}

void CHexFrame::UpdateStatus()
{
    if (const CHexDocument* document = GetHexDocument())
        m_valuesPanel->ShowAt(document->Bytes(), m_view->CaretOffset());
    Q_EMIT statusTextChanged(StatusText());
}

bool CHexFrame::OnCmdMsg(int id)
{
    switch (id) {
    case Cmd::EditUndo:
        m_view->Undo();
        return true;
    case Cmd::EditRedo:
        m_view->Redo();
        return true;
    case Cmd::EditCut:
    case Cmd::EditCopy:
        if (m_view->SelectionLength() > CHexEditView::kMaxClipboard) {
            ShowMessage(QMessageBox::Warning,
                        tr("The selection is too large for the clipboard (at most %1 MB).")
                            .arg(CHexEditView::kMaxClipboard >> 20));
        } else if (id == Cmd::EditCut) {
            m_view->Cut();
        } else {
            m_view->Copy();
        }
        return true;
    case Cmd::EditPaste:
        m_view->Paste();
        return true;
    case Cmd::EditSelectAll:
        m_view->SelectAll();
        return true;
    case Cmd::EditFind: {
        CHexFindRequest request;
        if (RunFindDialog(&request))
            Find(request, !request.up);
        return true;
    }
    case Cmd::EditFindNext:
        FindNext(true);
        return true;
    case Cmd::EditFindPrevious:
        FindNext(false);
        return true;
    case Cmd::EditGoto: {
        qint64 offset = 0;
        if (RunGotoDialog(&offset))
            m_view->SetCaret(offset);
        return true;
    }
    case Cmd::BookmarkToggle:
        return true; // no bookmarks in binary documents
    default:
        return false;
    }
}

void CHexFrame::OnUpdateCmdUI(int id, CCmdUI& ui) const
{
    const CHexDocument* document = GetHexDocument();
    const bool writable = document && !document->IsReadOnly();
    switch (id) {
    case Cmd::EditUndo:
        ui.enabled = document && document->CanUndo();
        break;
    case Cmd::EditRedo:
        ui.enabled = document && document->CanRedo();
        break;
    case Cmd::EditCut:
        ui.enabled = writable && m_view->HasSelection();
        break;
    case Cmd::EditCopy:
        ui.enabled = m_view->HasSelection();
        break;
    case Cmd::EditPaste:
        ui.enabled = m_view->CanPaste();
        break;
    case Cmd::EditSelectAll:
        ui.enabled = document && document->Size() > 0;
        break;
    case Cmd::EditFind:
    case Cmd::EditFindNext:
    case Cmd::EditFindPrevious:
    case Cmd::EditGoto:
        ui.enabled = document != nullptr;
        break;
    case Cmd::BookmarkToggle:
        ui.enabled = false;
        break;
    default:
        return;
    }
    ui.handled = true;
}

void CHexFrame::FindNext(bool forward)
{
    if (!m_lastFind.IsValid()) {
        CHexFindRequest request;
        if (RunFindDialog(&request))
            Find(request, !request.up);
        return;
    }
    Find(m_lastFind, forward);
}

bool CHexFrame::Find(const CHexFindRequest& request, bool forward)
{
    const CHexDocument* document = GetHexDocument();
    if (!document || !request.IsValid())
        return false;
    m_lastFind = request;
    // Forward from just past the start of the current match, so that repeated finds
    // step through overlapping matches; backward from just before it.
    const qint64 here = m_view->HasSelection() ? m_view->SelectionStart() : m_view->CaretOffset();
    const qint64 from = forward ? (m_view->HasSelection() ? here + 1 : here) : here - 1;
    // Searching gigabytes takes seconds: show how far it got and let the user stop it.
    const qint64 span = forward ? document->Size() - std::max<qint64>(from, 0) : from + 1;
    QProgressDialog progressDialog(tr("Searching..."), tr("Cancel"), 0, 1000, this);
    progressDialog.setWindowModality(Qt::WindowModal);
    progressDialog.setMinimumDuration(500);
    progressDialog.setAutoReset(false);
    CPieceTable::FindProgress progress;
    if (span > kShowProgressAbove) {
        progress = [&](qint64 searched) {
            progressDialog.setValue(int(std::min<qint64>(1000, searched * 1000 / span)));
            return !progressDialog.wasCanceled();
        };
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const auto result = document->Bytes().Find(request.pattern, from, forward, request.matchCase,
                                               progress);
    QApplication::restoreOverrideCursor();
    if (result.cancelled)
        return false;
    if (result.failed) {
        ShowMessage(QMessageBox::Warning,
                    tr("The file can no longer be read: another program has shortened it."));
        return false;
    }
    if (result.offset < 0) {
        ShowMessage(QMessageBox::Information, tr("The search text was not found"));
        return false;
    }
    m_view->Select(result.offset, request.pattern.size());
    return true;
}

void CHexFrame::ShowMessage(QMessageBox::Icon icon, const QString& text)
{
    QMessageBox box(icon, QApplication::applicationDisplayName(), text, QMessageBox::Ok, this);
    box.exec();
}

bool CHexFrame::RunFindDialog(CHexFindRequest* request)
{
    // Start from the selection when there is a short one, in the column it was made.
    QString initial = m_lastFindText;
    const CHexDocument* document = GetHexDocument();
    if (document && m_view->HasSelection() && m_view->SelectionLength() <= 64) {
        const QByteArray bytes = document->Bytes().Read(m_view->SelectionStart(),
                                                        m_view->SelectionLength());
        initial = m_view->ActiveColumn() == CHexEditView::HexColumn ? HexText::ToHex(bytes)
                                                                    : QString::fromLatin1(bytes);
    }
    CHexFindDialog dialog(this, initial);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    m_lastFindText = dialog.FindEdit()->text();
    *request = dialog.Request();
    return request->IsValid();
}

bool CHexFrame::RunGotoDialog(qint64* offset)
{
    const CHexDocument* document = GetHexDocument();
    CHexGotoDialog dialog(m_view->CaretOffset(), document ? document->Size() : 0, this);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    *offset = dialog.Offset();
    return true;
}
