#pragma once

#include <QAbstractScrollArea>
#include <QPointer>

class CHexDocument;

// The hex view: offset, hex and character columns, sixteen bytes a row. Only the rows on
// screen are read and painted, and offsets are 64-bit, so a view over a disk image is
// as quick as one over a small file. The scroll bar counts rows, scaled when a file
// has more rows than a scroll bar can count.
class CHexEditView : public QAbstractScrollArea
{
    Q_OBJECT
public:
    enum Column { HexColumn, TextColumn };
    static constexpr int kBytesPerRow = 16;
    // Larger selections are not copied: the clipboard holds everything in memory.
    static constexpr qint64 kMaxClipboard = qint64(256) << 20;

    explicit CHexEditView(CHexDocument* document, QWidget* parent = nullptr);
    ~CHexEditView() override;

    CHexDocument* GetDocument() const { return m_document; }

    qint64 CaretOffset() const { return m_caret; }
    // 0 on the high digit of the byte, 1 on the low digit (hex column only).
    int CaretNibble() const { return m_nibble; }
    Column ActiveColumn() const { return m_column; }
    void SetActiveColumn(Column column);
    bool HasSelection() const { return m_anchor != m_caret; }
    qint64 SelectionStart() const { return std::min(m_anchor, m_caret); }
    qint64 SelectionLength() const { return m_anchor > m_caret ? m_anchor - m_caret : m_caret - m_anchor; }
    bool IsInsertMode() const { return m_insert; }
    void SetInsertMode(bool insert);

    // Moves the caret (clamped to [0, size]) and scrolls it into view; with `extend`
    // the selection runs from the anchor to the new caret.
    void SetCaret(qint64 offset, bool extend = false);
    // Selects [start, start + length) with the caret at its end.
    void Select(qint64 start, qint64 length);
    void SelectAll();

    // Where the byte at `offset` is drawn in `column`, in viewport coordinates; an
    // empty rectangle when its row is not on screen.
    QRect ByteRect(qint64 offset, Column column) const;

    qint64 TopRow() const { return m_topRow; }
    int VisibleRows() const;

    QSize sizeHint() const override;

    bool CanPaste() const;
    bool Undo();
    bool Redo();
    bool Copy() const;
    bool Cut();
    bool Paste();
    bool DeleteSelection();

Q_SIGNALS:
    // The caret, the selection or the typing mode changed.
    void caretChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct Hit
    {
        qint64 offset;
        int nibble;
        Column column;
    };

    void OnContentChanged(qint64 offset);
    void OnScrollBarMoved(int value);
    void UpdateMetrics();
    void UpdateScrollBars();
    void SetTopRow(qint64 row);
    qint64 RowCount() const;
    qint64 MaxTopRow() const;
    void EnsureCaretVisible();
    Hit HitTest(const QPoint& pos) const;
    void MoveCaret(qint64 offset, bool extend);
    void TypeHexDigit(int value);
    void TypeBytes(const QByteArray& bytes);
    bool Refuse() const;
    QByteArray SelectedBytes() const;

    // Layout, in pixels, from the left edge of the content.
    int HexX(int index) const;
    int TextX(int index) const;
    int ContentWidth() const;

    QPointer<CHexDocument> m_document;
    qint64 m_caret = 0;
    qint64 m_anchor = 0;
    int m_nibble = 0;
    Column m_column = HexColumn;
    bool m_insert = false;
    qint64 m_topRow = 0;
    bool m_dragging = false;
    bool m_syncingScrollBar = false;
    int m_wheelRemainder = 0;

    int m_charWidth = 8;
    int m_lineHeight = 16;
    int m_ascent = 12;
    int m_offsetDigits = 8;
};
