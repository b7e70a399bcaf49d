#pragma once

#include <QString>
#include <functional>

// A place in a file named by a line of tool output.
struct OutputLink
{
    QString path;   // resolved against the tool's folder
    int line = 0;   // from 1
    int column = 0; // from 1; 0 when the line names none
    bool operator==(const OutputLink&) const = default;
};

// Recognises the forms compilers and linters print:
//   path:line:column: message      path:line: message      path:line
//   path(line): message            path(line,column): message
// with POSIX or Windows paths. A file name may itself hold a colon: where several
// readings are possible, the first whose file exists wins, else the first whose path
// holds no blank (so "make: *** [x] Error" is no link). Relative paths resolve against
// `baseDir`.
namespace OutputLinkParser {

using ExistsFunction = std::function<bool(const QString&)>;

bool Parse(const QString& text, const QString& baseDir, OutputLink& link,
           const ExistsFunction& exists = {});

// Whether `path` is absolute in POSIX or Windows form ("/x", "C:\x", "C:/x", "\\server").
bool IsAbsolute(const QString& path);

} // namespace OutputLinkParser
