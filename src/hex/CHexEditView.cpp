#include "CHexEditView.h"

#include "CHexDocument.h"
#include "HexText.h"
#include "framework/ThemeColours.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <vector>

namespace {

// Larger row counts are scaled onto this scroll bar range.
constexpr int kScrollRange = 1 << 30;
const QString kRawMime = QStringLiteral("application/octet-stream");

QChar Printable(uchar byte)
{
    return (byte >= 0x20 && byte < 0x7F) ? QChar(char16_t(byte)) : QChar(u'.');
}


} // namespace

CHexEditView::CHexEditView(CHexDocument* document, QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_document(document)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    viewport()->setCursor(Qt::IBeamCursor);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    UpdateMetrics();
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &CHexEditView::OnScrollBarMoved);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, viewport(),
            qOverload<>(&QWidget::update));
    if (m_document)
        connect(m_document, &CHexDocument::contentChanged, this, &CHexEditView::OnContentChanged);
    UpdateScrollBars();
}

CHexEditView::~CHexEditView() = default;

void CHexEditView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        UpdateMetrics();
        UpdateScrollBars();
        viewport()->update();
    }
}

void CHexEditView::UpdateMetrics()
{
    const QFontMetrics metrics(font());
    m_charWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('0')));
    m_lineHeight = std::max(1, metrics.height());
    m_ascent = metrics.ascent();
}

int CHexEditView::HexX(int index) const
{
    const int start = m_charWidth / 2 + (m_offsetDigits + 2) * m_charWidth;
    return start + index * 3 * m_charWidth + (index >= kBytesPerRow / 2 ? m_charWidth : 0);
}

int CHexEditView::TextX(int index) const
{
    return HexX(kBytesPerRow) + 2 * m_charWidth + index * m_charWidth;
}

int CHexEditView::ContentWidth() const
{
    return TextX(kBytesPerRow) + m_charWidth;
}

QSize CHexEditView::sizeHint() const
{
    const int frame = 2 * frameWidth();
    return QSize(ContentWidth() + verticalScrollBar()->sizeHint().width() + frame,
                 m_lineHeight * 24 + frame);
}

qint64 CHexEditView::RowCount() const
{
    // One more cell than bytes: the caret may stand behind the last byte.
    const qint64 size = m_document ? m_document->Size() : 0;
    return size / kBytesPerRow + 1;
}

int CHexEditView::VisibleRows() const
{
    return std::max(1, viewport()->height() / m_lineHeight);
}

qint64 CHexEditView::MaxTopRow() const
{
    return std::max<qint64>(0, RowCount() - VisibleRows());
}

void CHexEditView::UpdateScrollBars()
{
    const qint64 size = m_document ? m_document->Size() : 0;
    int digits = 8;
    while (digits < 16 && (size >> (4 * digits)) != 0)
        ++digits;
    if (digits != m_offsetDigits)
        m_offsetDigits = digits;

    m_topRow = std::clamp<qint64>(m_topRow, 0, MaxTopRow());
    const qint64 maxTop = MaxTopRow();
    m_syncingScrollBar = true;
    QScrollBar* bar = verticalScrollBar();
    if (maxTop <= kScrollRange) {
        bar->setRange(0, int(maxTop));
        bar->setPageStep(VisibleRows());
        bar->setValue(int(m_topRow));
    } else {
        bar->setRange(0, kScrollRange);
        bar->setPageStep(std::max(1, int(double(VisibleRows()) * kScrollRange / maxTop)));
        bar->setValue(int(double(m_topRow) / double(maxTop) * kScrollRange));
    }
    bar->setSingleStep(1);
    m_syncingScrollBar = false;

    QScrollBar* hbar = horizontalScrollBar();
    hbar->setRange(0, std::max(0, ContentWidth() - viewport()->width()));
    hbar->setPageStep(viewport()->width());
    hbar->setSingleStep(m_charWidth);
}

void CHexEditView::OnScrollBarMoved(int value)
{
    if (m_syncingScrollBar)
        return;
    const qint64 maxTop = MaxTopRow();
    qint64 row = value;
    if (maxTop > kScrollRange) {
        // The last step of the bar must reach the last row exactly.
        row = value >= kScrollRange ? maxTop : qint64(double(value) / kScrollRange * double(maxTop));
    }
    m_topRow = std::clamp<qint64>(row, 0, maxTop);
    viewport()->update();
}

void CHexEditView::SetTopRow(qint64 row)
{
    row = std::clamp<qint64>(row, 0, MaxTopRow());
    if (row == m_topRow)
        return;
    m_topRow = row;
    UpdateScrollBars();
    viewport()->update();
}

void CHexEditView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollBars();
}

void CHexEditView::EnsureCaretVisible()
{
    const qint64 row = m_caret / kBytesPerRow;
    if (row < m_topRow)
        SetTopRow(row);
    else if (row >= m_topRow + VisibleRows())
        SetTopRow(row - VisibleRows() + 1);

    // Keep the caret's column in view horizontally as well.
    QScrollBar* hbar = horizontalScrollBar();
    const int index = int(m_caret % kBytesPerRow);
    const int x = m_column == HexColumn ? HexX(index) : TextX(index);
    const int width = m_column == HexColumn ? 2 * m_charWidth : m_charWidth;
    if (x < hbar->value())
        hbar->setValue(x);
    else if (x + width > hbar->value() + viewport()->width())
        hbar->setValue(x + width - viewport()->width());
}

void CHexEditView::OnContentChanged(qint64 offset)
{
    Q_UNUSED(offset);
    const qint64 size = m_document ? m_document->Size() : 0;
    m_caret = std::clamp<qint64>(m_caret, 0, size);
    m_anchor = std::clamp<qint64>(m_anchor, 0, size);
    UpdateScrollBars();
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::SetActiveColumn(Column column)
{
    if (m_column == column)
        return;
    m_column = column;
    m_nibble = 0;
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::SetInsertMode(bool insert)
{
    if (m_insert == insert)
        return;
    m_insert = insert;
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::MoveCaret(qint64 offset, bool extend)
{
    const qint64 size = m_document ? m_document->Size() : 0;
    m_caret = std::clamp<qint64>(offset, 0, size);
    if (!extend)
        m_anchor = m_caret;
    m_nibble = 0;
}

void CHexEditView::SetCaret(qint64 offset, bool extend)
{
    MoveCaret(offset, extend);
    EnsureCaretVisible();
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::Select(qint64 start, qint64 length)
{
    MoveCaret(start, false);
    MoveCaret(start + length, true);
    EnsureCaretVisible();
    viewport()->update();
    Q_EMIT caretChanged();
}

void CHexEditView::SelectAll()
{
    Select(0, m_document ? m_document->Size() : 0);
}

bool CHexEditView::Refuse() const
{
    if (m_document && !m_document->IsReadOnly())
        return false;
    QApplication::beep();
    return true;
}

QByteArray CHexEditView::SelectedBytes() const
{
    if (!m_document || !HasSelection() || SelectionLength() > kMaxClipboard)
        return QByteArray();
    return m_document->Bytes().Read(SelectionStart(), SelectionLength());
}

bool CHexEditView::Undo()
{
    qint64 where = 0;
    if (!m_document || !m_document->Undo(&where))
        return false;
    SetCaret(where);
    return true;
}

bool CHexEditView::Redo()
{
    qint64 where = 0;
    if (!m_document || !m_document->Redo(&where))
        return false;
    SetCaret(where);
    return true;
}

bool CHexEditView::Copy() const
{
    const QByteArray bytes = SelectedBytes();
    if (bytes.isEmpty())
        return false;
    auto* mime = new QMimeData;
    mime->setData(kRawMime, bytes);
    // The hex column copies digits; the character column copies the characters.
    mime->setText(m_column == HexColumn ? HexText::ToHex(bytes) : QString::fromLatin1(bytes));
    QApplication::clipboard()->setMimeData(mime);
    return true;
}

bool CHexEditView::Cut()
{
    if (Refuse() || !Copy())
        return false;
    return DeleteSelection();
}

bool CHexEditView::CanPaste() const
{
    if (!m_document || m_document->IsReadOnly())
        return false;
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    return mime && (mime->hasFormat(kRawMime) || !mime->text().isEmpty());
}

bool CHexEditView::Paste()
{
    if (Refuse())
        return false;
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime)
        return false;
    QByteArray bytes;
    if (mime->hasFormat(kRawMime)) {
        bytes = mime->data(kRawMime);
    } else {
        // Hex digits pasted into the hex column are bytes; any other text is its UTF-8.
        const QString text = mime->text();
        if (m_column != HexColumn || !HexText::ParseHex(text, &bytes))
            bytes = text.toUtf8();
    }
    if (bytes.isEmpty())
        return false;
    TypeBytes(bytes);
    return true;
}

bool CHexEditView::DeleteSelection()
{
    if (Refuse() || !HasSelection())
        return false;
    const qint64 start = SelectionStart();
    if (!m_document->Remove(start, SelectionLength()))
        return false;
    SetCaret(start);
    return true;
}

void CHexEditView::TypeBytes(const QByteArray& bytes)
{
    if (Refuse())
        return;
    qint64 at = m_caret;
    bool ok;
    if (m_insert) {
        at = SelectionStart();
        ok = m_document->Replace(at, SelectionLength(), bytes);
    } else {
        // Overwriting starts at the selection and never changes the size but at the end.
        at = HasSelection() ? SelectionStart() : m_caret;
        ok = m_document->Overwrite(at, bytes);
    }
    if (ok)
        SetCaret(at + bytes.size());
}

void CHexEditView::TypeHexDigit(int value)
{
    if (Refuse())
        return;
    if (HasSelection()) {
        // The first digit replaces the selection (insert) or starts at it (overwrite).
        const qint64 start = SelectionStart();
        if (m_insert && !m_document->Remove(start, SelectionLength()))
            return;
        MoveCaret(start, false);
    }
    const qint64 size = m_document->Size();
    uchar old = 0;
    if (m_caret < size)
        m_document->Bytes().Read(m_caret, 1, &old);
    bool ok;
    if (m_nibble == 0) {
        const uchar byte = m_insert || m_caret >= size ? uchar(value << 4)
                                                       : uchar((value << 4) | (old & 0x0F));
        const QByteArray one(1, char(byte));
        ok = m_insert ? m_document->Insert(m_caret, one) : m_document->Overwrite(m_caret, one);
        if (ok) {
            m_nibble = 1;
            EnsureCaretVisible();
        }
    } else {
        const uchar byte = uchar((old & 0xF0) | value);
        // The second digit of a byte is part of the same undo step as the first.
        ok = m_document->Overwrite(m_caret, QByteArray(1, char(byte)), true);
        if (ok) {
            MoveCaret(m_caret + 1, false);
            EnsureCaretVisible();
        }
    }
    viewport()->update();
    Q_EMIT caretChanged();
}

QRect CHexEditView::ByteRect(qint64 offset, Column column) const
{
    const qint64 row = offset / kBytesPerRow;
    if (offset < 0 || row < m_topRow || row > m_topRow + VisibleRows())
        return QRect();
    const int index = int(offset % kBytesPerRow);
    const int x = (column == HexColumn ? HexX(index) : TextX(index)) - horizontalScrollBar()->value();
    const int width = column == HexColumn ? 2 * m_charWidth : m_charWidth;
    return QRect(x, int(row - m_topRow) * m_lineHeight, width, m_lineHeight);
}

void CHexEditView::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event);
    QPainter painter(viewport());
    const QPalette& pal = palette();
    painter.fillRect(viewport()->rect(), pal.base());
    if (!m_document)
        return;
    painter.setFont(font());
    painter.translate(-horizontalScrollBar()->value(), 0);

    const qint64 size = m_document->Size();
    const int rows = viewport()->height() / m_lineHeight + 1;
    const qint64 first = m_topRow * kBytesPerRow;
    const qint64 last = std::min(size, first + qint64(rows) * kBytesPerRow);
    std::vector<uchar> bytes(size_t(std::max<qint64>(0, last - first)));
    // A file shortened behind our back shows as unreadable rather than as stale bytes.
    const bool readable = bytes.empty() || m_document->Bytes().Read(first, last - first, bytes.data());
    std::vector<uchar> changed(bytes.size());
    if (!changed.empty())
        m_document->Bytes().MarkChanged(first, last - first, changed.data());

    const qint64 selStart = SelectionStart();
    const qint64 selEnd = selStart + SelectionLength();
    const QColor offsetColor = pal.color(QPalette::Disabled, QPalette::Text);
    const QColor textColor = pal.color(QPalette::Text);
    const QColor highlight = pal.color(QPalette::Highlight);
    const QColor highlightText = pal.color(QPalette::HighlightedText);
    // Bytes typed since the last save stand out, as in most hex editors.
    const quint32 changedMark = ThemeColours::Current().Colour(ThemeColours::Mark::Changed);
    const QColor changedColor(int(changedMark & 0xFF), int((changedMark >> 8) & 0xFF), int((changedMark >> 16) & 0xFF));
    const bool focused = hasFocus();

    QString cell(2, QLatin1Char('0'));
    for (int r = 0; r < rows; ++r) {
        const qint64 rowOffset = first + qint64(r) * kBytesPerRow;
        if (rowOffset > size)
            break;
        const int y = r * m_lineHeight;
        const int baseline = y + m_ascent;
        painter.setPen(offsetColor);
        painter.drawText(m_charWidth / 2, baseline,
                         QStringLiteral("%1").arg(rowOffset, m_offsetDigits, 16, QLatin1Char('0')).toUpper());

        for (int i = 0; i < kBytesPerRow; ++i) {
            const qint64 offset = rowOffset + i;
            if (offset >= size)
                break;
            const bool selected = offset >= selStart && offset < selEnd;
            if (selected) {
                const int hexEnd = i + 1 < kBytesPerRow && i + 1 != kBytesPerRow / 2
                    ? HexX(i + 1) : HexX(i) + 2 * m_charWidth;
                const bool nextSelected = offset + 1 < selEnd && i + 1 < kBytesPerRow;
                painter.fillRect(HexX(i), y, (nextSelected ? hexEnd : HexX(i) + 2 * m_charWidth) - HexX(i),
                                 m_lineHeight, highlight);
                painter.fillRect(TextX(i), y, m_charWidth, m_lineHeight, highlight);
            }
            const bool typed = changed[size_t(offset - first)] != 0;
            painter.setPen(selected ? highlightText : typed ? changedColor : textColor);
            if (readable) {
                const uchar b = bytes[size_t(offset - first)];
                cell[0] = QLatin1Char("0123456789ABCDEF"[b >> 4]);
                cell[1] = QLatin1Char("0123456789ABCDEF"[b & 0x0F]);
                painter.drawText(HexX(i), baseline, cell);
                painter.drawText(TextX(i), baseline, QString(Printable(b)));
            } else {
                painter.drawText(HexX(i), baseline, QStringLiteral("??"));
                painter.drawText(TextX(i), baseline, QStringLiteral("?"));
            }
        }
    }

    // The caret: solid in the active column, outlined in the other.
    const qint64 caretRow = m_caret / kBytesPerRow;
    if (caretRow >= m_topRow && caretRow < m_topRow + rows) {
        const int index = int(m_caret % kBytesPerRow);
        const int y = int(caretRow - m_topRow) * m_lineHeight;
        const QRect hexCell(HexX(index) + m_nibble * m_charWidth, y, m_charWidth, m_lineHeight);
        const QRect textCell(TextX(index), y, m_charWidth, m_lineHeight);
        const QRect active = m_column == HexColumn ? hexCell : textCell;
        const QRect other = m_column == HexColumn ? textCell : hexCell;
        QColor caretColor = textColor;
        if (!focused)
            caretColor.setAlpha(128);
        if (m_insert) {
            painter.fillRect(active.x(), active.y(), 2, active.height(), caretColor);
        } else {
            caretColor.setAlpha(focused ? 110 : 60);
            painter.fillRect(active, caretColor);
        }
        painter.setPen(QPen(textColor, 1, Qt::DotLine));
        painter.drawRect(other.adjusted(0, 0, -1, -1));
    }
}
