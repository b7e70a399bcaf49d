#include "SyntaxColourWriter.h"

#include "CSyntaxParser.h"
#include "ColourUtil.h"
#include "SyntaxXml.h"
#include "editor/DiskSync.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>
#include <optional>
#include <vector>

namespace {

struct Edit
{
    qsizetype offset = 0;
    qsizetype length = 0;
    QByteArray text;
};

struct AttributeSpan
{
    QByteArray name;
    qsizetype valueStart = 0;
    qsizetype valueEnd = 0;
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Scans the start tag whose name begins at `nameOffset`. The document was parsed
// already, so the tag is well-formed. `insertAt` receives the place right after the
// last attribute, where new attributes go.
bool ScanStartTag(const QByteArray& text, qsizetype nameOffset,
                  std::vector<AttributeSpan>& attributes, qsizetype& insertAt)
{
    const qsizetype size = text.size();
    qsizetype pos = nameOffset;
    while (pos < size && !IsBlank(text[pos]) && text[pos] != '/' && text[pos] != '>')
        ++pos;
    insertAt = pos;
    for (;;) {
        while (pos < size && IsBlank(text[pos]))
            ++pos;
        if (pos >= size)
            return false;
        if (text[pos] == '/' || text[pos] == '>')
            return true;
        const qsizetype nameStart = pos;
        while (pos < size && !IsBlank(text[pos]) && text[pos] != '=')
            ++pos;
        AttributeSpan span;
        span.name = text.mid(nameStart, pos - nameStart);
        while (pos < size && IsBlank(text[pos]))
            ++pos;
        if (pos >= size || text[pos] != '=')
            return false;
        ++pos;
        while (pos < size && IsBlank(text[pos]))
            ++pos;
        if (pos >= size || (text[pos] != '"' && text[pos] != '\''))
            return false;
        const char quote = text[pos++];
        span.valueStart = pos;
        while (pos < size && text[pos] != quote)
            ++pos;
        if (pos >= size)
            return false;
        span.valueEnd = pos++;
        insertAt = pos;
        attributes.push_back(span);
    }
}

const SyntaxColour* FindColour(const CSyntaxParser& parser, const QString& name)
{
    for (int i = 0; i < parser.colourCount; ++i) {
        if (parser.colours[size_t(i)].name == name)
            return &parser.colours[size_t(i)];
    }
    return nullptr;
}

bool EditsForElement(const QByteArray& text, pugi::xml_node element, const SyntaxColour& colour,
                     std::vector<Edit>& edits)
{
    const ptrdiff_t offset = element.offset_debug();
    if (offset < 0 || offset >= text.size())
        return false;
    std::vector<AttributeSpan> attributes;
    qsizetype insertAt = 0;
    if (!ScanStartTag(text, qsizetype(offset), attributes, insertAt))
        return false;

    const std::pair<QByteArray, QByteArray> values[] = {
        {"HEXFORE", ColourUtil::ToHex(colour.fore).toLatin1()},
        {"HEXBACK", ColourUtil::ToHex(colour.back).toLatin1()},
        {"EOLFILLED", colour.eolFilled ? QByteArray("True") : QByteArray("False")},
    };
    QByteArray added;
    for (const auto& pair : values) {
        // Plain references: clang 14 cannot capture structured bindings in a lambda.
        const QByteArray& name = pair.first;
        const QByteArray& value = pair.second;
        const auto found = std::find_if(attributes.begin(), attributes.end(),
                                        [&name](const AttributeSpan& a) { return a.name == name; });
        if (found != attributes.end())
            edits.push_back({found->valueStart, found->valueEnd - found->valueStart, value});
        else
            added += ' ' + name + "=\"" + value + '"';
    }
    if (!added.isEmpty())
        edits.push_back({insertAt, 0, added});
    return true;
}

// The text as UTF-8 (or single-byte) bytes whose offsets pugixml reports, and how to
// turn it back into the file's own encoding.
struct FileText
{
    QByteArray bytes;
    QByteArray mark;
    std::optional<QStringConverter::Encoding> wideEncoding;
};

bool Decode(const QByteArray& raw, FileText& text)
{
    const auto startsWith = [&raw](std::initializer_list<unsigned char> prefix) {
        if (raw.size() < qsizetype(prefix.size()))
            return false;
        qsizetype i = 0;
        for (unsigned char c : prefix) {
            if (static_cast<unsigned char>(raw[i++]) != c)
                return false;
        }
        return true;
    };
    if (startsWith({0xFF, 0xFE, 0x00, 0x00}) || startsWith({0x00, 0x00, 0xFE, 0xFF}))
        return false; // UTF-32: we don't write it, so we leave it alone
    if (startsWith({0xFF, 0xFE}) || startsWith({0xFE, 0xFF})) {
        const auto encoding = startsWith({0xFF, 0xFE}) ? QStringConverter::Utf16LE : QStringConverter::Utf16BE;
        QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
        const QString decoded = decoder.decode(raw.mid(2));
        if (decoder.hasError())
            return false;
        text.bytes = decoded.toUtf8();
        text.mark = raw.left(2);
        text.wideEncoding = encoding;
        return true;
    }
    // Without a mark, a NUL among the first bytes means a wide encoding we can't place.
    if (raw.left(4).contains('\0'))
        return false;
    text.bytes = raw;
    return true;
}

bool Encode(const FileText& text, const QByteArray& edited, QByteArray& raw)
{
    if (!text.wideEncoding) {
        raw = edited;
        return true;
    }
    QStringEncoder encoder(*text.wideEncoding, QStringConverter::Flag::Stateless);
    raw = text.mark + QByteArray(encoder.encode(QString::fromUtf8(edited)));
    return !encoder.hasError();
}

} // namespace

namespace SyntaxColourWriter {

bool Write(const CSyntaxParser& parser)
{
    if (parser.filePath.isEmpty() || !QFileInfo(parser.filePath).isFile())
        return false;
    QByteArray raw;
    if (!SyntaxXml::ReadBytes(parser.filePath, raw))
        return false;
    FileText text;
    if (!Decode(raw, text))
        return false;

    // Parsed as UTF-8 without conversion, so that node offsets are offsets into `text`.
    pugi::xml_document document;
    if (!document.load_buffer(text.bytes.constData(), size_t(text.bytes.size()),
                              pugi::parse_default, pugi::encoding_utf8))
        return false;
    const pugi::xml_node properties = SyntaxXml::FindProperties(document);
    if (!properties)
        return false;

    std::vector<Edit> edits;
    for (pugi::xml_node set : properties.children("COLOURS")) {
        for (pugi::xml_node element : set.children("COLOUR")) {
            const SyntaxColour* colour = FindColour(parser, SyntaxXml::InnerText(element).trimmed());
            if (colour && !EditsForElement(text.bytes, element, *colour, edits))
                return false;
        }
    }

    std::sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return a.offset > b.offset; });
    QByteArray edited = text.bytes;
    for (const Edit& edit : edits)
        edited.replace(edit.offset, edit.length, edit.text);
    if (edited == text.bytes)
        return true;

    QByteArray output;
    if (!Encode(text, edited, output))
        return false;
    // Written beside the old file and renamed over it, so a failed write leaves it whole;
    // directly only where the folder takes no new file.
    QSaveFile file(parser.filePath);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(output) != output.size() || !file.flush() || !SyncToDisk(file.handle(), nullptr)) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace SyntaxColourWriter
