#pragma once

#include <QString>
#include <QtGlobal>

// One style of a syntax definition. Colours are 0x00BBGGRR, as the control takes them.
struct SyntaxColour
{
    // The window colour of the desktop we target: white. Also what an empty colour text
    // in a definition file stands for.
    static constexpr quint32 DefaultBack = 0x00FFFFFF;

    quint32 fore = 0;
    quint32 back = DefaultBack;
    int style = 32;
    QString name = QStringLiteral("Default");
    bool eolFilled = false;

    bool operator==(const SyntaxColour&) const = default;
};
