#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>

// Colour texts of the definition files: a hash sign and six hexadecimal digits.
namespace ColourUtil {

// "#RRGGBB" to 0x00BBGGRR. Digits are taken by position; a missing or non-hexadecimal
// digit counts as 0, and an empty text gives SyntaxColour::DefaultBack.
quint32 FromHex(QStringView text);

// 0x00BBGGRR to "#RRGGBB" in capitals.
QString ToHex(quint32 colour);

} // namespace ColourUtil
