// Lines of tool output. Any text: a link that is found names a line from 1 and a column
// from 0 and has a path. A reference built from a plain path and numbers, with text
// around it the way compilers print, must be found as built.
#include "FuzzInput.h"

#include "usertools/OutputLink.h"

#include <QDir>

namespace {

// Path characters that never make a second reading of a reference.
std::string PlainPath(const std::string& raw)
{
    static const char allowed[] = "abcXYZ019_-./";
    std::string path;
    for (unsigned char c : raw)
        path += allowed[c % (sizeof allowed - 1)];
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    const int shape = in.Byte() % 4;
    const bool existing = in.Flag();
    if (shape == 0) {
        // Anything at all.
        const QString text = QString::fromUtf8(in.Rest());
        OutputLink link;
        int asked = 0;
        const bool found = OutputLinkParser::Parse(text, QStringLiteral("/base"), link, [&](const QString&) {
            ++asked;
            return existing && asked == 2;
        });
        if (found) {
            FUZZ_CHECK(!link.path.isEmpty());
            FUZZ_CHECK(link.line >= 1 && link.column >= 0);
        }
        return 0;
    }
    const std::string path = "/src/" + PlainPath(in.Bytes(40)) + "f.c";
    const int line = 1 + int(in.Below(99999));
    const int column = int(in.Below(999));
    const QString message = QString::fromUtf8(in.Rest()).remove(QLatin1Char('\n'));
    QString text;
    const QString file = QString::fromStdString(path);
    if (shape == 1)
        text = QStringLiteral("%1:%2:%3: %4").arg(file).arg(line).arg(column + 1).arg(message);
    else if (shape == 2)
        text = QStringLiteral("%1(%2,%3): %4").arg(file).arg(line).arg(column + 1).arg(message);
    else
        text = QStringLiteral("  %1:%2: %3").arg(file).arg(line).arg(message);
    OutputLink link;
    const QString expectedPath = QDir::cleanPath(file);
    FUZZ_CHECK(OutputLinkParser::Parse(text, QStringLiteral("/base"), link,
                                       [&](const QString& p) { return existing && p == expectedPath; }));
    FUZZ_CHECK(link.path == expectedPath);
    FUZZ_CHECK(link.line == line);
    FUZZ_CHECK(link.column == (shape == 3 ? 0 : column + 1));
    return 0;
}
