// The encoding detector, the decoders and the encoders on hostile bytes.
// Properties: detection never reads outside the sample; decoding then encoding gives back
// the file's bytes for every form we write, whenever nothing was lost in decoding; and
// valid UTF-8 text survives a trip through every form. The pieces fed to the coders are
// cut at places the input chooses, so that units and sequences split between pieces are
// exercised.
#include "FuzzInput.h"

#include "editor/EncodingReader.h"
#include "editor/EncodingWriter.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"

#include <string>
#include <vector>

namespace {

const int WrittenForms[] = {TextEncoding::Utf8, TextEncoding::Utf16LE, TextEncoding::Utf16BE,
                            TextEncoding::Ansi, TextEncoding::Utf32LE, TextEncoding::Utf32BE};

// Piece lengths for the coders; whatever is left after them goes in one last piece.
std::vector<std::size_t> Cuts(FuzzInput& in)
{
    std::vector<std::size_t> pieces;
    const int count = in.Byte() % 6;
    for (int i = 0; i < count; ++i)
        pieces.push_back(std::size_t(in.Byte()) % 9 + 1);
    return pieces;
}

std::string Decode(int encoding, int bomLength, const std::string& bytes,
                   const std::vector<std::size_t>& cuts, std::size_t& lost)
{
    EncodingReader reader(encoding, bomLength);
    std::string text;
    std::size_t at = 0;
    for (std::size_t piece : cuts) {
        const std::size_t n = std::min(piece, bytes.size() - at);
        text += reader.Feed(bytes.data() + at, n);
        at += n;
    }
    text += reader.Feed(bytes.data() + at, bytes.size() - at);
    text += reader.Finish();
    lost = reader.LostBytes();
    return text;
}

std::string Encode(int encoding, bool mark, const std::string& text,
                   const std::vector<std::size_t>& cuts, std::size_t& unencodable)
{
    EncodingWriter writer(encoding, mark);
    std::string bytes;
    std::size_t at = 0;
    for (std::size_t piece : cuts) {
        const std::size_t n = std::min(piece, text.size() - at);
        bytes += writer.Encode(text.data() + at, n);
        at += n;
    }
    bytes += writer.Encode(text.data() + at, text.size() - at);
    bytes += writer.Finish();
    unencodable = writer.Unencodable();
    return bytes;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing past U+10FFFF.
bool IsStrictUtf8(const std::string& s)
{
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::size_t n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
        if (n == 0 || i + n > s.size())
            return false;
        char32_t cp = n == 1 ? c : c & (0x7F >> n);
        for (std::size_t k = 1; k < n; ++k) {
            const auto b = static_cast<unsigned char>(s[i + k]);
            if ((b & 0xC0) != 0x80)
                return false;
            cp = cp << 6 | (b & 0x3F);
        }
        const char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (cp < least[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += n;
    }
    return true;
}

std::size_t UnitSize(int encoding)
{
    switch (encoding) {
    case TextEncoding::Utf16LE:
    case TextEncoding::Utf16BE: return 2;
    case TextEncoding::Utf32LE:
    case TextEncoding::Utf32BE: return 4;
    default: return 1;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The detector sees the raw input first, as it sees a file's first bytes.
    {
        TextFileDetector detector;
        detector.ExamineBuffer(reinterpret_cast<const char*>(data), size);
        FUZZ_CHECK(detector.Encoding() >= 0 && detector.Encoding() <= TextEncoding::UtfEbcdic);
        FUZZ_CHECK(detector.BomLength() >= 0 && std::size_t(detector.BomLength()) <= std::min<std::size_t>(size, 4));
        // Whatever was detected must decode without harm.
        std::size_t lost = 0;
        const std::string all(reinterpret_cast<const char*>(data), size);
        Decode(detector.Encoding(), detector.BomLength(), all, {7, 1}, lost);
    }

    FuzzInput in(data, size);
    const int encoding = WrittenForms[in.Byte() % std::size(WrittenForms)];
    const bool withMark = in.Flag() && !TextEncoding::Mark(encoding).isEmpty()
        && encoding != TextEncoding::Ansi;
    const std::vector<std::size_t> readCuts = Cuts(in);
    const std::vector<std::size_t> writeCuts = Cuts(in);
    const std::string body = in.Rest();

    // A file's bytes: decode, encode, compare.
    const QByteArray markBytes = withMark ? TextEncoding::Mark(encoding) : QByteArray();
    const std::string file = std::string(markBytes.constData(), std::size_t(markBytes.size())) + body;
    std::size_t lost = 0;
    const std::string text = Decode(encoding, int(markBytes.size()), file, readCuts, lost);
    std::size_t unencodable = 0;
    const std::string again = Encode(encoding, withMark, text, writeCuts, unencodable);
    if (lost == 0 && body.size() % UnitSize(encoding) == 0) {
        // Whatever a file held, its own encoding can write it back.
        FUZZ_CHECK(unencodable == 0);
        FUZZ_CHECK(again == file);
    }

    // Text typed into the editor: encode, decode, compare. Only a code page can meet a
    // character it has no byte for; the writer then says so (the save asks the user
    // first) and the rest of the text still comes back in order.
    if (IsStrictUtf8(body)) {
        const std::string bytes = Encode(encoding, withMark, body, writeCuts, unencodable);
        const std::string back = Decode(encoding, int(markBytes.size()), bytes, readCuts, lost);
        FUZZ_CHECK(lost == 0);
        if (unencodable == 0)
            FUZZ_CHECK(back == body);
        else
            FUZZ_CHECK(encoding == TextEncoding::Ansi && back.size() < body.size());
    }
    return 0;
}
