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

void Apply(QsciScintillaBase& control, const CSyntaxParser& parser, const ViewSettings& settings)
{
    using Sci = QsciScintillaBase;
    Send(control, Sci::SCI_STYLECLEARALL);
    Send(control, Sci::SCI_STYLESETFORE, BraceBadStyle, long(settings.BraceBadColour));
    Send(control, Sci::SCI_STYLESETFORE, BraceLightStyle, long(settings.BraceHighlight));
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
        Send(control, Sci::SCI_STYLESETFORE, style, long(colour.fore));
        Send(control, Sci::SCI_STYLESETBACK, style, long(colour.back));
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
                      const ViewSettings& settings)
{
    const int index = parsers.FindByExtension(extension);
    if (index >= 0)
        Apply(control, parsers.GetParser(index), settings);
    return index;
}

} // namespace SyntaxApplier
