#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// The file name patterns of a search: "*.cpp;*.h" or "*.cpp *.h". "*" matches any run of
// characters, "?" one character. Letter case is ignored, as for extensions elsewhere in
// the program. No pattern, "*" or "*.*" takes every file ("*.*" also takes names without
// a dot, as users of other platforms expect).
class FilePatternList
{
public:
    FilePatternList() = default;
    explicit FilePatternList(const QString& patterns);

    bool MatchesAll() const { return m_all; }
    // `name` is the file's name without its folder, UTF-8.
    bool Matches(const char* name, std::size_t length) const;
    bool Matches(const QString& name) const;

    const QList<QByteArray>& Patterns() const { return m_patterns; }

private:
    QList<QByteArray> m_patterns;
    bool m_all = true;
};
