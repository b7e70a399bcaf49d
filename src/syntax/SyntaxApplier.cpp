#include "SyntaxApplier.h"

#include "CSyntaxParser.h"
#include "CSyntaxParserList.h"
#include "settings/ViewSettings.h"

#include <Qsci/qsciscintillabase.h>

namespace {

constexpr int BraceLightStyle = 34;
constexpr int BraceBadStyle = 35;

long Send(QsciScintillaBase& control, unsigned int message, unsigned long wParam = 0, long lParam = 0)
{
    return control.SendScintilla(message, wParam, lParam);
}

void SendText(QsciScintillaBase& control, unsigned int message, uintptr_t wParam, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    control.SendScintilla(message, wParam, bytes.constData());
}

} // namespace

namespace SyntaxApplier {

void ApplyTheme(QsciScintillaBase& control, const ThemeColours& theme)
{
    using Sci = QsciScintillaBase;
    Send(control, Sci::SCI_SETCARETFORE, theme.Caret());
    Send(control, Sci::SCI_SETSELBACK, 1, long(theme.SelectionBack()));
    Send(control, Sci::SCI_SETSELFORE, 1, long(theme.SelectionText()));
    Send(control, Sci::SCI_SETFOLDMARGINCOLOUR, 1, long(theme.FoldMarginBack()));
    Send(control, Sci::SCI_SETFOLDMARGINHICOLOUR, 1, long(theme.FoldMarginBack()));
    Send(control, Sci::SCI_SETMARGINBACKN, 0, long(theme.MarginBack()));
    Send(control, Sci::SCI_STYLESETFORE, Sci::STYLE_LINENUMBER, long(theme.LineNumber()));
    Send(control, Sci::SCI_STYLESETBACK, Sci::STYLE_LINENUMBER, long(theme.MarginBack()));
    Send(control, Sci::SCI_STYLESETFORE, Sci::STYLE_INDENTGUIDE, long(theme.Whitespace()));
    Send(control, Sci::SCI_SETWHITESPACEFORE, 1, long(theme.Whitespace()));
    Send(control, Sci::SCI_MARKERSETBACK, 1, long(theme.BookmarkBack()));
    Send(control, Sci::SCI_MARKERSETFORE, 1, long(theme.BookmarkFore()));
    for (int marker = int(Sci::SC_MARKNUM_FOLDEREND); marker <= int(Sci::SC_MARKNUM_FOLDEROPEN); ++marker) {
        Send(control, Sci::SCI_MARKERSETFORE, (unsigned long)marker, long(theme.FoldMarkerFore()));
        Send(control, Sci::SCI_MARKERSETBACK, (unsigned long)marker, long(theme.FoldMarkerBack()));
    }
}

void Apply(QsciScintillaBase& control, const CSyntaxParser& parser, const ViewSettings& settings,
           const ThemeColours& theme)
{
    using Sci = QsciScintillaBase;
    // Every style starts from the page's colours; a definition's own default overrides it.
    Send(control, Sci::SCI_STYLESETFORE, Sci::STYLE_DEFAULT, long(theme.Text()));
    Send(control, Sci::SCI_STYLESETBACK, Sci::STYLE_DEFAULT, long(theme.Background()));
    Send(control, Sci::SCI_STYLECLEARALL);
    ApplyTheme(control, theme);
    Send(control, Sci::SCI_STYLESETFORE, BraceBadStyle, long(theme.Fore(settings.BraceBadColour, theme.Background())));
    Send(control, Sci::SCI_STYLESETFORE, BraceLightStyle,
         long(theme.Fore(settings.BraceHighlight, theme.Background())));
    Send(control, Sci::SCI_STYLESETBOLD, BraceLightStyle, 1);
    Send(control, Sci::SCI_SETUSETABS, settings.TabAsSpaces ? 0 : 1);
    Send(control, Sci::SCI_SETINDENTATIONGUIDES, settings.TabGuides ? 1 : 0);
    Send(control, Sci::SCI_SETTABWIDTH, (unsigned long)settings.TabWidth);
    Send(control, Sci::SCI_SETINDENT, (unsigned long)settings.TabWidth);
    SendText(control, Sci::SCI_SETLEXERLANGUAGE, 0, parser.lexer);
    // Style bits are fixed at 8 in this control; the pair is kept for older builds.
    Send(control, Sci::SCI_SETSTYLEBITS, (unsigned long)Send(control, Sci::SCI_GETSTYLEBITSNEEDED));

    const int count = qBound(0, parser.colourCount, CSyntaxParser::MaxColours);
    for (int i = 0; i < count; ++i) {
        const SyntaxColour& colour = parser.colours[size_t(i)];
        if (colour.style < 0 || colour.style > MaxStyle)
            continue;
        const auto style = (unsigned long)colour.style;
        const quint32 back = theme.Back(colour.back);
        Send(control, Sci::SCI_STYLESETFORE, style, long(theme.Fore(colour.fore, back)));
        Send(control, Sci::SCI_STYLESETBACK, style, long(back));
        Send(control, Sci::SCI_STYLESETEOLFILLED, style, long(colour.eolFilled ? 1 : 0));
    }
    // Every set is sent, the empty ones too, so that nothing of an earlier parser stays.
    for (int i = 0; i < CSyntaxParser::MaxKeywordSets; ++i)
        SendText(control, Sci::SCI_SETKEYWORDS, uintptr_t(i), parser.keywords[size_t(i)]);
}

void Apply(QsciScintillaBase* control, const CSyntaxParser& parser, const ViewSettings& settings)
{
    if (control)
        Apply(*control, parser, settings);
}

int ApplyForExtension(QsciScintillaBase& control, const CSyntaxParserList& parsers, const QString& extension,
                      const ViewSettings& settings, const ThemeColours& theme)
{
    const int index = parsers.FindByExtension(extension);
    if (index >= 0)
        Apply(control, parsers.GetParser(index), settings, theme);
    return index;
}

} // namespace SyntaxApplier
