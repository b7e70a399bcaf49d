#pragma once

#include "framework/ThemeColours.h"

class CSyntaxParser;
class CSyntaxParserList;
class QString;
class QsciScintillaBase;
struct ViewSettings;

// Puts a parser on an editing control: clears the styles, sets brace colours and tab
// settings from the view settings, chooses the lexer, then sends every colour and the
// keyword sets, in that order.
namespace SyntaxApplier {

// The definition's colours, written for a white page, are carried over to `theme`.
void Apply(QsciScintillaBase& control, const CSyntaxParser& parser, const ViewSettings& settings,
           const ThemeColours& theme = ThemeColours::Current());
// The same for a control that may not exist (yet); a null control is left alone.
void Apply(QsciScintillaBase* control, const CSyntaxParser& parser, const ViewSettings& settings);

// The control's own parts in the theme's colours: the default style, caret, selection,
// margins, line numbers and visible whitespace. Apply does this too.
void ApplyTheme(QsciScintillaBase& control, const ThemeColours& theme);

// Applies the first parser of `parsers` whose extensions hold `extension` (with its dot;
// ".*" for a new document) and returns its index. Returns -1 and leaves the control as
// it is when no parser claims the extension.
int ApplyForExtension(QsciScintillaBase& control, const CSyntaxParserList& parsers, const QString& extension,
                      const ViewSettings& settings, const ThemeColours& theme = ThemeColours::Current());

// The control's styles run from 0 to 255; colours naming other numbers are not sent.
constexpr int MaxStyle = 255;

} // namespace SyntaxApplier
