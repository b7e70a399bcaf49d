#pragma once

#include "FindInFilesTypes.h"
#include "TextMatcher.h"
#include "editor/AnsiCodePage.h"

#include <QByteArray>
#include <QList>
#include <atomic>
#include <string>

// Searches one file the way the editor would read it: the encoding is detected from the
// first bytes, UTF-8 is searched as it lies, "Ansi" (through its code page) and the 16-
// and 32-bit forms are decoded to UTF-8 first. Binary files are left alone. Files are read in large pieces cut
// at line ends, so a file of any size takes bounded memory; a line longer than
// MaxLineLength makes the file count as unreadable.
// One per thread.
class FileSearcher
{
public:
    enum class Outcome { Searched, Binary, Unreadable, Stopped, LimitReached };

    FileSearcher(const SearchQuery& query, int tabWidth,
                 const AnsiCodePage& codePage = AnsiCodePage::Default());

    // `path` is in the file system's own encoding (QFile::encodeName). Matches are added
    // to `out`, at most `limit` of them. `stop` is looked at between pieces.
    Outcome Search(const QByteArray& path, QList<FindInFilesMatch>& out,
                   const std::atomic<bool>& stop, qint64 limit);

    // The text shown for a match's line: without its line end, and for a very long line a
    // stretch around the match between ellipses.
    static QString LineExcerpt(const char* line, std::size_t length, std::size_t matchOffset);

    // What the editor's detector says of a file that starts with these bytes, with a
    // quick answer for plain ASCII.
    struct Detection
    {
        int encoding;
        int bomLength;
        bool binary;
    };
    static Detection Detect(const char* data, std::size_t length);

    static constexpr std::size_t PieceSize = 4 * 1024 * 1024;
    // A file with a longer line is counted as unreadable rather than held whole.
    static constexpr std::size_t MaxLineLength = 256 * 1024 * 1024;

private:
    TextMatcher m_matcher;
    int m_tabWidth;
    AnsiCodePage m_codePage;
    std::string m_raw;
    std::string m_text;
};
