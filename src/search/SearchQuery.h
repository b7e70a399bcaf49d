#pragma once

#include <QRegularExpression>
#include <QString>
#include <string>
#include <vector>

// The find text and options of a search, checked and prepared once for all threads.
// A plain text is searched as bytes. A regular expression, or a plain text that needs
// Unicode case folding, runs through PCRE2; when the expression holds a piece of text
// that every match must contain, that piece is searched as bytes first and only the lines
// that hold it reach the expression.
class SearchQuery
{
public:
    SearchQuery() = default;
    SearchQuery(const QString& text, bool matchCase, bool matchWord, bool regExp);

    bool IsValid() const { return m_error.isEmpty(); }
    QString ErrorString() const { return m_error; }

    bool MatchWord() const { return m_matchWord; }
    bool UsesExpression() const { return m_useExpression; }

    // Plain search: the UTF-8 bytes to find, and whether case matters.
    const std::string& Literal() const { return m_literal; }
    bool LiteralCaseSensitive() const { return m_literalCaseSensitive; }

    // Expression search: pattern and options for QRegularExpression, and pieces of text
    // of which every match holds at least one (none when that could not be proven).
    const QString& Pattern() const { return m_pattern; }
    QRegularExpression::PatternOptions PatternOptions() const { return m_patternOptions; }
    const std::vector<std::string>& RequiredLiterals() const { return m_required; }
    bool RequiredCaseSensitive() const { return m_requiredCaseSensitive; }

    // The longest piece of plain text that every match of `pattern` must contain, or an
    // empty string when the pattern is too involved to tell. Letters other than ASCII are
    // left out when case is ignored, since their case folding is not a byte mapping.
    static std::string RequiredText(const QString& pattern, bool caseSensitive);
    // The same for a pattern of alternatives "a|b|c": one piece per alternative, or none
    // when any alternative has none.
    static std::vector<std::string> RequiredTexts(const QString& pattern, bool caseSensitive);

private:
    QString m_error;
    bool m_matchWord = false;
    bool m_useExpression = false;
    std::string m_literal;
    bool m_literalCaseSensitive = true;
    QString m_pattern;
    QRegularExpression::PatternOptions m_patternOptions;
    std::vector<std::string> m_required;
    bool m_requiredCaseSensitive = true;
};
