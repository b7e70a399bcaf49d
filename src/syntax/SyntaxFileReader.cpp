// Reading of one definition file into a CSyntaxParser.
#include "CSyntaxParser.h"

#include "ColourUtil.h"
#include "SyntaxXml.h"

namespace {

QString ChildText(pugi::xml_node parent, const char* name)
{
    return SyntaxXml::InnerText(parent.child(name)).trimmed();
}

// Like atoi: leading blanks, an optional sign, then digits; anything else ends the number.
int DecimalValue(const char* text)
{
    const char* p = text;
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n')
        ++p;
    bool negative = false;
    if (*p == '-' || *p == '+')
        negative = (*p++ == '-');
    long long value = 0;
    while (*p >= '0' && *p <= '9' && value < 100000000LL)
        value = value * 10 + (*p++ - '0');
    return int(negative ? -value : value);
}

void ReadKeywords(pugi::xml_node properties, CSyntaxParser& parser)
{
    for (pugi::xml_node set : properties.children("KEYWORDS")) {
        for (pugi::xml_node keyword : set.children("KEYWORD")) {
            if (parser.keywordCount >= CSyntaxParser::MaxKeywordSets)
                return;
            parser.keywords[size_t(parser.keywordCount++)] = SyntaxXml::InnerText(keyword);
        }
    }
}

void ReadColours(pugi::xml_node properties, CSyntaxParser& parser)
{
    for (pugi::xml_node set : properties.children("COLOURS")) {
        for (pugi::xml_node element : set.children("COLOUR")) {
            if (parser.colourCount >= CSyntaxParser::MaxColours)
                return;
            const pugi::xml_attribute style = element.attribute("STYLE");
            const pugi::xml_attribute fore = element.attribute("HEXFORE");
            if (!style || !fore || !*style.value() || !*fore.value())
                continue;
            SyntaxColour colour;
            colour.style = DecimalValue(style.value());
            colour.fore = ColourUtil::FromHex(QString::fromUtf8(fore.value()));
            colour.back = ColourUtil::FromHex(QString::fromUtf8(element.attribute("HEXBACK").value()));
            colour.eolFilled = std::string_view(element.attribute("EOLFILLED").value()) == "True";
            colour.name = SyntaxXml::InnerText(element).trimmed();
            parser.colours[size_t(parser.colourCount++)] = colour;
        }
    }
}

} // namespace

bool CSyntaxParser::ReadFile(const QString& path, CSyntaxParser& parser)
{
    QByteArray bytes;
    if (!SyntaxXml::ReadBytes(path, bytes))
        return false;
    pugi::xml_document document;
    if (!SyntaxXml::Parse(bytes, document))
        return false;
    const pugi::xml_node properties = SyntaxXml::FindProperties(document);
    if (!properties)
        return false;

    CSyntaxParser read;
    read.fromFile = true;
    read.filePath = path;
    if (properties.child("MENU"))
        read.menuName = ChildText(properties, "MENU");
    if (properties.child("EXTENSION"))
        read.extensions = ChildText(properties, "EXTENSION");
    if (properties.child("LEXER"))
        read.lexer = ChildText(properties, "LEXER");
    if (properties.child("AUTONEST"))
        read.autoNest = ChildText(properties, "AUTONEST").compare(QLatin1String("Y"), Qt::CaseInsensitive) == 0;
    ReadKeywords(properties, read);
    ReadColours(properties, read);
    const pugi::xml_node comment = properties.child("COMMENT");
    // Comment tokens keep their blanks: "REM " needs its space.
    read.groupStart = SyntaxXml::InnerText(comment.child("GROUPSTART"));
    read.groupEnd = SyntaxXml::InnerText(comment.child("GROUPEND"));
    read.lineComment = SyntaxXml::InnerText(comment.child("LINE"));
    parser = read;
    return true;
}
