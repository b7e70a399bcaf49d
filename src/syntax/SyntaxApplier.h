#pragma once

class CSyntaxParser;
class CSyntaxParserList;
class QString;
class QsciScintillaBase;
struct ViewSettings;

// Puts a parser on an editing control: clears the styles, sets brace colours and tab
// settings from the view settings, chooses the lexer, then sends every colour and the
// keyword sets, in that order.
namespace SyntaxApplier {

void Apply(QsciScintillaBase& control, const CSyntaxParser& parser, const ViewSettings& settings);
// The same for a control that may not exist (yet); a null control is left alone.
void Apply(QsciScintillaBase* control, const CSyntaxParser& parser, const ViewSettings& settings);

// Applies the first parser of `parsers` whose extensions hold `extension` (with its dot;
// ".*" for a new document) and returns its index. Returns -1 and leaves the control as
// it is when no parser claims the extension.
int ApplyForExtension(QsciScintillaBase& control, const CSyntaxParserList& parsers, const QString& extension,
                      const ViewSettings& settings);

// The control's styles run from 0 to 255; colours naming other numbers are not sent.
constexpr int MaxStyle = 255;

} // namespace SyntaxApplier
