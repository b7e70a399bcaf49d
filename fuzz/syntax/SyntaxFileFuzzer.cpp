// Syntax definition files as a user may drop them in the folder: any bytes, any
// encoding, any shape of XML. Reading must end with a parser or a refusal. Writing the
// colours back follows the file's own names (every element takes the first colour of its
// name), so a second write of what the first one left must change nothing, and the file
// must still read.
#include "FuzzInput.h"
#include "FuzzTempFile.h"

#include "syntax/CSyntaxParser.h"
#include "syntax/SyntaxColourWriter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzTempFile file("fuzz.config");
    file.Write(std::string(reinterpret_cast<const char*>(data), size));
    CSyntaxParser parser;
    if (!CSyntaxParser::ReadFile(file.Path(), parser))
        return 0;
    FUZZ_CHECK(parser.keywordCount >= 0 && parser.keywordCount <= CSyntaxParser::MaxKeywordSets);
    FUZZ_CHECK(parser.colourCount >= 0 && parser.colourCount <= CSyntaxParser::MaxColours);
    if (!SyntaxColourWriter::Write(parser))
        return 0;
    const std::string first = file.Read();
    CSyntaxParser again;
    FUZZ_CHECK(CSyntaxParser::ReadFile(file.Path(), again));
    FUZZ_CHECK(again.menuName == parser.menuName && again.keywords == parser.keywords);
    FUZZ_CHECK(SyntaxColourWriter::Write(again));
    FUZZ_CHECK(file.Read() == first);
    return 0;
}
