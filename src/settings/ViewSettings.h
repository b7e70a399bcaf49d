#pragma once

#include <QString>
#include <QtGlobal>

// The display settings the main frame holds and copies to every text view.
// Colours are 0x00BBGGRR, as the control takes them.
struct ViewSettings
{
    int WordWrap = 0;
    int Whitespace = 0;
    int LineEndings = 0;
    int CaretLine = 0;
    int LineNumbers = 0;
    int FontItalic = 0;
    int FontBold = 0;
    int CodeFolding = 0;
    QString FontStyle = QStringLiteral("Courier New"); // at most 31 characters
    int FontSize = 10;
    int TabGuides = 0;
    int TabAsSpaces = 1;
    int TabWidth = 4;
    int MatchBracket = 0;
    quint32 BraceBadColour = 255;
    quint32 BraceHighlight = 255;
    quint32 CaretLineColour = 15651521; // 0xEED2C1
    int CaretLineTransparency = 255;
    int BlockSelect = 0;
    int LargeTBIcons = 1;

    static constexpr int MaxFontStyleLength = 31;

    bool operator==(const ViewSettings&) const = default;
};
