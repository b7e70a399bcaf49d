#pragma once

class CSyntaxParser;
class QsciScintillaBase;
struct ViewSettings;

// Puts a parser on an editing control: clears the styles, sets brace colours and tab
// settings from the view settings, chooses the lexer, then sends every colour and the
// keyword sets, in that order.
namespace SyntaxApplier {

void Apply(QsciScintillaBase& control, const CSyntaxParser& parser, const ViewSettings& settings);

// The control's styles run from 0 to 255; colours naming other numbers are not sent.
constexpr int MaxStyle = 255;

} // namespace SyntaxApplier
