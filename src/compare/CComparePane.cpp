#include "compare/CComparePane.h"

#include "framework/ThemeColours.h"

#include <QFont>
#include <QFontDatabase>

namespace {

constexpr qsizetype kLargeText = 16 * 1024 * 1024;

} // namespace

CComparePane::CComparePane(QWidget* parent)
    : QsciScintillaBase(parent)
{
    const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    SendScintilla(SCI_STYLESETFONT, STYLE_DEFAULT, font.family().toUtf8().constData());
    SendScintilla(SCI_STYLESETSIZE, STYLE_DEFAULT, static_cast<long>(std::max(8, font.pointSize())));
    const ThemeColours theme = ThemeColours::Current();
    SendScintilla(SCI_STYLESETFORE, STYLE_DEFAULT, static_cast<long>(theme.Text()));
    SendScintilla(SCI_STYLESETBACK, STYLE_DEFAULT, static_cast<long>(theme.Background()));
    SendScintilla(SCI_STYLECLEARALL);
    // Filler rows get a style of their own, beyond the styles a lexer uses.
    m_fillerStyle = int(SendScintilla(SCI_ALLOCATEEXTENDEDSTYLES, 1UL));
    ApplyOwnStyles();
}

void CComparePane::ApplyOwnStyles()
{
    using Mark = ThemeColours::Mark;
    const ThemeColours theme = ThemeColours::Current();
    const auto kChangedBack = theme.Colour(Mark::CompareChanged);
    const auto kDeletedBack = theme.Colour(Mark::CompareDeleted);
    const auto kInsertedBack = theme.Colour(Mark::CompareInserted);
    const auto kFillerBack = theme.Colour(Mark::CompareFiller);
    const auto kCharMark = theme.Colour(Mark::CompareCharacters);
    const auto kCurrentMark = theme.Colour(Mark::CompareCurrent);
    SendScintilla(SCI_STYLESETFORE, STYLE_LINENUMBER, static_cast<long>(theme.LineNumber()));
    SendScintilla(SCI_STYLESETBACK, STYLE_LINENUMBER, static_cast<long>(theme.MarginBack()));
    SendScintilla(SCI_SETMARGINBACKN, 1UL, static_cast<long>(theme.MarginBack()));

    SendScintilla(SCI_SETMARGINTYPEN, 0UL, static_cast<long>(SC_MARGIN_NUMBER));
    SendScintilla(SCI_SETMARGINWIDTHN, 0UL, SendScintilla(SCI_TEXTWIDTH, STYLE_LINENUMBER, "_99999"));
    SendScintilla(SCI_SETMARGINTYPEN, 1UL, static_cast<long>(SC_MARGIN_SYMBOL));
    SendScintilla(SCI_SETMARGINWIDTHN, 1UL, 12L);
    SendScintilla(SCI_SETMARGINMASKN, 1UL, static_cast<long>(1u << CurrentMarker));

    const struct
    {
        int marker;
        quint32 colour;
    } backgrounds[] = {{ChangedMarker, kChangedBack}, {DeletedMarker, kDeletedBack}, {InsertedMarker, kInsertedBack}};
    for (const auto& b : backgrounds) {
        SendScintilla(SCI_MARKERDEFINE, static_cast<unsigned long>(b.marker), static_cast<long>(SC_MARK_BACKGROUND));
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(b.marker), static_cast<long>(b.colour));
    }
    SendScintilla(SCI_MARKERDEFINE, static_cast<unsigned long>(CurrentMarker), static_cast<long>(SC_MARK_ARROW));
    SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(CurrentMarker), static_cast<long>(kCurrentMark));
    SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(CurrentMarker), static_cast<long>(kCurrentMark));

    SendScintilla(SCI_INDICSETSTYLE, static_cast<unsigned long>(ChangeIndicator), static_cast<long>(INDIC_FULLBOX));
    SendScintilla(SCI_INDICSETFORE, static_cast<unsigned long>(ChangeIndicator), static_cast<long>(kCharMark));
    SendScintilla(SCI_INDICSETALPHA, static_cast<unsigned long>(ChangeIndicator), 90L);
    SendScintilla(SCI_INDICSETOUTLINEALPHA, static_cast<unsigned long>(ChangeIndicator), 160L);
    SendScintilla(SCI_INDICSETUNDER, static_cast<unsigned long>(ChangeIndicator), 1L);

    SendScintilla(SCI_ANNOTATIONSETSTYLEOFFSET, static_cast<unsigned long>(m_fillerStyle));
    SendScintilla(SCI_STYLESETBACK, static_cast<unsigned long>(m_fillerStyle), static_cast<long>(kFillerBack));
    SendScintilla(SCI_ANNOTATIONSETVISIBLE, static_cast<unsigned long>(ANNOTATION_STANDARD));
    SendScintilla(SCI_SETWRAPMODE, static_cast<unsigned long>(SC_WRAP_NONE));
}

void CComparePane::SetText(const QByteArray& text)
{
    const bool wasReadOnly = IsReadOnly();
    SetReadOnly(false);
    const bool large = text.size() > kLargeText;
    if (large) {
        // A very large text goes into a document without style bytes: colouring it
        // would double the memory the text takes, for a compare that shows its lines.
        void* document = reinterpret_cast<void*>(SendScintilla(
            SCI_CREATEDOCUMENT, static_cast<unsigned long>(text.size() + 1000),
            static_cast<long>(SC_DOCUMENTOPTION_STYLES_NONE | SC_DOCUMENTOPTION_TEXT_LARGE)));
        SendScintilla(SCI_SETDOCPOINTER, 0UL, document);
        SendScintilla(SCI_RELEASEDOCUMENT, 0UL, document);
        ApplyOwnStyles();
    }
    SendScintilla(SCI_SETUNDOCOLLECTION, 0UL);
    // Every side reaches the pane as UTF-8, "Ansi" decoded through its code page.
    SendScintilla(SCI_SETCODEPAGE, static_cast<unsigned long>(SC_CP_UTF8));
    SendScintilla(SCI_CLEARALL);
    if (!large) // a large document was made at its size already
        SendScintilla(SCI_ALLOCATE, static_cast<unsigned long>(text.size() + 1000));
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(text.size()), text.constData());
    SendScintilla(SCI_SETUNDOCOLLECTION, 1UL);
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    SendScintilla(SCI_SETSAVEPOINT);
    SendScintilla(SCI_GOTOPOS, 0UL);
    SetReadOnly(wasReadOnly);
    // Room for the largest line number.
    const QByteArray widest = "_" + QByteArray::number(LineCount());
    SendScintilla(SCI_SETMARGINWIDTHN, 0UL, SendScintilla(SCI_TEXTWIDTH, STYLE_LINENUMBER, widest.constData()));
}

QByteArray CComparePane::Text() const
{
    const long length = Length();
    const char* data = reinterpret_cast<const char*>(SendScintilla(SCI_GETCHARACTERPOINTER));
    return QByteArray(data, length);
}

void CComparePane::ClearDifferences()
{
    // Only what was shown is taken away: a sweep over every line of a large file is
    // what made refreshing slow.
    if (!m_shown)
        return;
    for (int marker : {int(ChangedMarker), int(DeletedMarker), int(InsertedMarker), int(CurrentMarker)})
        SendScintilla(SCI_MARKERDELETEALL, static_cast<unsigned long>(marker));
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(ChangeIndicator));
    SendScintilla(SCI_INDICATORCLEARRANGE, 0UL, Length());
    const int lines = LineCount();
    for (const int line : m_annotated) {
        if (line < lines)
            SendScintilla(SCI_ANNOTATIONSETTEXT, static_cast<unsigned long>(line), static_cast<const char*>(nullptr));
    }
    m_annotated.clear();
    m_shown = false;
}

void CComparePane::ShowDifferences(const CompareModel& model, CompareModel::Side side,
                                   const std::vector<std::pair<int, std::vector<CharDiff::Span>>>& charSpans)
{
    ClearDifferences();
    m_shown = true;
    const int other = side == CompareModel::Left ? CompareModel::Right : CompareModel::Left;
    std::vector<std::pair<int, int>> fillers; // anchor line, rows
    for (const CompareModel::Block& block : model.Blocks()) {
        if (!block.difference)
            continue;
        const int start = block.start[side];
        const int count = block.count[side];
        const int paired = std::min(count, block.count[other]);
        for (int k = 0; k < count; ++k) {
            const int marker = k < paired ? ChangedMarker : side == CompareModel::Left ? DeletedMarker : InsertedMarker;
            SendScintilla(SCI_MARKERADD, static_cast<unsigned long>(start + k), static_cast<long>(marker));
        }
        const int filler = block.rows - count;
        if (filler > 0) {
            // Below the side's last line of the difference, or the line before it; an
            // insertion at the very top and one after the first line share line 0.
            const int anchor = std::max(0, start + count - 1);
            if (!fillers.empty() && fillers.back().first == anchor)
                fillers.back().second += filler;
            else
                fillers.emplace_back(anchor, filler);
        }
    }
    for (const auto& [anchor, filler] : fillers) {
        QByteArray rows(filler * 2 - 1, '\n');
        for (int r = 0; r < filler; ++r)
            rows[r * 2] = ' ';
        SendScintilla(SCI_ANNOTATIONSETTEXT, static_cast<unsigned long>(anchor), rows.constData());
        m_annotated.push_back(anchor);
        SendScintilla(SCI_ANNOTATIONSETSTYLE, static_cast<unsigned long>(anchor), 0L);
    }
    SendScintilla(SCI_SETINDICATORCURRENT, static_cast<unsigned long>(ChangeIndicator));
    for (const auto& [line, spans] : charSpans) {
        const long lineStart = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
        for (const CharDiff::Span& span : spans)
            SendScintilla(SCI_INDICATORFILLRANGE, static_cast<unsigned long>(lineStart + span.start), static_cast<long>(span.length));
    }
}

void CComparePane::MarkCurrent(int firstLine, int count)
{
    SendScintilla(SCI_MARKERDELETEALL, static_cast<unsigned long>(CurrentMarker));
    for (int k = 0; k < count; ++k)
        SendScintilla(SCI_MARKERADD, static_cast<unsigned long>(firstLine + k), static_cast<long>(CurrentMarker));
}

int CComparePane::CaretLine() const
{
    const long pos = SendScintilla(SCI_GETCURRENTPOS);
    return int(SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(pos)));
}

void CComparePane::GoToLine(int line)
{
    const long pos = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(std::max(0, line)));
    SendScintilla(SCI_SETEMPTYSELECTION, static_cast<unsigned long>(pos));
}

QByteArray CComparePane::LinesText(int first, int count) const
{
    if (count <= 0)
        return {};
    const long from = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(first));
    const int lines = LineCount();
    const long to = first + count >= lines ? Length()
                                           : SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(first + count));
    const char* data = reinterpret_cast<const char*>(SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(from),
                                                                   static_cast<long>(to - from)));
    return QByteArray(data, to - from);
}

QByteArray CComparePane::LineEnd() const
{
    if (LineCount() > 1) {
        const long end = SendScintilla(SCI_GETLINEENDPOSITION, 0UL);
        const char c = char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(end)));
        const char next = char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(end + 1)));
        if (c == '\r')
            return next == '\n' ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\r");
        return QByteArrayLiteral("\n");
    }
#ifdef Q_OS_WIN
    return QByteArrayLiteral("\r\n");
#else
    return QByteArrayLiteral("\n");
#endif
}

void CComparePane::ReplaceLines(int first, int count, QByteArray text)
{
    const int lines = LineCount();
    const long length = Length();
    // An empty text still has one (empty) line in the control.
    const bool empty = length == 0;
    long from = empty ? 0 : first >= lines ? length : SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(first));
    long to = empty ? 0 : first + count >= lines ? length : SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(first + count));
    const QByteArray eol = LineEnd();
    const bool atEnd = to == length;
    auto endsWithEol = [](const QByteArray& t) { return t.endsWith('\n') || t.endsWith('\r'); };
    if (!text.isEmpty()) {
        // Lines put in the middle end with a line end; lines put after a last line that
        // had none start with one.
        if (!atEnd && !endsWithEol(text))
            text += eol;
        if (atEnd && from == length && from > 0) {
            const char last = char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(length - 1)));
            if (last != '\n' && last != '\r')
                text.prepend(eol);
        }
    } else if (atEnd && from > 0 && to > from) {
        // Removing the last lines also removes the line end that led to them.
        const char last = char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(from - 1)));
        const char beforeLast = from > 1 ? char(SendScintilla(SCI_GETCHARAT, static_cast<unsigned long>(from - 2))) : '\0';
        if (last == '\n' && beforeLast == '\r')
            from -= 2;
        else if (last == '\n' || last == '\r')
            from -= 1;
    }
    SendScintilla(SCI_BEGINUNDOACTION);
    SendScintilla(SCI_SETTARGETSTART, static_cast<unsigned long>(from));
    SendScintilla(SCI_SETTARGETEND, static_cast<unsigned long>(to));
    SendScintilla(SCI_REPLACETARGET, static_cast<unsigned long>(text.size()), text.constData());
    SendScintilla(SCI_ENDUNDOACTION);
}
