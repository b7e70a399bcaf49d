#pragma once

#include "SyntaxColour.h"

#include <QString>

#include <array>

// One language the editor can colour, as read from its definition file.
// Records are copied by value; callers take one copy per operation.
class CSyntaxParser
{
public:
    static constexpr int MaxKeywordSets = 9;
    static constexpr int MaxColours = 127;

    CSyntaxParser();

    int colourCount = 0;
    int keywordCount = 0;
    bool fromFile = false;
    bool modified = false;
    QString menuName = QStringLiteral("Text");
    QString extensions = QStringLiteral(".*"); // with their dots, separated by ";"
    std::array<QString, MaxKeywordSets> keywords;
    QString groupStart = QStringLiteral("/");
    QString groupEnd = QStringLiteral("/");
    QString lineComment = QStringLiteral("//");
    QString lexer;
    std::array<SyntaxColour, MaxColours> colours; // the first colourCount are in use
    QString filePath;
    bool autoNest = false; // indent after an opening brace

    // True when one of the ";"-separated extensions equals `extension`, ignoring case.
    // ".*" in the list is a plain token: it matches only the ".*" that new documents ask for.
    bool MatchesExtension(const QString& extension) const;

    // A copy of colour `index`, or a default SyntaxColour when out of range.
    SyntaxColour GetColour(int index) const;
    // Keyword set `index`, or "" when out of range.
    QString GetKeywords(int index) const;

    // Writes fore, back and end-of-line fill of every colour back to the file, matched by
    // name. Only those three attribute values change; every other byte stays. False when
    // there was no file, it couldn't be parsed or written; the file is then untouched.
    bool SaveColours() const;

    // What the list hands out when there is no parser at an index: defaults, not from a
    // file, with a single black-on-white "Default" colour for style 0.
    static CSyntaxParser StandBy();

    // Reads one definition file into `parser`. False when the file can't be read, isn't
    // well-formed, or has no PROPERTIES element. The caller decides whether a parser
    // without colours counts.
    static bool ReadFile(const QString& path, CSyntaxParser& parser);

    bool operator==(const CSyntaxParser&) const = default;
};
