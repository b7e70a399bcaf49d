#pragma once

class CSyntaxParser;

// Puts a parser's colours back into its definition file by editing the file's text:
// the values of HEXFORE, HEXBACK and EOLFILLED of each matching COLOUR element are
// replaced (or the attributes added), and nothing else in the file changes.
namespace SyntaxColourWriter {

bool Write(const CSyntaxParser& parser);

} // namespace SyntaxColourWriter
