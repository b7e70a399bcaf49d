#include "CMFCScintilla.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include "settings/CRegistryStore.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFont>
#include <QLocale>
#include <QMimeData>
#include <QMessageBox>
#include <QRegularExpression>
#include <algorithm>

CMFCScintilla::CMFCScintilla(QWidget* parent)
    : QsciScintillaBase(parent)
{
    connect(this, &QsciScintillaBase::SCN_MODIFIED, this, [this](int, int type) {
        if (type & (SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT))
            m_headingsDirty = true;
    });
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
        if (updated & SC_UPDATE_V_SCROLL)
            m_headingsDirty = true;
        if (m_headingsDirty)
            DecorateHeadings();
    });
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
    SendScintilla(SCI_MARKERDEFINE, BookmarkMarker, SC_MARK_ROUNDRECT);
    // A bookmark that stands out from the margin's face, not a white box on grey.
    SendScintilla(SCI_MARKERSETBACK, BookmarkMarker, 0xD07030L);
    SendScintilla(SCI_MARKERSETFORE, BookmarkMarker, 0x803010L);
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
    // Margin shades: the bookmark margin in the window's button face, fold margin light.
    const QColor face = palette().color(QPalette::Button);
    SendScintilla(SCI_SETFOLDMARGINCOLOUR, 1, static_cast<long>(0xFFFFFF));
    SendScintilla(SCI_SETFOLDMARGINHICOLOUR, 1, static_cast<long>(0xFFFFFF));
    SendScintilla(SCI_SETMARGINTYPEN, 0, SC_MARGIN_COLOUR);
    SendScintilla(SCI_SETMARGINBACKN, 0, static_cast<long>(face.red() | face.green() << 8 | face.blue() << 16));
    SendScintilla(SCI_STYLESETFORE, LineNumberStyle, 0x808000L);

    SendScintilla(SCI_SETSELBACK, 1, 0xC56A31L); // #316AC5
    SendScintilla(SCI_SETSELFORE, 1, 0xFFFFFFL);
    SendScintilla(SCI_SETMODEVENTMASK, SC_MODEVENTMASKALL);
    // Typing, deleting and pasting into a rectangle act on every line of it.
    SendScintilla(SCI_SETADDITIONALSELECTIONTYPING, 1UL);
    SendScintilla(SCI_SETMULTIPASTE, static_cast<unsigned long>(SC_MULTIPASTE_EACH));
    // The view offers its own context menu.
    SendScintilla(SCI_USEPOPUP, 0UL);
}

bool CMFCScintilla::GetReadOnly() const
{
    return SendScintilla(SCI_GETREADONLY) != 0;
}

void CMFCScintilla::SetReadOnly(bool readOnly)
{
    SendScintilla(SCI_SETREADONLY, static_cast<unsigned long>(readOnly));
}

void CMFCScintilla::Undo()
{
    SendScintilla(SCI_UNDO);
}

void CMFCScintilla::Redo()
{
    SendScintilla(SCI_REDO);
}

void CMFCScintilla::Cut()
{
    SendScintilla(SCI_CUT);
}

void CMFCScintilla::Copy()
{
    SendScintilla(SCI_COPY);
}

void CMFCScintilla::Paste()
{
    SendScintilla(SCI_PASTE);
}

void CMFCScintilla::SelectAll()
{
    SendScintilla(SCI_SELECTALL);
}

void CMFCScintilla::LineCut()
{
    SendScintilla(SCI_LINECUT);
}

void CMFCScintilla::LineCopy()
{
    SendScintilla(SCI_LINECOPY);
}

void CMFCScintilla::DelLineRight()
{
    SendScintilla(SCI_DELLINERIGHT);
}

void CMFCScintilla::LineDelete()
{
    SendScintilla(SCI_LINEDELETE);
}

void CMFCScintilla::LineTranspose()
{
    SendScintilla(SCI_LINETRANSPOSE);
}

void CMFCScintilla::UpperCase()
{
    SendScintilla(SCI_UPPERCASE);
}

void CMFCScintilla::LowerCase()
{
    SendScintilla(SCI_LOWERCASE);
}

void CMFCScintilla::BackTab()
{
    SendScintilla(SCI_BACKTAB);
}

long CMFCScintilla::GetLineCount() const
{
    return static_cast<long>(SendScintilla(SCI_GETLINECOUNT));
}

void CMFCScintilla::SetTargetStart(long position)
{
    SendScintilla(SCI_SETTARGETSTART, static_cast<unsigned long>(position));
}

void CMFCScintilla::SetTargetEnd(long position)
{
    SendScintilla(SCI_SETTARGETEND, static_cast<unsigned long>(position));
}

void CMFCScintilla::SetSearchFlags(int flags)
{
    SendScintilla(SCI_SETSEARCHFLAGS, static_cast<unsigned long>(flags));
}

long CMFCScintilla::GetTargetStart() const
{
    return static_cast<long>(SendScintilla(SCI_GETTARGETSTART));
}

long CMFCScintilla::GetTargetEnd() const
{
    return static_cast<long>(SendScintilla(SCI_GETTARGETEND));
}

void CMFCScintilla::SetWrapMode(int mode)
{
    SendScintilla(SCI_SETWRAPMODE, static_cast<unsigned long>(mode));
}

void CMFCScintilla::SetWrapVisualFlags(int flags)
{
    SendScintilla(SCI_SETWRAPVISUALFLAGS, static_cast<unsigned long>(flags));
}

void CMFCScintilla::SetWrapVisualFlagsLocation(int location)
{
    SendScintilla(SCI_SETWRAPVISUALFLAGSLOCATION, static_cast<unsigned long>(location));
}

void CMFCScintilla::SetViewWS(int mode)
{
    SendScintilla(SCI_SETVIEWWS, static_cast<unsigned long>(mode));
}

void CMFCScintilla::SetViewEOL(bool visible)
{
    SendScintilla(SCI_SETVIEWEOL, static_cast<unsigned long>(visible));
}

void CMFCScintilla::SetUseTabs(bool useTabs)
{
    SendScintilla(SCI_SETUSETABS, static_cast<unsigned long>(useTabs));
}

void CMFCScintilla::SetIndentationGuides(int mode)
{
    SendScintilla(SCI_SETINDENTATIONGUIDES, static_cast<unsigned long>(mode));
}

long CMFCScintilla::GetLastChild(long line, int level) const
{
    return static_cast<long>(SendScintilla(SCI_GETLASTCHILD, static_cast<unsigned long>(line), static_cast<long>(level)));
}

void CMFCScintilla::ShowLines(long first, long last)
{
    SendScintilla(SCI_SHOWLINES, static_cast<unsigned long>(first), static_cast<long>(last));
}

void CMFCScintilla::HideLines(long first, long last)
{
    SendScintilla(SCI_HIDELINES, static_cast<unsigned long>(first), static_cast<long>(last));
}

int CMFCScintilla::GetFoldLevel(long line) const
{
    return static_cast<int>(SendScintilla(SCI_GETFOLDLEVEL, static_cast<unsigned long>(line)));
}

void CMFCScintilla::SetFoldExpanded(long line, bool expanded)
{
    SendScintilla(SCI_SETFOLDEXPANDED, static_cast<unsigned long>(line), static_cast<unsigned long>(expanded));
}

bool CMFCScintilla::GetFoldExpanded(long line) const
{
    return SendScintilla(SCI_GETFOLDEXPANDED, static_cast<unsigned long>(line)) != 0;
}

long CMFCScintilla::GetFoldParent(long line) const
{
    return static_cast<long>(SendScintilla(SCI_GETFOLDPARENT, static_cast<unsigned long>(line)));
}

bool CMFCScintilla::GetLineVisible(long line) const
{
    return SendScintilla(SCI_GETLINEVISIBLE, static_cast<unsigned long>(line)) != 0;
}

void* CMFCScintilla::GetDocPointer() const
{
    return reinterpret_cast<void*>(SendScintilla(SCI_GETDOCPOINTER));
}

long CMFCScintilla::GetCurrentPos() const
{
    return static_cast<long>(SendScintilla(SCI_GETCURRENTPOS));
}

long CMFCScintilla::GetLength() const
{
    return static_cast<long>(SendScintilla(SCI_GETLENGTH));
}

long CMFCScintilla::PositionAfter(long position) const
{
    return static_cast<long>(SendScintilla(SCI_POSITIONAFTER, static_cast<unsigned long>(position)));
}

long CMFCScintilla::LineFromPosition(long position) const
{
    return static_cast<long>(SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(position)));
}

long CMFCScintilla::GetLineEndPosition(long line) const
{
    return static_cast<long>(SendScintilla(SCI_GETLINEENDPOSITION, static_cast<unsigned long>(line)));
}

long CMFCScintilla::GetSelectionStart() const
{
    return static_cast<long>(SendScintilla(SCI_GETSELECTIONSTART));
}

long CMFCScintilla::GetSelectionEnd() const
{
    return static_cast<long>(SendScintilla(SCI_GETSELECTIONEND));
}

long CMFCScintilla::PositionFromLine(long line) const
{
    return static_cast<long>(SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(line)));
}

int CMFCScintilla::GetLineIndentation(long line) const
{
    return static_cast<int>(SendScintilla(SCI_GETLINEINDENTATION, static_cast<unsigned long>(line)));
}

long CMFCScintilla::FindColumn(long line, long column) const
{
    return static_cast<long>(SendScintilla(SCI_FINDCOLUMN, static_cast<unsigned long>(line), static_cast<long>(column)));
}

void CMFCScintilla::GotoPos(long position)
{
    SendScintilla(SCI_GOTOPOS, static_cast<unsigned long>(position));
}

void CMFCScintilla::SetCurrentPos(long position)
{
    SendScintilla(SCI_SETCURRENTPOS, static_cast<unsigned long>(position));
}

void CMFCScintilla::SetSel(long anchor, long caret)
{
    SendScintilla(SCI_SETSEL, static_cast<unsigned long>(anchor), static_cast<long>(caret));
}

void CMFCScintilla::SetLineIndentation(long line, int indentation)
{
    SendScintilla(SCI_SETLINEINDENTATION, static_cast<unsigned long>(line), static_cast<long>(indentation));
}

void CMFCScintilla::BeginUndoAction()
{
    SendScintilla(SCI_BEGINUNDOACTION);
}

void CMFCScintilla::EndUndoAction()
{
    SendScintilla(SCI_ENDUNDOACTION);
}

void CMFCScintilla::SetEOLMode(int mode)
{
    SendScintilla(SCI_SETEOLMODE, static_cast<unsigned long>(mode));
}

int CMFCScintilla::GetEOLMode() const
{
    return static_cast<int>(SendScintilla(SCI_GETEOLMODE));
}

void CMFCScintilla::ClearAll()
{
    SendScintilla(SCI_CLEARALL);
}

void CMFCScintilla::Allocate(long bytes)
{
    SendScintilla(SCI_ALLOCATE, static_cast<unsigned long>(bytes));
}

void CMFCScintilla::ConvertLineEndings(int mode)
{
    SetEOLMode(mode);
    BeginUndoAction();
    SendScintilla(SCI_CONVERTEOLS, static_cast<unsigned long>(mode));
    EndUndoAction();
}

void CMFCScintilla::SetCodePage(int codePage)
{
    SendScintilla(SCI_SETCODEPAGE, static_cast<unsigned long>(codePage));
}

void CMFCScintilla::EmptyUndoBuffer()
{
    SendScintilla(SCI_EMPTYUNDOBUFFER);
}

void CMFCScintilla::SetSavePoint()
{
    SendScintilla(SCI_SETSAVEPOINT);
}

int CMFCScintilla::GetStyleAt(long position) const
{
    return static_cast<int>(SendScintilla(SCI_GETSTYLEAT, static_cast<unsigned long>(position)));
}

int CMFCScintilla::GetLexer() const
{
    return static_cast<int>(SendScintilla(SCI_GETLEXER));
}

void CMFCScintilla::ScrollCaret()
{
    SendScintilla(SCI_SCROLLCARET);
}

void CMFCScintilla::SetDocPointer(void* document)
{
    SendScintilla(SCI_SETDOCPOINTER, 0UL, document);
}

long CMFCScintilla::SearchInTarget(const QByteArray& text)
{
    return SendScintilla(SCI_SEARCHINTARGET, static_cast<uintptr_t>(text.size()), text.constData());
}

long CMFCScintilla::ReplaceTarget(const QByteArray& text)
{
    return SendScintilla(SCI_REPLACETARGET, static_cast<uintptr_t>(text.size()), text.constData());
}

long CMFCScintilla::ReplaceTargetRE(const QByteArray& text)
{
    return SendScintilla(SCI_REPLACETARGETRE, static_cast<uintptr_t>(text.size()), text.constData());
}

void CMFCScintilla::AddText(const char* text, long length)
{
    if (length < 0)
        length = static_cast<long>(qstrlen(text));
    SendScintilla(SCI_ADDTEXT, static_cast<uintptr_t>(length), text);
}

void CMFCScintilla::GotoLine(long line, bool ensureVisible)
{
    if (ensureVisible)
        SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, static_cast<unsigned long>(line));
    SendScintilla(SCI_GOTOLINE, static_cast<unsigned long>(line));
}

QByteArray CMFCScintilla::GetTextRange(long start, long end) const
{
    if (end < start)
        std::swap(start, end);
    QByteArray buffer(end - start, Qt::Uninitialized);
    if (buffer.isEmpty())
        return buffer;
    const char* source = reinterpret_cast<const char*>(
        SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(start), end - start));
    if (source)
        memcpy(buffer.data(), source, static_cast<size_t>(end - start));
    return buffer;
}

QByteArray CMFCScintilla::GetSelText() const
{
    return GetTextRange(GetSelectionStart(), GetSelectionEnd());
}

QByteArray CMFCScintilla::GetText() const
{
    return GetTextRange(0, GetLength());
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
    return SendScintilla(SCI_GETCOLUMN, static_cast<unsigned long>(position));
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
    SendScintilla(SCI_SETCARETLINEVISIBLE, static_cast<unsigned long>(on));
    SendScintilla(SCI_SETCARETLINEBACK, static_cast<unsigned long>(
        BlendOverBackground(colour, alpha, quint32(SendScintilla(SCI_STYLEGETBACK, STYLE_DEFAULT)))));
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

void CMFCScintilla::SelectWord(long position)
{
    const long start = SendScintilla(SCI_WORDSTARTPOSITION, static_cast<unsigned long>(position), 1L);
    const long end = SendScintilla(SCI_WORDENDPOSITION, static_cast<unsigned long>(position), 1L);
    SetSel(start, end);
}

void CMFCScintilla::SelectLine(long line)
{
    SetSel(PositionFromLine(line), GetLineEndPosition(line));
}

void CMFCScintilla::DeleteWord()
{
    const long end = SendScintilla(SCI_WORDENDPOSITION, static_cast<unsigned long>(GetCurrentPos()), 1L);
    // A selection is dropped first: the word at the caret goes, nothing else.
    GotoPos(end);
    SendScintilla(SCI_DELWORDLEFT);
}

void CMFCScintilla::Indent()
{
    if (!HasSelection())
        GotoPos(PositionFromLine(GetCurrentLine()));
    SendScintilla(SCI_TAB);
}

bool CMFCScintilla::IsBrace(int c)
{
    switch (c) {
    case '[': case ']': case '(': case ')': case '{': case '}':
        return true;
    default:
        return false;
    }
}

bool CMFCScintilla::ToggleFold(long line)
{
    SendScintilla(SCI_TOGGLEFOLD, static_cast<unsigned long>(line));
    return GetFoldExpanded(line);
}

void CMFCScintilla::SetFolding(bool on)
{
    struct FoldMarker
    {
        int number;
        int symbol;
    };
    static constexpr FoldMarker markers[] = {
        {SC_MARKNUM_FOLDEROPEN, SC_MARK_BOXMINUS},
        {SC_MARKNUM_FOLDER, SC_MARK_BOXPLUS},
        {SC_MARKNUM_FOLDERSUB, SC_MARK_VLINE},
        {SC_MARKNUM_FOLDERTAIL, SC_MARK_LCORNER},
        {SC_MARKNUM_FOLDEREND, SC_MARK_BOXPLUSCONNECTED},
        {SC_MARKNUM_FOLDEROPENMID, SC_MARK_BOXMINUSCONNECTED},
        {SC_MARKNUM_FOLDERMIDTAIL, SC_MARK_TCORNER},
    };
    for (const FoldMarker& marker : markers) {
        SendScintilla(SCI_MARKERDEFINE, static_cast<unsigned long>(marker.number), static_cast<long>(marker.symbol));
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(marker.number), 0xFFFFFFL);
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(marker.number), 0x808080L);
    }
    SendScintilla(SCI_SETPROPERTY, "fold.compact", "1");
    if (on) {
        SendScintilla(SCI_SETPROPERTY, "fold", "1");
        SendScintilla(SCI_SETMARGINMASKN, FoldMargin, static_cast<long>(SC_MASK_FOLDERS));
        SendScintilla(SCI_SETMARGINSENSITIVEN, FoldMargin, 1L);
        SendScintilla(SCI_SETPROPERTY, "fold.html", "1");
        SendScintilla(SCI_SETPROPERTY, "fold.html.preprocessor", "1");
    } else {
        // "fold" stays on: the levels are still needed to unfold what was folded.
        SendScintilla(SCI_SETMARGINMASKN, FoldMargin, 15L);
        SendScintilla(SCI_SETMARGINSENSITIVEN, FoldMargin, 0L);
    }
}

CMFCScintilla::BraceMatch CMFCScintilla::FindMatchingBrace(bool sloppy) const
{
    BraceMatch match;
    const long caret = GetCurrentPos();
    const bool python = GetLexer() == SCLEX_PYTHON;
    constexpr int StyleMask = 31;
    constexpr int PythonOperatorStyle = 10;

    if (caret > 0 && SendScintilla(SCI_POSITIONBEFORE, static_cast<unsigned long>(caret)) == caret - 1) {
        const int ch = GetCharAt(caret - 1);
        const int style = GetStyleAt(caret - 1) & StyleMask;
        if (ch != 0 && IsBrace(ch)) {
            match.brace = caret - 1;
        } else if (python && ch == ':' && style == PythonOperatorStyle) {
            match.brace = caret - 1;
            match.colon = true;
        }
    }
    if (match.brace < 0 && sloppy && caret < GetLength()) {
        const int ch = GetCharAt(caret);
        const int style = GetStyleAt(caret) & StyleMask;
        if (ch != 0 && IsBrace(ch) && style == 0) {
            match.brace = caret;
        } else if (python && ch == ':' && style == PythonOperatorStyle) {
            match.brace = caret;
            match.colon = true;
        }
    }
    if (match.brace < 0)
        return match;
    if (match.colon) {
        const long line = LineFromPosition(match.brace);
        match.partner = GetLineEndPosition(GetLastChild(line, -1));
    } else {
        match.partner = SendScintilla(SCI_BRACEMATCH, static_cast<unsigned long>(match.brace), 0L);
    }
    return match;
}

void CMFCScintilla::HighlightBrace()
{
    const BraceMatch match = FindMatchingBrace(false);
    if (match.brace >= 0 && match.partner < 0) {
        SendScintilla(SCI_BRACEBADLIGHT, static_cast<unsigned long>(match.brace));
        SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
        return;
    }
    SendScintilla(SCI_BRACEHIGHLIGHT, static_cast<unsigned long>(match.brace), match.partner);
    if (match.brace < 0) {
        SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
        return;
    }
    long first = GetColumn(match.brace);
    long second = GetColumn(match.partner);
    long guide = std::min(first, second);
    if (match.colon) {
        const long line = LineFromPosition(match.brace);
        first = GetColumn(SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line)));
        second = GetColumn(SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line + 1)));
        const long indent = SendScintilla(SCI_GETINDENT);
        if (second - indent > 1)
            second -= indent;
        guide = first == 0 ? second : std::min(first, second);
    }
    SendScintilla(SCI_SETHIGHLIGHTGUIDE, static_cast<unsigned long>(std::max(0L, guide)));
}

void CMFCScintilla::ClearBraceHighlight()
{
    SendScintilla(SCI_BRACEHIGHLIGHT, static_cast<unsigned long>(-1), -1L);
    SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
}

void CMFCScintilla::CommentLines(bool comment, const QByteArray& token)
{
    const QByteArray full = token + ' ';
    long selStart = GetSelectionStart();
    long selEnd = GetSelectionEnd();
    const long caret = GetCurrentPos();
    const bool empty = selStart == selEnd;
    const bool caretBeforeEnd = !empty && caret < selEnd;

    const long first = LineFromPosition(selStart);
    long last = LineFromPosition(selEnd);
    // A selection that ends at the start of a line does not take that line in.
    if (last > first && selEnd == PositionFromLine(last))
        --last;
    const long firstLineStart = PositionFromLine(first);

    constexpr long MaxLineLength = 1000;
    BeginUndoAction();
    for (long line = first; line <= last; ++line) {
        const long start = PositionFromLine(line);
        const long end = GetLineEndPosition(line);
        if (end - start >= MaxLineLength)
            continue;
        if (comment) {
            SendScintilla(SCI_INSERTTEXT, static_cast<unsigned long>(start), full.constData());
            selEnd += full.size();
            // A start inside the first line moves with its text; one at column 0 takes
            // the new token in.
            if (line == first && selStart > start)
                selStart += full.size();
            continue;
        }
        const QByteArray head = GetTextRange(start, std::min(end, start + long(full.size())));
        if (!head.startsWith(token))
            continue;
        const long amount = head.startsWith(full) ? long(full.size()) : long(token.size());
        if (amount == 0)
            continue;
        SetSel(start, start + amount);
        SendScintilla(SCI_REPLACESEL, 0UL, "");
        selEnd -= amount;
        if (line == first)
            selStart -= amount;
    }
    // Never before the first line's start, and an end never before the start.
    selStart = std::max(selStart, firstLineStart);
    selEnd = std::max(selEnd, selStart);
    if (empty) {
        // A plain caret stays with the character it stood before.
        GotoPos(selEnd);
    } else if (caretBeforeEnd) {
        GotoPos(selEnd);
        SetCurrentPos(selStart);
    } else {
        SetSel(selStart, selEnd);
    }
    EndUndoAction();
}

void CMFCScintilla::InsertWithSelection(const QString& text)
{
    InsertWithSelection(ToControlText(text));
}

void CMFCScintilla::InsertWithSelection(const QByteArray& text)
{
    const QByteArray selected = GetSelText();
    QByteArray result = text;
    result.replace(ReplaceMarker, selected);
    if (selected.isEmpty())
        SendScintilla(SCI_INSERTTEXT, static_cast<unsigned long>(GetCurrentPos()), result.constData());
    else
        SendScintilla(SCI_REPLACESEL, 0UL, result.constData());
}

QString CMFCScintilla::DateText(const QDateTime& when)
{
    return QLocale::system().toString(when.date(), QLocale::ShortFormat);
}

QString CMFCScintilla::TimeText(const QDateTime& when)
{
    // The locale's long time form with seconds, but no time zone.
    QString format = QLocale::system().timeFormat(QLocale::LongFormat);
    static const QRegularExpression zone(QStringLiteral("\\s*\\(?t+\\)?"));
    format.remove(zone);
    return QLocale::system().toString(when.time(), format.trimmed());
}

void CMFCScintilla::InsertDate()
{
    const QString text = DateText(QDateTime::currentDateTime());
    if (!text.isEmpty())
        InsertText(text);
}

void CMFCScintilla::InsertTime()
{
    const QString text = TimeText(QDateTime::currentDateTime());
    if (!text.isEmpty())
        InsertText(text);
}

bool CMFCScintilla::CopyAppend()
{
    if (!HasSelection())
        return false;
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard)
        return false;
    clipboard->setText(clipboard->text() + FromControlText(GetSelText()));
    return true;
}

void CMFCScintilla::CutAppend()
{
    if (CopyAppend())
        SendScintilla(SCI_REPLACESEL, 0UL, "");
}

void CMFCScintilla::ToggleBookmark(long line)
{
    if (line == -1)
        line = GetCurrentLine();
    if (HasBookmark(line))
        SendScintilla(SCI_MARKERDELETE, static_cast<unsigned long>(line), static_cast<long>(BookmarkMarker));
    else
        SendScintilla(SCI_MARKERADD, static_cast<unsigned long>(line), static_cast<long>(BookmarkMarker));
}

bool CMFCScintilla::HasBookmark(long line) const
{
    return (SendScintilla(SCI_MARKERGET, static_cast<unsigned long>(line)) & BookmarkMask) != 0;
}

bool CMFCScintilla::NextBookmark(bool forward, bool anchor)
{
    const long line = GetCurrentLine();
    long next;
    if (forward) {
        next = SendScintilla(SCI_MARKERNEXT, static_cast<unsigned long>(line + 1), static_cast<long>(BookmarkMask));
        if (next < 0)
            next = SendScintilla(SCI_MARKERNEXT, 0UL, static_cast<long>(BookmarkMask));
    } else {
        next = line > 0 ? SendScintilla(SCI_MARKERPREVIOUS, static_cast<unsigned long>(line - 1),
                                        static_cast<long>(BookmarkMask))
                        : -1;
        if (next < 0)
            next = SendScintilla(SCI_MARKERPREVIOUS, static_cast<unsigned long>(GetLineCount()),
                                 static_cast<long>(BookmarkMask));
    }
    if (next < 0 || next == line) {
        QMessageBox::warning(window(), QApplication::applicationDisplayName(),
                             tr("No more bookmarks have been found"));
        return false;
    }
    const long oldAnchor = SendScintilla(SCI_GETANCHOR);
    const long from = GetCurrentPos();
    SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, static_cast<unsigned long>(next));
    SendScintilla(SCI_GOTOLINE, static_cast<unsigned long>(next));
    if (anchor)
        SendScintilla(SCI_SETANCHOR, static_cast<unsigned long>(oldAnchor));
    Q_EMIT caretJumped(from, GetCurrentPos());
    return true;
}

QString CMFCScintilla::GetSearchSeed()
{
    const QString section = QStringLiteral("FindReplace");
    const QString name = QStringLiteral("LastSelectedValue");
    CRegistryStore store;
    if (!HasSelection())
        return store.GetProfileString(section, name, QString());

    constexpr int MaxSeed = 100;
    QByteArray bytes = GetSelText();
    if (bytes.size() > MaxSeed) {
        int cut = MaxSeed - 1;
        // Never split a UTF-8 sequence.
        if (SendScintilla(SCI_GETCODEPAGE) == SC_CP_UTF8) {
            while (cut > 0 && (static_cast<unsigned char>(bytes.at(cut)) & 0xC0) == 0x80)
                --cut;
        }
        bytes.truncate(cut);
    }
    const QString seed = FromControlText(bytes);
    store.WriteProfileString(section, name, seed);
    return seed;
}

void CMFCScintilla::AutoIndent(int ch, bool indentAfterBrace)
{
    const int eolMode = GetEOLMode();
    const bool trigger = (ch == '\n' && (eolMode == SC_EOL_CRLF || eolMode == SC_EOL_LF))
                         || (ch == '\r' && eolMode == SC_EOL_CR);
    const long line = GetCurrentLine();

    if (ch == '}') {
        const BraceMatch match = FindMatchingBrace(false);
        if (match.brace >= 0 && match.partner >= 0) {
            const long partnerLine = LineFromPosition(match.partner);
            if (partnerLine < line)
                SetLineIndentation(line, GetLineIndentation(partnerLine));
        }
        return;
    }
    if (!trigger || line == 0)
        return;

    // The nearest line above that holds anything sets the indent.
    long above = line - 1;
    while (above > 0 && GetLineEndPosition(above) == PositionFromLine(above))
        --above;
    int indent = GetLineIndentation(above);
    if (indentAfterBrace) {
        const long start = PositionFromLine(above);
        const QByteArray text = GetTextRange(start, GetLineEndPosition(above));
        bool closed = false;
        for (qsizetype i = text.size() - 1; i >= 0; --i) {
            if (text.at(i) == '}') {
                closed = true;
            } else if (text.at(i) == '{') {
                if (!closed)
                    indent += static_cast<int>(SendScintilla(SCI_GETINDENT));
                break;
            }
        }
    }
    if (indent > 0) {
        SetLineIndentation(line, indent);
        const long position = SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line));
        SetSel(position, position);
    }
}

void CMFCScintilla::JumpToLine(long line)
{
    const long from = GetCurrentPos();
    GotoLine(line, true);
    Q_EMIT caretJumped(from, GetCurrentPos());
}

void CMFCScintilla::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuRequested(event->globalPos());
    event->accept();
}
