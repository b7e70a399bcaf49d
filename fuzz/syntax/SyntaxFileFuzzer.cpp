// Syntax definition files as a user may drop them in the folder: any bytes, any
// encoding, any shape of XML. Reading must end with a parser or a refusal, and a parser
// that was read must read back the same after its colours are written to the file.
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
    if (!SyntaxColourWriter::Write(parser))
        return 0;
    CSyntaxParser again;
    FUZZ_CHECK(CSyntaxParser::ReadFile(file.Path(), again));
    FUZZ_CHECK(again == parser);
    return 0;
}
