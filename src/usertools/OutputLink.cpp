#include "usertools/OutputLink.h"

#include <QDir>
#include <QFileInfo>
#include <QList>

#include <algorithm>

namespace {

struct Candidate
{
    qsizetype pathEnd;
    int line;
    int column;
};

// Reads a decimal number at text[i]; returns its end or -1.
qsizetype ReadNumber(QStringView text, qsizetype i, int& value)
{
    qsizetype j = i;
    qint64 number = 0;
    while (j < text.size() && text[j].isDigit() && text[j].unicode() < 128 && j - i < 9) {
        number = number * 10 + (text[j].unicode() - '0');
        ++j;
    }
    if (j == i)
        return -1;
    value = int(number);
    return j;
}

bool EndsReference(QStringView text, qsizetype i)
{
    return i >= text.size() || text[i] == QLatin1Char(':') || text[i].isSpace();
}

QList<Candidate> FindCandidates(QStringView text)
{
    QList<Candidate> found;
    for (qsizetype i = 1; i < text.size(); ++i) {
        const QChar c = text[i];
        int line = 0, column = 0;
        if (c == QLatin1Char(':')) {
            const qsizetype afterLine = ReadNumber(text, i + 1, line);
            if (afterLine < 0)
                continue;
            qsizetype end = afterLine;
            if (end < text.size() && text[end] == QLatin1Char(':')) {
                const qsizetype afterColumn = ReadNumber(text, end + 1, column);
                if (afterColumn >= 0 && EndsReference(text, afterColumn))
                    end = afterColumn;
                else
                    column = 0;
            }
            if (EndsReference(text, end) && line > 0)
                found.append({i, line, column});
        } else if (c == QLatin1Char('(')) {
            qsizetype end = ReadNumber(text, i + 1, line);
            if (end < 0)
                continue;
            if (end < text.size() && text[end] == QLatin1Char(',')) {
                end = ReadNumber(text, end + 1, column);
                if (end < 0)
                    continue;
            }
            if (end < text.size() && text[end] == QLatin1Char(')') && EndsReference(text, end + 1) && line > 0)
                found.append({i, line, column});
        }
    }
    return found;
}

QString Resolve(const QString& path, const QString& baseDir)
{
    if (OutputLinkParser::IsAbsolute(path) || baseDir.isEmpty())
        return QDir::cleanPath(path);
    return QDir::cleanPath(QDir(baseDir).filePath(path));
}

} // namespace

bool OutputLinkParser::IsAbsolute(const QString& path)
{
    if (path.startsWith(QLatin1Char('/')) || path.startsWith(QStringLiteral("\\\\")))
        return true;
    return path.size() >= 3 && path[0].isLetter() && path[1] == QLatin1Char(':')
           && (path[2] == QLatin1Char('\\') || path[2] == QLatin1Char('/'));
}

bool OutputLinkParser::Parse(const QString& text, const QString& baseDir, OutputLink& link,
                             const ExistsFunction& exists)
{
    const QStringView view(text);
    qsizetype start = 0;
    while (start < view.size() && view[start].isSpace())
        ++start;
    const QStringView body = view.mid(start);
    const QList<Candidate> candidates = FindCandidates(body);
    const ExistsFunction fileExists = exists ? exists : [](const QString& p) { return QFileInfo(p).isFile(); };

    const Candidate* chosen = nullptr;
    QString chosenPath;
    for (const Candidate& candidate : candidates) {
        const QString path = body.first(candidate.pathEnd).toString();
        if (path.trimmed().isEmpty())
            continue;
        const QString resolved = Resolve(path, baseDir);
        if (fileExists(resolved)) {
            chosen = &candidate;
            chosenPath = resolved;
            break;
        }
        // A time of day ("12:30:45") or a sentence before a colon is not a file name.
        const bool plausible = !path.contains(QLatin1Char(' '))
                               && std::any_of(path.cbegin(), path.cend(), [](QChar c) { return !c.isDigit() && c != QLatin1Char(':'); });
        if (!chosen && plausible) {
            chosen = &candidate;
            chosenPath = resolved;
        }
    }
    if (!chosen)
        return false;
    link.path = chosenPath;
    link.line = chosen->line;
    link.column = chosen->column;
    return true;
}
