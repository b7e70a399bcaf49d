#include "CMFCScintilla.h"

#include <QFont>

CMFCScintilla::CMFCScintilla(QWidget* parent)
    : QsciScintillaBase(parent)
{
}

void CMFCScintilla::Setup()
{
    SendScintilla(SCI_CANCEL);
    SendScintilla(SCI_MARKERDEFINE, BookmarkMarker, SC_MARK_ROUNDRECT);
    SendScintilla(SCI_MARKERDEFINE, 15, SC_MARK_EMPTY);
    SendScintilla(SCI_SETCODEPAGE, 0);

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

void CMFCScintilla::SetCaretLine(bool on, quint32 colour, int alpha)
{
    SendScintilla(SCI_SETCARETLINEVISIBLE, static_cast<unsigned long>(on));
    SendScintilla(SCI_SETCARETLINEBACK, static_cast<unsigned long>(colour));
    SendScintilla(SCI_SETCARETLINEBACKALPHA, static_cast<unsigned long>(alpha));
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
    SendScintilla(SCI_SETSELECTIONMODE, on ? SC_SEL_RECTANGLE : SC_SEL_STREAM);
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
    return SendScintilla(SCI_CANPASTE) > 0;
}
