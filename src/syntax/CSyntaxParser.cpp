#include "CSyntaxParser.h"

#include "SyntaxColourWriter.h"

#include <QStringList>

CSyntaxParser::CSyntaxParser()
{
    // Unused slots are plain "Default" entries for style 0.
    for (SyntaxColour& colour : colours)
        colour.style = 0;
}

bool CSyntaxParser::MatchesExtension(const QString& extension) const
{
    const QStringList tokens = extensions.split(QLatin1Char(';'));
    for (const QString& token : tokens) {
        if (token.compare(extension, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

SyntaxColour CSyntaxParser::GetColour(int index) const
{
    if (index < 0 || index >= MaxColours)
        return SyntaxColour();
    return colours[size_t(index)];
}

QString CSyntaxParser::GetKeywords(int index) const
{
    if (index < 0 || index >= MaxKeywordSets)
        return QString();
    return keywords[size_t(index)];
}

bool CSyntaxParser::SaveColours() const
{
    return SyntaxColourWriter::Write(*this);
}

CSyntaxParser CSyntaxParser::StandBy()
{
    CSyntaxParser parser;
    parser.colourCount = 1;
    parser.colours[0].style = 0;
    parser.colours[0].fore = 0x000000;
    parser.colours[0].back = 0xFFFFFF;
    return parser;
}
