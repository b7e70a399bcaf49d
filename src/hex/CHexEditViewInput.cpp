// Keyboard and mouse handling of the hex view.
#include "CHexEditView.h"

#include "CHexDocument.h"
#include "HexText.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

bool CHexEditView::focusNextPrevChild(bool next)
{
    Q_UNUSED(next);
    return false; // Tab switches columns instead
}

void CHexEditView::keyPressEvent(QKeyEvent* event)
{
    if (!m_document) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    const qint64 page = qint64(VisibleRows()) * kBytesPerRow;
    const qint64 rowStart = m_caret - m_caret % kBytesPerRow;

    if (event->matches(QKeySequence::Undo)) {
        Undo();
        return;
    }
    if (event->matches(QKeySequence::Redo)) {
        Redo();
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        Copy();
        return;
    }
    if (event->matches(QKeySequence::Cut)) {
        Cut();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        Paste();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        SelectAll();
        return;
    }

    switch (event->key()) {
    case Qt::Key_Left:
        SetCaret(m_caret - 1, shift);
        return;
    case Qt::Key_Right:
        SetCaret(m_caret + 1, shift);
        return;
    case Qt::Key_Up:
        SetCaret(m_caret >= kBytesPerRow ? m_caret - kBytesPerRow : m_caret, shift);
        return;
    case Qt::Key_Down:
        SetCaret(m_caret + kBytesPerRow <= m_document->Size() ? m_caret + kBytesPerRow : m_caret,
                 shift);
        return;
    case Qt::Key_PageUp:
        SetTopRow(m_topRow - VisibleRows());
        SetCaret(m_caret >= page ? m_caret - page : m_caret % kBytesPerRow, shift);
        return;
    case Qt::Key_PageDown: {
        SetTopRow(m_topRow + VisibleRows());
        qint64 target = m_caret + page;
        while (target > m_document->Size())
            target -= kBytesPerRow; // the same column on the last row
        SetCaret(std::max(target, m_caret), shift);
        return;
    }
    case Qt::Key_Home:
        SetCaret(ctrl ? 0 : rowStart, shift);
        return;
    case Qt::Key_End:
        SetCaret(ctrl ? m_document->Size() : rowStart + kBytesPerRow - 1, shift);
        return;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        SetActiveColumn(m_column == HexColumn ? TextColumn : HexColumn);
        return;
    case Qt::Key_Insert:
        if (event->modifiers() == Qt::NoModifier) {
            SetInsertMode(!m_insert);
            return;
        }
        break;
    case Qt::Key_Delete:
        if (HasSelection()) {
            DeleteSelection();
        } else if (!Refuse() && m_caret < m_document->Size()) {
            const qint64 at = m_caret;
            if (m_document->Remove(at, 1))
                SetCaret(at);
        }
        return;
    case Qt::Key_Backspace:
        if (HasSelection()) {
            DeleteSelection();
        } else if (!Refuse() && m_caret > 0) {
            const qint64 at = m_caret - 1;
            if (m_document->Remove(at, 1))
                SetCaret(at);
        }
        return;
    default:
        break;
    }

    const QString text = event->text();
    if (!ctrl && !(event->modifiers() & Qt::AltModifier) && !text.isEmpty() && text[0].isPrint()) {
        if (m_column == HexColumn) {
            const int value = HexText::DigitValue(text[0]);
            if (value >= 0)
                TypeHexDigit(value);
            else
                QApplication::beep();
        } else {
            // Characters are typed as their Latin-1 byte where they have one.
            const QByteArray bytes = text.size() == 1 && text[0].unicode() < 0x100
                ? QByteArray(1, char(text[0].unicode()))
                : text.toUtf8();
            TypeBytes(bytes);
        }
        return;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

CHexEditView::Hit CHexEditView::HitTest(const QPoint& pos) const
{
    const int x = pos.x() + horizontalScrollBar()->value();
    const qint64 row = m_topRow + std::max(0, pos.y()) / m_lineHeight;
    Hit hit{0, 0, HexColumn};
    int index = 0;
    if (x >= TextX(0) - m_charWidth) {
        hit.column = TextColumn;
        index = std::clamp((x - TextX(0)) / m_charWidth, 0, kBytesPerRow - 1);
    } else {
        // Each cell spans its two digits and the space behind them.
        for (index = kBytesPerRow - 1; index > 0 && x < HexX(index); --index) {
        }
        hit.nibble = x >= HexX(index) + m_charWidth ? 1 : 0;
    }
    const qint64 size = m_document ? m_document->Size() : 0;
    hit.offset = std::min(row * kBytesPerRow + index, size);
    if (hit.offset == size)
        hit.nibble = 0;
    if (hit.column == TextColumn)
        hit.nibble = 0;
    return hit;
}

void CHexEditView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_document) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const Hit hit = HitTest(event->position().toPoint());
    m_column = hit.column;
    MoveCaret(hit.offset, event->modifiers() & Qt::ShiftModifier);
    m_nibble = HasSelection() ? 0 : hit.nibble;
    m_dragging = true;
    EnsureCaretVisible();
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging || !(event->buttons() & Qt::LeftButton)) {
        QAbstractScrollArea::mouseMoveEvent(event);
        return;
    }
    const QPoint pos = event->position().toPoint();
    // Dragging past the top or bottom edge scrolls a row at a time.
    if (pos.y() < 0)
        SetTopRow(m_topRow - 1);
    else if (pos.y() >= viewport()->height())
        SetTopRow(m_topRow + 1);
    Hit hit = HitTest(QPoint(pos.x(), std::clamp(pos.y(), 0, viewport()->height() - 1)));
    // A drag selects whole bytes: the byte under the pointer is included.
    if (hit.offset >= m_anchor && m_document && hit.offset < m_document->Size())
        ++hit.offset;
    SetCaret(hit.offset, true);
}

void CHexEditView::wheelEvent(QWheelEvent* event)
{
    // Whole rows, whatever the scale of the scroll bar.
    if (event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    m_wheelRemainder += event->angleDelta().y();
    const int steps = m_wheelRemainder / 40; // three rows a notch of 120
    m_wheelRemainder -= steps * 40;
    if (steps != 0)
        SetTopRow(m_topRow - steps);
    event->accept();
}

void CHexEditView::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragging = false;
    QAbstractScrollArea::mouseReleaseEvent(event);
}

