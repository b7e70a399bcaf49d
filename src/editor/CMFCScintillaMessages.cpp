// The thin, typed wrappers over the control's messages.
#include "CMFCScintilla.h"

#include <algorithm>

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
    UndoRedoQuietly(SCI_UNDO);
}

void CMFCScintilla::Redo()
{
    UndoRedoQuietly(SCI_REDO);
}

void CMFCScintilla::UndoRedoQuietly(unsigned int message)
{
    // One step may hold a million changes (a Replace All): the control announces none
    // of them, and listeners hear of the whole step once.
    const long mask = SendScintilla(SCI_GETMODEVENTMASK);
    const long lines = GetLineCount();
    const long length = GetLength();
    SendScintilla(SCI_SETMODEVENTMASK, 0UL);
    SendScintilla(message);
    SendScintilla(SCI_SETMODEVENTMASK, static_cast<unsigned long>(mask));
    m_headingsDirty = true;
    const int type = GetLength() >= length ? SC_MOD_INSERTTEXT : SC_MOD_DELETETEXT;
    Q_EMIT SCN_MODIFIED(0, type | (message == SCI_UNDO ? SC_PERFORMED_UNDO : SC_PERFORMED_REDO), nullptr, 0,
                        int(GetLineCount() - lines), 0, 0, 0, 0, 0);
}

void CMFCScintilla::Cut()
{
    FollowCaretCount();
    SendScintilla(SCI_CUT);
}

void CMFCScintilla::Copy()
{
    SendScintilla(SCI_COPY);
}

void CMFCScintilla::Paste()
{
    FollowCaretCount();
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

std::pair<std::string_view, std::string_view> CMFCScintilla::TextPieces() const
{
    const long length = GetLength();
    long gap = static_cast<long>(SendScintilla(SCI_GETGAPPOSITION));
    if (gap > 0 && gap < length) {
        // A gap inside a character moves back to its first byte: a few bytes copied.
        const auto byteAt = [this](long position) {
            return static_cast<unsigned char>(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(position)));
        };
        long start = gap;
        while (start > 0 && gap - start < 3 && (byteAt(start) & 0xC0) == 0x80)
            --start;
        if (start != gap && (byteAt(start) & 0xC0) == 0xC0) {
            SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(start), gap - start + 1);
            gap = static_cast<long>(SendScintilla(SCI_GETGAPPOSITION));
        }
    }
    if (gap <= 0 || gap >= length) {
        const auto* text = reinterpret_cast<const char*>(SendScintilla(SCI_GETRANGEPOINTER, 0UL, length));
        const std::string_view whole(text ? text : "", text ? std::size_t(length) : 0);
        return gap <= 0 ? std::pair{std::string_view(), whole} : std::pair{whole, std::string_view()};
    }
    const auto* before = reinterpret_cast<const char*>(SendScintilla(SCI_GETRANGEPOINTER, 0UL, gap));
    const auto* after = reinterpret_cast<const char*>(SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(gap), length - gap));
    return {std::string_view(before, std::size_t(gap)), std::string_view(after, std::size_t(length - gap))};
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
    // The control hands a style byte back sign-extended: styles past 127 came out negative.
    return static_cast<int>(SendScintilla(SCI_GETSTYLEAT, static_cast<unsigned long>(position)) & 0xFF);
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
    ForgetColumns();
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

