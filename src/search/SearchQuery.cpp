#include "SearchQuery.h"

#include <QCoreApplication>
#include <QStringList>
#include <algorithm>

namespace {

bool IsAscii(const QString& text)
{
    for (QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

// Escapes that stand for a set of characters or an assertion: they end a piece of text
// but are safe to step over.
bool IsClassEscape(QChar c)
{
    return QStringLiteral("dDwWsShHvVRXbBAzZGK").contains(c);
}

} // namespace

SearchQuery::SearchQuery(const QString& text, bool matchCase, bool matchWord, bool regExp)
    : m_matchWord(matchWord)
{
    if (text.isEmpty()) {
        m_error = QCoreApplication::translate("SearchQuery", "Please provide a search value");
        return;
    }
    if (!regExp && (matchCase || IsAscii(text))) {
        m_literal = text.toStdString();
        m_literalCaseSensitive = matchCase;
        return;
    }
    m_useExpression = true;
    m_pattern = regExp ? text : QRegularExpression::escape(text);
    m_patternOptions = QRegularExpression::MultilineOption
        | QRegularExpression::UseUnicodePropertiesOption;
    if (!matchCase)
        m_patternOptions |= QRegularExpression::CaseInsensitiveOption;
    QRegularExpression expression(m_pattern, m_patternOptions);
    if (!expression.isValid()) {
        m_error = QCoreApplication::translate("SearchQuery",
                                              "The regular expression is not valid: %1 (at position %2)")
                      .arg(expression.errorString())
                      .arg(expression.patternErrorOffset());
        return;
    }
    m_required = RequiredTexts(m_pattern, matchCase);
    m_requiredCaseSensitive = matchCase;
}

std::vector<std::string> SearchQuery::RequiredTexts(const QString& pattern, bool caseSensitive)
{
    // Split at the "|" that stand outside groups and classes.
    QStringList branches;
    qsizetype begin = 0;
    int depth = 0;
    const qsizetype n = pattern.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = pattern[i];
        if (c == QLatin1Char('\\')) {
            ++i;
        } else if (c == QLatin1Char('[')) {
            qsizetype j = i + 1;
            if (j < n && pattern[j] == QLatin1Char('^'))
                ++j;
            if (j < n && pattern[j] == QLatin1Char(']'))
                ++j;
            while (j < n && pattern[j] != QLatin1Char(']'))
                j += pattern[j] == QLatin1Char('\\') ? 2 : 1;
            i = j;
        } else if (c == QLatin1Char('(')) {
            ++depth;
        } else if (c == QLatin1Char(')')) {
            --depth;
        } else if (c == QLatin1Char('|') && depth == 0) {
            branches.append(pattern.mid(begin, i - begin));
            begin = i + 1;
        }
    }
    branches.append(pattern.mid(begin));

    std::vector<std::string> pieces;
    for (const QString& branch : branches) {
        std::string piece = RequiredText(branch, caseSensitive);
        if (piece.empty())
            return {};
        if (std::find(pieces.begin(), pieces.end(), piece) == pieces.end())
            pieces.push_back(std::move(piece));
    }
    return pieces;
}

std::string SearchQuery::RequiredText(const QString& pattern, bool caseSensitive)
{
    // Inline options can switch case or meaning part way: too involved to tell.
    for (qsizetype i = 0; i + 2 < pattern.size(); ++i) {
        if (pattern[i] == QLatin1Char('(') && pattern[i + 1] == QLatin1Char('?')
            && (pattern[i + 2].isLetter() || pattern[i + 2] == QLatin1Char('-')
                || pattern[i + 2] == QLatin1Char('^')))
            return {};
        if (pattern[i] == QLatin1Char('(') && pattern[i + 1] == QLatin1Char('*'))
            return {}; // verbs such as (*UCP) or (*CRLF)
    }

    QString best;
    QString run;
    auto commit = [&] {
        if (run.toUtf8().size() > best.toUtf8().size())
            best = run;
        run.clear();
    };
    // Append one literal character; `lastCharLength` tells a quantifier what to drop.
    qsizetype lastCharLength = 0;
    auto literal = [&](QString c) {
        const bool ascii = c.size() == 1 && c[0].unicode() < 0x80;
        if (!caseSensitive && !ascii) {
            commit();
            lastCharLength = 0;
            return;
        }
        run += c;
        lastCharLength = c.size();
    };

    const qsizetype n = pattern.size();
    qsizetype i = 0;
    while (i < n) {
        const QChar c = pattern[i];
        switch (c.unicode()) {
        case '\\': {
            if (i + 1 >= n)
                return {};
            const QChar e = pattern[i + 1];
            if (e.unicode() < 0x80 && e.isLetterOrNumber()) {
                if (!IsClassEscape(e))
                    return {}; // \x41, \Q...\E, back references, \p{..}: give up
                commit();
                lastCharLength = 0;
                i += 2;
            } else if (e.isHighSurrogate() && i + 2 < n) {
                literal(pattern.mid(i + 1, 2));
                i += 3;
            } else {
                literal(QString(e));
                i += 2;
            }
            break;
        }
        case '[': {
            // Skip the class: "]" first stands for itself, escapes and [:name:] inside.
            qsizetype j = i + 1;
            if (j < n && pattern[j] == QLatin1Char('^'))
                ++j;
            if (j < n && pattern[j] == QLatin1Char(']'))
                ++j;
            bool closed = false;
            while (j < n) {
                if (pattern[j] == QLatin1Char('\\')) {
                    j += 2;
                } else if (pattern[j] == QLatin1Char('[') && j + 1 < n && pattern[j + 1] == QLatin1Char(':')) {
                    const qsizetype end = pattern.indexOf(QLatin1String(":]"), j + 2);
                    if (end < 0)
                        return {};
                    j = end + 2;
                } else if (pattern[j] == QLatin1Char(']')) {
                    closed = true;
                    ++j;
                    break;
                } else {
                    ++j;
                }
            }
            if (!closed)
                return {};
            commit();
            lastCharLength = 0;
            i = j;
            break;
        }
        case '(': {
            // A group is opaque: skip it whole, minding escapes and classes.
            int depth = 0;
            qsizetype j = i;
            while (j < n) {
                const QChar g = pattern[j];
                if (g == QLatin1Char('\\')) {
                    j += 2;
                    continue;
                }
                if (g == QLatin1Char('[')) {
                    qsizetype k = j + 1;
                    if (k < n && pattern[k] == QLatin1Char('^'))
                        ++k;
                    if (k < n && pattern[k] == QLatin1Char(']'))
                        ++k;
                    while (k < n && pattern[k] != QLatin1Char(']'))
                        k += pattern[k] == QLatin1Char('\\') ? 2 : 1;
                    j = k + 1;
                    continue;
                }
                if (g == QLatin1Char('('))
                    ++depth;
                else if (g == QLatin1Char(')') && --depth == 0)
                    break;
                ++j;
            }
            if (j >= n)
                return {};
            commit();
            lastCharLength = 0;
            i = j + 1;
            break;
        }
        case '|':
            return {}; // alternatives: no one piece is required
        case '*':
        case '?':
        case '+':
        case '{':
            // The quantified character may be absent or repeated: it leaves the piece.
            if (c == QLatin1Char('{')) {
                const qsizetype close = pattern.indexOf(QLatin1Char('}'), i);
                if (close < 0) {
                    literal(QString(c)); // a lone "{" is a plain character in PCRE2
                    ++i;
                    break;
                }
                i = close + 1;
            } else {
                ++i;
            }
            run.chop(lastCharLength);
            commit();
            lastCharLength = 0;
            break;
        case '.':
        case '^':
        case '$':
        case ')':
            commit();
            lastCharLength = 0;
            ++i;
            break;
        default:
            if (c.isHighSurrogate() && i + 1 < n) {
                literal(pattern.mid(i, 2));
                i += 2;
            } else {
                literal(QString(c));
                ++i;
            }
            break;
        }
    }
    commit();
    return best.toStdString();
}
