#include "FileSearcher.h"

#include "editor/EncodingReader.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"

#include <QFile>
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <optional>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

// Plain unbuffered reads: QFile's machinery costs more than the search of a small file.
class RawFile
{
public:
    ~RawFile() { Close(); }

    bool Open(const QByteArray& path)
    {
#ifdef Q_OS_UNIX
        // Non-blocking, so that a pseudo-file that waits for data (/proc/kmsg) gives an
        // error instead of holding a thread for ever.
        m_fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (m_fd < 0)
            return false;
        struct stat info;
        m_size = ::fstat(m_fd, &info) == 0 ? qint64(info.st_size) : -1;
        return true;
#else
        m_file.setFileName(QFile::decodeName(path));
        if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        m_size = m_file.size();
        return true;
#endif
    }
    // Bytes read, 0 at the end, -1 on failure.
    qint64 Read(char* into, std::size_t maximum)
    {
#ifdef Q_OS_UNIX
        for (;;) {
            const ssize_t got = ::read(m_fd, into, maximum);
            if (got >= 0 || errno != EINTR)
                return qint64(got);
        }
#else
        return m_file.read(into, qint64(maximum));
#endif
    }
    qint64 Size() const { return m_size; }
    void Close()
    {
#ifdef Q_OS_UNIX
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
#else
        m_file.close();
#endif
    }

private:
#ifdef Q_OS_UNIX
    int m_fd = -1;
#else
    QFile m_file;
#endif
    qint64 m_size = -1;
};

QString TextOfLine(const char* data, std::size_t length)
{
    return TextMatcher::IsValidUtf8(data, length) ? QString::fromUtf8(data, qsizetype(length))
                                                  : QString::fromLatin1(data, qsizetype(length));
}

} // namespace

FileSearcher::Detection FileSearcher::Detect(const char* data, std::size_t length)
{
    if (length > std::size_t(TextFileDetector::SampleSize))
        length = TextFileDetector::SampleSize;
    // Most files of a source tree are plain ASCII. For such a sample the detector's
    // answer is known without its byte-by-byte walk: no zero bytes, so neither 16-bit
    // text nor binary; no sequence longer than a byte, so not UTF-8 either; only the
    // UTF-7 mark is made of ASCII, so the mark table is still asked.
    bool plainAscii = length >= 2;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    std::size_t i = 0;
    for (; plainAscii && i + 8 <= length; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, 8);
        // High bit set, or a zero byte, in any of the eight.
        const std::uint64_t zero = (word - 0x0101010101010101ULL) & ~word & 0x8080808080808080ULL;
        if ((word & 0x8080808080808080ULL) || zero)
            plainAscii = false;
    }
    for (; plainAscii && i < length; ++i) {
        if (bytes[i] == 0 || bytes[i] >= 0x80)
            plainAscii = false;
    }
    if (plainAscii) {
        int code = 0;
        int mark = 0;
        TextFileDetector::DetectMark(bytes, length, code, mark);
        if (code == TextEncoding::Ansi)
            return {TextEncoding::Ansi, 0, false};
    }
    TextFileDetector detector;
    detector.ExamineBuffer(data, length);
    return {detector.Encoding(), detector.BomLength(), detector.IsBinary()};
}

FileSearcher::FileSearcher(const SearchQuery& query, int tabWidth, const AnsiCodePage& codePage)
    : m_matcher(query)
    , m_tabWidth(tabWidth)
    , m_codePage(codePage)
{
}

QString FileSearcher::LineExcerpt(const char* line, std::size_t length, std::size_t matchOffset)
{
    if (length > 0 && line[length - 1] == '\r')
        --length;
    constexpr std::size_t Longest = 1000;
    constexpr std::size_t Before = 200;
    if (length <= Longest)
        return TextOfLine(line, length);
    std::size_t begin = matchOffset > Before ? matchOffset - Before : 0;
    std::size_t end = std::min(length, begin + Longest);
    // Cut on character boundaries.
    while (begin > 0 && (static_cast<unsigned char>(line[begin]) & 0xC0) == 0x80)
        --begin;
    while (end < length && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80)
        --end;
    QString text = TextOfLine(line + begin, end - begin);
    if (begin > 0)
        text.prepend(QChar(0x2026));
    if (end < length)
        text.append(QChar(0x2026));
    return text;
}

FileSearcher::Outcome FileSearcher::Search(const QByteArray& path, QList<FindInFilesMatch>& out,
                                           const std::atomic<bool>& stop, qint64 limit)
{
    RawFile file;
    if (!file.Open(path))
        return Outcome::Unreadable;

    const qsizetype firstMatch = out.size();
    QString displayPath;
    // Every form is searched as the UTF-8 the editor would hold.
    constexpr bool heldAsUtf8 = true;
    bool decoding = false;
    std::optional<EncodingReader> reader;
    qint64 line = 1;
    qint64 total = 0;
    std::size_t carry = 0; // bytes of an unfinished line kept at the front of the text
    bool first = true;
    bool limitReached = false;

    // A small file is read in one go; larger ones in pieces.
    std::size_t piece = PieceSize;
    if (file.Size() >= 0 && std::size_t(file.Size()) < PieceSize)
        piece = std::size_t(file.Size()) + 1;

    // Hits on one line share the line's text.
    const char* cachedLine = nullptr;
    QString cachedText;
    const char* blockData = nullptr;

    const TextMatcher::Sink sink = [&](const LineHit& hit) {
        if (out.size() - firstMatch >= limit) {
            limitReached = true;
            return false;
        }
        if (displayPath.isEmpty())
            displayPath = QFile::decodeName(path);
        const char* lineData = blockData + hit.lineStart;
        if (lineData != cachedLine) {
            cachedLine = lineData;
            cachedText = LineExcerpt(lineData, hit.lineEnd - hit.lineStart, hit.matchStart - hit.lineStart);
        }
        FindInFilesMatch match;
        match.path = displayPath;
        match.line = int(std::min<qint64>(hit.line, INT_MAX));
        match.column = TextMatcher::EditorColumn(lineData, hit.matchStart - hit.lineStart,
                                                 heldAsUtf8, m_tabWidth);
        match.text = cachedText;
        out.append(std::move(match));
        return true;
    };

    try {
        for (;;) {
            if (stop.load(std::memory_order_relaxed)) {
                out.resize(firstMatch);
                return Outcome::Stopped;
            }
            // Read the next piece: straight behind the carried line for bytes searched as
            // they are, into a separate buffer for forms that are decoded.
            std::string& target = decoding ? m_raw : m_text;
            const std::size_t offset = decoding ? 0 : carry;
            if (target.size() < offset + piece)
                target.resize(offset + piece);
            const qint64 got = file.Read(target.data() + offset, piece);
            if (got < 0) {
                out.resize(firstMatch);
                return Outcome::Unreadable;
            }
            total += got;
            const bool atEnd = got == 0 || (file.Size() >= 0 && total >= file.Size() && std::size_t(got) < piece);

            std::size_t textLength = 0;
            if (first) {
                first = false;
                const Detection detected = Detect(target.data(), std::size_t(got));
                if (detected.binary)
                    return Outcome::Binary;
                const int encoding = detected.encoding;
                if (encoding == TextEncoding::Utf8) {
                    // The mark is not part of the text the editor shows.
                    const std::size_t mark = std::size_t(detected.bomLength);
                    const std::size_t skip = std::min<std::size_t>(mark, std::size_t(got));
                    std::memmove(m_text.data(), m_text.data() + skip, std::size_t(got) - skip);
                    textLength = std::size_t(got) - skip;
                } else {
                    decoding = true;
                    reader.emplace(encoding, detected.bomLength, &m_codePage);
                    m_raw.assign(m_text.data(), std::size_t(got));
                }
            } else if (!decoding) {
                textLength = carry + std::size_t(got);
            }
            if (decoding) {
                const std::string_view decoded = reader->Feed(m_raw.data(), std::size_t(got));
                m_text.resize(carry);
                m_text.append(decoded);
                if (atEnd)
                    m_text.append(reader->Finish());
                textLength = m_text.size();
            }

            // Search the whole lines; keep the unfinished last line for the next piece.
            std::size_t blockLength = textLength;
            if (!atEnd) {
                const char* begin = m_text.data();
                const char* p = begin + textLength;
                while (p > begin && p[-1] != '\n')
                    --p;
                blockLength = std::size_t(p - begin);
            }
            if (blockLength > 0) {
                blockData = m_text.data();
                cachedLine = nullptr;
                const std::string_view block(m_text.data(), blockLength);
                if (!m_matcher.Search(block, line, sink))
                    break;
                if (!atEnd)
                    line += qint64(std::count(block.begin(), block.end(), '\n'));
            }
            if (atEnd)
                break;
            carry = textLength - blockLength;
            std::memmove(m_text.data(), m_text.data() + blockLength, carry);
            if (decoding)
                m_text.resize(carry);
            if (carry >= MaxLineLength) {
                // Not text anyone reads line by line; holding it would risk the memory.
                out.resize(firstMatch);
                return Outcome::Unreadable;
            }
            if (carry >= piece)
                piece = std::min(piece * 2, MaxLineLength); // one very long line
        }
    } catch (const std::bad_alloc&) {
        // A line too long to hold: the file is counted as not read.
        out.resize(firstMatch);
        m_text = std::string();
        m_raw = std::string();
        return Outcome::Unreadable;
    }
    // Keep scratch space bounded after a large file.
    if (m_text.capacity() > 4 * PieceSize)
        m_text = std::string();
    if (m_raw.capacity() > 4 * PieceSize)
        m_raw = std::string();
    return limitReached ? Outcome::LimitReached : Outcome::Searched;
}
