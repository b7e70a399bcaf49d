#include "CMFCScintilla.h"

#include "CColumnCounter.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include "framework/ThemeColours.h"
#include "settings/CRegistryStore.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFont>
#include <QLocale>
#include <QMimeData>
#include <QMessageBox>
#include <QRegularExpression>
#include <algorithm>
#include <climits>

namespace {

// The control's own accessible text counts every character in front of the caret at each
// repaint: most of a second per caret move near the end of a 100 MB text. With no screen
// reader running nothing reads it, and the editor answers as a plain editable widget.
QAccessibleInterface* PlainUnlessReaderRuns(const QString&, QObject* object)
{
    if (!QAccessible::isActive() && qobject_cast<CMFCScintilla*>(object))
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::EditableText);
    return nullptr;
}

// Installed before any control exists, so that it is asked before the control's own.
[[maybe_unused]] const bool plainAccessibleInstalled = [] {
    QAccessible::installFactory(PlainUnlessReaderRuns);
    return true;
}();

} // namespace

CMFCScintilla::CMFCScintilla(QWidget* parent)
    : QsciScintillaBase(parent)
    , m_columns(std::make_unique<CColumnCounter>(*this))
{
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this, [this](int position, int type) {
        if (type & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT | SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE))
            m_columns->Changed(position);
        if (type & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT))
            m_headingsDirty = true;
        if ((m_deferredNotices || m_manyCarets) && (type & (SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE))) {
            if (!m_changePending) {
                m_changePending = true;
                m_pendingType = (type & SC_MOD_BEFOREINSERT) ? SC_MOD_INSERTTEXT : SC_MOD_DELETETEXT;
                m_pendingPosition = position;
                m_linesBeforeChange = GetLineCount();
                QMetaObject::invokeMethod(this, &CMFCScintilla::AnnounceDeferredChange, Qt::QueuedConnection);
            }
        }
    });
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
        if (updated & SC_UPDATE_SELECTION)
            FollowCaretCount();
        if (updated & SC_UPDATE_V_SCROLL)
            m_headingsDirty = true;
        if (m_headingsDirty)
            DecorateHeadings();
    });
}

CMFCScintilla::~CMFCScintilla() = default;

void CMFCScintilla::SetDeferredChangeNotices(bool deferred)
{
    m_deferredNotices = deferred;
    ApplyNoticeMask();
}

void CMFCScintilla::ApplyNoticeMask()
{
    // Only the "before" notices reach the control's handler then: they carry no text and
    // cost it nothing.
    constexpr long announced = SC_MOD_BEFOREINSERT | SC_MOD_BEFOREDELETE | SC_MOD_CHANGEMARKER;
    const bool deferred = m_deferredNotices || m_manyCarets;
    SendScintilla(SCI_SETMODEVENTMASK, static_cast<unsigned long>(deferred ? announced : long(SC_MODEVENTMASKALL)));
}

void CMFCScintilla::FollowCaretCount()
{
    // A key typed at many carets is one change per caret, each of which the control's own
    // handling would pay for by counting the characters in front of it.
    constexpr long ManyCarets = 16;
    const bool many = SendScintilla(SCI_GETSELECTIONS) > ManyCarets;
    if (many != m_manyCarets) {
        m_manyCarets = many;
        ApplyNoticeMask();
    }
}

void CMFCScintilla::AnnounceDeferredChange()
{
    if (!m_changePending)
        return;
    m_changePending = false;
    const long linesAdded = GetLineCount() - m_linesBeforeChange;
    m_headingsDirty = true;
    Q_EMIT SCN_MODIFIED(int(std::min<long>(m_pendingPosition, INT_MAX)), m_pendingType | SC_PERFORMED_USER,
                        nullptr, 0, int(linesAdded), 0, 0, 0, 0, 0);
}

void CMFCScintilla::DecorateHeadings()
{
    m_headingsDirty = false;
    constexpr int ValueFore = 1; // SC_INDICFLAG_VALUEFORE: each range carries its colour
    constexpr long ValueBit = 0x1000000;
    SendScintilla(SCI_INDICSETSTYLE, static_cast<unsigned long>(HeadingIndicator), static_cast<long>(INDIC_TEXTFORE));
    SendScintilla(SCI_INDICSETFLAGS, static_cast<unsigned long>(HeadingIndicator), static_cast<long>(ValueFore));
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(HeadingIndicator));
    const long length = GetLength();
    if (SendScintilla(SCI_GETLEXER) != SCLEX_MARKDOWN) {
        if (SendScintilla(SCI_INDICATOREND, static_cast<unsigned long>(HeadingIndicator), 0L) > 0)
            SendScintilla(SCI_INDICATORCLEARRANGE, 0UL, length);
        return;
    }
    const long firstVisible = SendScintilla(SCI_GETFIRSTVISIBLELINE);
    const long first = SendScintilla(SCI_DOCLINEFROMVISIBLE, static_cast<unsigned long>(firstVisible));
    const long last = std::min(GetLineCount() - 1,
        SendScintilla(SCI_DOCLINEFROMVISIBLE,
                      static_cast<unsigned long>(firstVisible + SendScintilla(SCI_LINESONSCREEN) + 1)));
    const long start = PositionFromLine(first);
    const long end = GetLineEndPosition(last);
    SendScintilla(SCI_COLOURISE, static_cast<unsigned long>(start), end);
    SendScintilla(SCI_INDICATORCLEARRANGE, static_cast<unsigned long>(start), end - start);
    for (long line = first; line <= last; ++line) {
        const long lineStart = PositionFromLine(line);
        const long lineEnd = GetLineEndPosition(line);
        const int style = GetStyleAt(lineStart);
        // Heading 1 to 6 of the Markdown lexer.
        if (style < 6 || style > 11 || lineEnd <= lineStart)
            continue;
        const long colour = SendScintilla(SCI_STYLEGETFORE, static_cast<unsigned long>(style));
        SendScintilla(SCI_SETINDICATORVALUE, static_cast<unsigned long>(colour | ValueBit));
        SendScintilla(SCI_INDICATORFILLRANGE, static_cast<unsigned long>(lineStart), lineEnd - lineStart);
    }
}

void CMFCScintilla::Setup()
{
    SendScintilla(SCI_CANCEL);
    const ThemeColours theme = ThemeColours::Current();
    SendScintilla(SCI_MARKERDEFINE, BookmarkMarker, SC_MARK_ROUNDRECT);
    // A bookmark that stands out from the margin's face, not a white box on grey.
    SendScintilla(SCI_MARKERSETBACK, BookmarkMarker, static_cast<long>(theme.BookmarkBack()));
    SendScintilla(SCI_MARKERSETFORE, BookmarkMarker, static_cast<long>(theme.BookmarkFore()));
    SendScintilla(SCI_MARKERDEFINE, 15, SC_MARK_EMPTY);
    // Every document is held as UTF-8, whatever its file's encoding.
    SendScintilla(SCI_SETCODEPAGE, static_cast<unsigned long>(SC_CP_UTF8));

    // Margin 0 holds bookmarks, margin 1 line numbers, margin 2 folding.
    SendScintilla(SCI_SETMARGINTYPEN, 0, SC_MARGIN_SYMBOL);
    SendScintilla(SCI_SETMARGINTYPEN, 1, SC_MARGIN_NUMBER);
    SendScintilla(SCI_SETMARGINTYPEN, 2, SC_MARGIN_SYMBOL);
    SendScintilla(SCI_SETMARGINMASKN, 2, static_cast<long>(SC_MASK_FOLDERS));
    SendScintilla(SCI_SETMARGINWIDTHN, 2, 16);
    SendScintilla(SCI_SETMARGINWIDTHN, 0, 16);
    SendScintilla(SCI_SETMARGINWIDTHN, 1, 0L);
    SendScintilla(SCI_SETMARGINWIDTHN, 3, 0L);
    SendScintilla(SCI_SETMARGINWIDTHN, 4, 0L);
    SendScintilla(SCI_SETMARGINMASKN, 0, 0x1FFFFFFL);
    SendScintilla(SCI_SETMARGINMASKN, 1, 0L);
    SendScintilla(SCI_SETMARGINMASKN, 2, static_cast<long>(SC_MASK_FOLDERS));
    SendScintilla(SCI_SETMARGINSENSITIVEN, 0, 1);
    SendScintilla(SCI_SETMARGINSENSITIVEN, 1, 1);
    // Margin shades: the bookmark margin a shade off the page, fold margin as the page.
    SendScintilla(SCI_SETFOLDMARGINCOLOUR, 1, static_cast<long>(theme.FoldMarginBack()));
    SendScintilla(SCI_SETFOLDMARGINHICOLOUR, 1, static_cast<long>(theme.FoldMarginBack()));
    SendScintilla(SCI_SETMARGINTYPEN, 0, SC_MARGIN_COLOUR);
    SendScintilla(SCI_SETMARGINBACKN, 0, static_cast<long>(theme.MarginBack()));
    SendScintilla(SCI_STYLESETFORE, LineNumberStyle, static_cast<long>(theme.LineNumber()));
    SendScintilla(SCI_STYLESETFORE, STYLE_DEFAULT, static_cast<long>(theme.Text()));
    SendScintilla(SCI_STYLESETBACK, STYLE_DEFAULT, static_cast<long>(theme.Background()));
    SendScintilla(SCI_SETCARETFORE, static_cast<unsigned long>(theme.Caret()));

    SendScintilla(SCI_SETSELBACK, 1, static_cast<long>(theme.SelectionBack()));
    SendScintilla(SCI_SETSELFORE, 1, static_cast<long>(theme.SelectionText()));
    ApplyNoticeMask();
    // Typing, deleting and pasting into a rectangle act on every line of it.
    SendScintilla(SCI_SETADDITIONALSELECTIONTYPING, 1UL);
    SendScintilla(SCI_SETMULTIPASTE, static_cast<unsigned long>(SC_MULTIPASTE_EACH));
    // The view offers its own context menu.
    SendScintilla(SCI_USEPOPUP, 0UL);
}

int CMFCScintilla::LineNumberMarginWidth() const
{
    int digits = 1;
    for (long lines = GetLineCount(); lines >= 10; lines /= 10)
        ++digits;
    digits = std::max(digits, 4);
    const long nine = SendScintilla(SCI_TEXTWIDTH, static_cast<unsigned long>(LineNumberStyle), "9");
    const int width = static_cast<int>(nine * digits + 4);
    return width < 37 ? 36 : width;
}

void CMFCScintilla::SetLineNumberMargin(bool on, int margin)
{
    SendScintilla(SCI_SETMARGINWIDTHN, static_cast<unsigned long>(margin),
                  static_cast<long>(on ? LineNumberMarginWidth() : 0));
}

long CMFCScintilla::GetCurrentLine() const
{
    return LineFromPosition(GetCurrentPos());
}

long CMFCScintilla::GetColumn(long position) const
{
    if (position < 0)
        position = GetCurrentPos();
    return m_columns->Column(position);
}

void CMFCScintilla::ForgetColumns()
{
    m_columns->Forget();
}

quint32 CMFCScintilla::BlendOverBackground(quint32 colour, int alpha, quint32 background)
{
    alpha = std::clamp(alpha, 0, 255);
    quint32 out = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const quint32 front = (colour >> shift) & 0xFF;
        const quint32 back = (background >> shift) & 0xFF;
        const quint32 mixed = (front * quint32(alpha) + back * quint32(255 - alpha) + 127) / 255;
        out |= mixed << shift;
    }
    return out;
}

void CMFCScintilla::SetCaretLine(bool on, quint32 colour, int alpha)
{
    // This control paints a translucent caret line over the text, hiding it and the
    // caret. It is painted opaque behind the text instead, in the colour the blend
    // with the text's background would give.
    // The colour is chosen for a white page; a dark theme turns it over like the text's.
    SendScintilla(SCI_SETCARETLINEVISIBLE, static_cast<unsigned long>(on));
    SendScintilla(SCI_SETCARETLINEBACK, static_cast<unsigned long>(BlendOverBackground(
        ThemeColours::Current().Back(colour), alpha, quint32(SendScintilla(SCI_STYLEGETBACK, STYLE_DEFAULT)))));
    SendScintilla(SCI_SETCARETLINEBACKALPHA, static_cast<unsigned long>(SC_ALPHA_NOALPHA));
}

void CMFCScintilla::SetFont(const QString& face, int size, bool bold, bool italic)
{
    const QByteArray name = face.toUtf8();
    SendScintilla(SCI_STYLESETFONT, STYLE_DEFAULT, name.constData());
    SendScintilla(SCI_STYLESETSIZE, STYLE_DEFAULT, static_cast<long>(size));
    SendScintilla(SCI_STYLESETFONT, LineNumberStyle, name.constData());
    SendScintilla(SCI_STYLESETSIZE, LineNumberStyle, static_cast<long>(size));
    SendScintilla(SCI_STYLESETBOLD, STYLE_DEFAULT, static_cast<long>(bold));
    SendScintilla(SCI_STYLESETITALIC, STYLE_DEFAULT, static_cast<long>(italic));
}

void CMFCScintilla::SetTabWidth(int width)
{
    SendScintilla(SCI_SETTABWIDTH, static_cast<unsigned long>(width));
    SendScintilla(SCI_SETINDENT, static_cast<unsigned long>(width));
}

void CMFCScintilla::SetBlockSelect(bool on)
{
    m_blockSelect = on;
    SendScintilla(SCI_SETSELECTIONMODE, on ? SC_SEL_RECTANGLE : SC_SEL_STREAM);
}

namespace {

// The same mouse event with the key held that makes the control drag a rectangle (this
// build of the control takes Ctrl for it, leaving Alt to the window manager).
QMouseEvent WithRectangleModifier(const QMouseEvent* event)
{
    return QMouseEvent(event->type(), event->position(), event->scenePosition(),
                       event->globalPosition(), event->button(), event->buttons(),
                       event->modifiers() | Qt::ControlModifier, event->pointingDevice());
}

} // namespace

void CMFCScintilla::keyPressEvent(QKeyEvent* event)
{
    FollowCaretCount();
    // While Block Select is on, Shift with a movement key extends a rectangle.
    if (m_blockSelect && event->modifiers() == Qt::ShiftModifier) {
        int command = 0;
        switch (event->key()) {
        case Qt::Key_Left: command = SCI_CHARLEFTRECTEXTEND; break;
        case Qt::Key_Right: command = SCI_CHARRIGHTRECTEXTEND; break;
        case Qt::Key_Up: command = SCI_LINEUPRECTEXTEND; break;
        case Qt::Key_Down: command = SCI_LINEDOWNRECTEXTEND; break;
        case Qt::Key_Home: command = SCI_VCHOMERECTEXTEND; break;
        case Qt::Key_End: command = SCI_LINEENDRECTEXTEND; break;
        case Qt::Key_PageUp: command = SCI_PAGEUPRECTEXTEND; break;
        case Qt::Key_PageDown: command = SCI_PAGEDOWNRECTEXTEND; break;
        default: break;
        }
        if (command) {
            SendScintilla(static_cast<unsigned int>(command));
            event->accept();
            return;
        }
    }
    // A Ctrl or Alt combination is a command or nothing: when the control has no command
    // for it, its character must not land in the text (Ctrl+=, Alt+X).
    const Qt::KeyboardModifiers mods = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (mods && !event->text().isEmpty()) {
        QKeyEvent commandOnly(event->type(), event->key(), event->modifiers(), event->nativeScanCode(),
                              event->nativeVirtualKey(), event->nativeModifiers(), QString(),
                              event->isAutoRepeat(), ushort(event->count()));
        QsciScintillaBase::keyPressEvent(&commandOnly);
        event->setAccepted(commandOnly.isAccepted());
        return;
    }
    QsciScintillaBase::keyPressEvent(event);
}

void CMFCScintilla::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        const int delta = event->angleDelta().y();
        if (delta != 0)
            SendScintilla(delta > 0 ? SCI_ZOOMIN : SCI_ZOOMOUT);
        event->accept();
        return;
    }
    QsciScintillaBase::wheelEvent(event);
}

void CMFCScintilla::mousePressEvent(QMouseEvent* event)
{
    if (m_blockSelect && event->button() == Qt::LeftButton) {
        QMouseEvent rectangular = WithRectangleModifier(event);
        QsciScintillaBase::mousePressEvent(&rectangular);
        event->setAccepted(rectangular.isAccepted());
        return;
    }
    QsciScintillaBase::mousePressEvent(event);
}

void CMFCScintilla::mouseMoveEvent(QMouseEvent* event)
{
    if (m_blockSelect && (event->buttons() & Qt::LeftButton)) {
        QMouseEvent rectangular = WithRectangleModifier(event);
        QsciScintillaBase::mouseMoveEvent(&rectangular);
        event->setAccepted(rectangular.isAccepted());
        return;
    }
    QsciScintillaBase::mouseMoveEvent(event);
}

void CMFCScintilla::SetWordWrap(bool on)
{
    SetWrapMode(on ? SC_WRAP_WORD : SC_WRAP_NONE);
    SetWrapVisualFlags(on ? SC_WRAPVISUALFLAG_END : SC_WRAPVISUALFLAG_NONE);
    SetWrapVisualFlagsLocation(SC_WRAPVISUALFLAGLOC_END_BY_TEXT);
}

bool CMFCScintilla::CanUndo() const
{
    return SendScintilla(SCI_CANUNDO) == 1;
}

bool CMFCScintilla::CanRedo() const
{
    return SendScintilla(SCI_CANREDO) == 1;
}

bool CMFCScintilla::CanPaste() const
{
    if (SendScintilla(SCI_CANPASTE) <= 0)
        return false;
    // The control itself does not look at the clipboard.
    const QMimeData* data = QApplication::clipboard()->mimeData();
    return data && canInsertFromMimeData(data);
}


QByteArray CMFCScintilla::ToControlText(const QString& text) const
{
    return SendScintilla(SCI_GETCODEPAGE) == SC_CP_UTF8 ? text.toUtf8() : text.toLocal8Bit();
}

QString CMFCScintilla::FromControlText(const QByteArray& bytes) const
{
    return SendScintilla(SCI_GETCODEPAGE) == SC_CP_UTF8 ? QString::fromUtf8(bytes) : QString::fromLocal8Bit(bytes);
}

void CMFCScintilla::MarkerDeleteAll()
{
    SendScintilla(SCI_MARKERDELETEALL, static_cast<unsigned long>(BookmarkMarker));
}

int CMFCScintilla::GetCharAt(long position) const
{
    if (position == -1)
        position = GetTargetEnd();
    return static_cast<unsigned char>(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(position)));
}

void CMFCScintilla::EnsureRangeVisible(long a, long b)
{
    const long first = LineFromPosition(std::min(a, b));
    const long last = LineFromPosition(std::max(a, b));
    for (long line = first; line <= last; ++line)
        SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, static_cast<unsigned long>(line));
}

void CMFCScintilla::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuRequested(event->globalPos());
    event->accept();
}
