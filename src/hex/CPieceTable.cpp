#include "CPieceTable.h"

#include "CByteSearcher.h"
#include "MappedMemoryGuard.h"
#include "editor/DiskSync.h"
#include "editor/FileOwner.h"
#include "editor/ReplacedFileHold.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

// Reads of the file go in runs of this size, so that each run checks the file's size.
constexpr qint64 kRun = qint64(16) << 20;

QString Tr(const char* text)
{
    return QCoreApplication::translate("CPieceTable", text);
}

} // namespace

CPieceTable::CPieceTable()
    : m_source(std::make_unique<CHexFileSource>())
{
}

CPieceTable::~CPieceTable() = default;

void CPieceTable::Reset()
{
    m_source = std::make_unique<CHexFileSource>();
    m_added.clear();
    m_pieces.clear();
    m_size = 0;
    m_steps.clear();
    m_undoPos = 0;
    m_savedPos = 0;
}

bool CPieceTable::Open(const QString& path, QString* error)
{
    auto source = std::make_unique<CHexFileSource>();
    if (!source->Open(path, error))
        return false;
    Reset();
    m_source = std::move(source);
    m_size = m_source->Size();
    if (m_size > 0)
        m_pieces.push_back(Piece{0, 0, m_size, false});
    return true;
}

bool CPieceTable::IsSourceIntact() const
{
    return !m_source->IsOpen() || m_source->IsIntact();
}

size_t CPieceTable::PieceAt(qint64 offset) const
{
    // The last piece starting at or before `offset`; m_pieces.size() at the end.
    if (offset >= m_size)
        return m_pieces.size();
    auto it = std::upper_bound(m_pieces.begin(), m_pieces.end(), offset,
                               [](qint64 value, const Piece& p) { return value < p.start; });
    return size_t(it - m_pieces.begin()) - 1;
}

void CPieceTable::Renumber(size_t from)
{
    qint64 start = from > 0 ? m_pieces[from - 1].End() : 0;
    for (size_t i = from; i < m_pieces.size(); ++i) {
        m_pieces[i].start = start;
        start += m_pieces[i].length;
    }
    m_size = start;
}

void CPieceTable::Apply(size_t index, size_t removeCount, const std::vector<Piece>& insert)
{
    auto first = m_pieces.begin() + qsizetype(index);
    first = m_pieces.erase(first, first + qsizetype(removeCount));
    m_pieces.insert(first, insert.begin(), insert.end());
    Renumber(index);
}

bool CPieceTable::Read(qint64 offset, qint64 length, uchar* dest) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        return false;
    qint64 done = 0;
    for (size_t i = PieceAt(offset); done < length && i < m_pieces.size(); ++i) {
        const Piece& p = m_pieces[i];
        const qint64 within = offset + done - p.start;
        const qint64 n = std::min(p.length - within, length - done);
        if (p.added) {
            std::memcpy(dest + done, m_added.data() + p.source + within, size_t(n));
        } else if (!m_source->Read(p.source + within, n, dest + done)) {
            return false;
        }
        done += n;
    }
    return done == length;
}

bool CPieceTable::MarkChanged(qint64 offset, qint64 length, uchar* flags) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset)
        return false;
    qint64 done = 0;
    for (size_t i = PieceAt(offset); done < length && i < m_pieces.size(); ++i) {
        const Piece& p = m_pieces[i];
        const qint64 n = std::min(p.End() - (offset + done), length - done);
        // A piece of the file at another place than it was (after an insertion or a
        // deletion before it) holds the file's bytes: only typed bytes are marked.
        std::memset(flags + done, p.added ? 1 : 0, size_t(n));
        done += n;
    }
    return true;
}

QByteArray CPieceTable::Read(qint64 offset, qint64 length) const
{
    if (offset < 0 || length < 0 || offset > m_size || length > m_size - offset
        || length > qint64(INT_MAX))
        return QByteArray();
    QByteArray bytes(qsizetype(length), Qt::Uninitialized);
    if (!Read(offset, length, reinterpret_cast<uchar*>(bytes.data())))
        return QByteArray();
    return bytes;
}

bool CPieceTable::Insert(qint64 offset, const QByteArray& bytes, bool merge)
{
    return Replace(offset, 0, bytes, merge);
}

bool CPieceTable::Overwrite(qint64 offset, const QByteArray& bytes, bool merge)
{
    if (offset < 0 || offset > m_size)
        return false;
    return Replace(offset, std::min<qint64>(bytes.size(), m_size - offset), bytes, merge);
}

bool CPieceTable::Remove(qint64 offset, qint64 length, bool merge)
{
    return Replace(offset, length, QByteArray(), merge);
}

bool CPieceTable::Replace(qint64 offset, qint64 removeLength, const QByteArray& bytes, bool merge)
{
    if (offset < 0 || removeLength < 0 || offset > m_size || removeLength > m_size - offset)
        return false;
    if (removeLength == 0 && bytes.isEmpty())
        return true;

    const qint64 end = offset + removeLength;
    size_t first = PieceAt(offset);
    size_t last; // one past the last piece replaced
    if (removeLength > 0)
        last = PieceAt(end - 1) + 1;
    else
        last = (first < m_pieces.size() && m_pieces[first].start < offset) ? first + 1 : first;

    std::vector<Piece> insert;
    if (first < last && m_pieces[first].start < offset) {
        Piece left = m_pieces[first];
        left.length = offset - left.start;
        insert.push_back(left);
    } else if (first > 0 && !bytes.isEmpty()) {
        // Typing runs: grow the previous piece when it ends where the buffer ends.
        const Piece& before = m_pieces[first - 1];
        if (before.added && before.source + before.length == qint64(m_added.size())) {
            --first;
            insert.push_back(before);
        }
    }
    if (!bytes.isEmpty()) {
        const qint64 at = qint64(m_added.size());
        m_added.insert(m_added.end(), bytes.begin(), bytes.end());
        if (!insert.empty() && insert.back().added
            && insert.back().source + insert.back().length == at) {
            insert.back().length += bytes.size();
        } else {
            insert.push_back(Piece{0, at, bytes.size(), true});
        }
    }
    if (first < last && m_pieces[last - 1].End() > end) {
        Piece right = m_pieces[last - 1];
        const qint64 cut = end - right.start;
        right.source += cut;
        right.length -= cut;
        insert.push_back(right);
    }

    Record record;
    record.index = first;
    record.removed.assign(m_pieces.begin() + qsizetype(first), m_pieces.begin() + qsizetype(last));
    record.inserted = insert;
    record.offset = offset;
    Apply(first, last - first, insert);
    // Pieces' starts are renumbered on every apply; keep the records free of them.
    for (Piece& p : record.inserted)
        p.start = 0;

    if (m_undoPos < m_steps.size()) {
        m_steps.resize(m_undoPos);
        if (m_savedPos > m_undoPos)
            m_savedPos = SIZE_MAX;
    }
    if (merge && m_undoPos > 0 && m_savedPos != m_undoPos) {
        m_steps[m_undoPos - 1].push_back(std::move(record));
    } else {
        m_steps.push_back(Step{std::move(record)});
        ++m_undoPos;
    }
    return true;
}

bool CPieceTable::Undo(qint64* where)
{
    if (!CanUndo())
        return false;
    const Step& step = m_steps[--m_undoPos];
    for (auto it = step.rbegin(); it != step.rend(); ++it) {
        Apply(it->index, it->inserted.size(), it->removed);
        if (where)
            *where = it->offset;
    }
    return true;
}

bool CPieceTable::Redo(qint64* where)
{
    if (!CanRedo())
        return false;
    const Step& step = m_steps[m_undoPos++];
    for (const Record& record : step) {
        Apply(record.index, record.removed.size(), record.inserted);
        if (where)
            *where = record.offset;
    }
    return true;
}

const uchar* CPieceTable::Span(qint64 offset, qint64 maximum, qint64* length,
                               std::vector<uchar>& scratch) const
{
    const size_t i = PieceAt(offset);
    if (i >= m_pieces.size())
        return nullptr;
    const Piece& p = m_pieces[i];
    const qint64 within = offset - p.start;
    const qint64 n = std::min(p.length - within, maximum);
    *length = n;
    if (p.added)
        return m_added.data() + p.source + within;
    if (const uchar* data = m_source->Data(p.source + within, n))
        return data;
    scratch.resize(size_t(n));
    return m_source->Read(p.source + within, n, scratch.data()) ? scratch.data() : nullptr;
}

const uchar* CPieceTable::SpanBefore(qint64 end, qint64 maximum, qint64* length,
                                     std::vector<uchar>& scratch) const
{
    const size_t i = PieceAt(end - 1);
    if (i >= m_pieces.size())
        return nullptr;
    const qint64 start = std::max(m_pieces[i].start, end - maximum);
    return Span(start, end - start, length, scratch);
}

CPieceTable::FindResult CPieceTable::Find(const QByteArray& pattern, qint64 from, bool forward,
                                          bool matchCase, const FindProgress& progress) const
{
    FindResult result;
    const qint64 m = pattern.size();
    if (m == 0 || m > m_size)
        return result;
    const CByteSearcher searcher(pattern, matchCase);
    std::vector<uchar> scratch;
    std::vector<uchar> seam;

    if (forward) {
        qint64 pos = std::max<qint64>(from, 0);
        while (pos + m <= m_size) {
            qint64 n = 0;
            const uchar* data = Span(pos, kRun, &n, scratch);
            if (!data) {
                result.failed = true;
                return result;
            }
            qint64 hit = -1;
            if (!MappedMemoryGuard::Run([&] { hit = searcher.FindFirst(data, n); })) {
                m_source->MarkBroken();
                result.failed = true;
                return result;
            }
            if (hit >= 0) {
                result.offset = pos + hit;
                return result;
            }
            const qint64 spanEnd = pos + n;
            // Matches that start in this run and end in a later one.
            if (m > 1 && spanEnd < m_size) {
                const qint64 seamStart = std::max(pos, spanEnd - (m - 1));
                const qint64 seamEnd = std::min(m_size, spanEnd + (m - 1));
                seam.resize(size_t(seamEnd - seamStart));
                if (!Read(seamStart, seamEnd - seamStart, seam.data())) {
                    result.failed = true;
                    return result;
                }
                const qint64 seamHit = searcher.FindFirst(seam.data(), qint64(seam.size()));
                if (seamHit >= 0 && seamStart + seamHit < spanEnd) {
                    result.offset = seamStart + seamHit;
                    return result;
                }
            }
            if (progress && !progress(spanEnd - std::max<qint64>(from, 0))) {
                result.cancelled = true;
                return result;
            }
            pos = spanEnd;
        }
        return result;
    }

    if (from < 0)
        return result;
    qint64 end = std::min(m_size, from + m); // matches start at or before `from`
    while (end >= m) {
        qint64 n = 0;
        const uchar* data = SpanBefore(end, kRun, &n, scratch);
        if (!data) {
            result.failed = true;
            return result;
        }
        const qint64 spanStart = end - n;
        qint64 hit = -1;
        if (!MappedMemoryGuard::Run([&] { hit = searcher.FindLast(data, n); })) {
            m_source->MarkBroken();
            result.failed = true;
            return result;
        }
        if (hit >= 0) {
            result.offset = spanStart + hit;
            return result;
        }
        // Matches that start before this run and end inside it.
        if (m > 1 && spanStart > 0) {
            const qint64 seamStart = std::max<qint64>(0, spanStart - (m - 1));
            const qint64 seamEnd = std::min(end, spanStart + (m - 1));
            seam.resize(size_t(seamEnd - seamStart));
            if (!Read(seamStart, seamEnd - seamStart, seam.data())) {
                result.failed = true;
                return result;
            }
            const qint64 seamHit = searcher.FindLast(seam.data(), qint64(seam.size()));
            if (seamHit >= 0) {
                result.offset = seamStart + seamHit;
                return result;
            }
        }
        if (progress && !progress(std::min(m_size, from + m) - spanStart)) {
            result.cancelled = true;
            return result;
        }
        end = spanStart;
    }
    return result;
}

namespace {

#ifdef Q_OS_UNIX
bool WriteAllFd(int fd, const uchar* data, qint64 length)
{
    while (length > 0) {
        const ssize_t n = ::write(fd, data, size_t(std::min<qint64>(length, qint64(1) << 30)));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        length -= n;
    }
    return true;
}
#endif

} // namespace

bool CPieceTable::WriteTo(int fd, QSaveFile& out, const Progress& progress) const
{
    qint64 written = 0;
    auto report = [&](qint64 n) {
        written += n;
        if (progress)
            progress(written);
    };
    auto write = [&](const uchar* data, qint64 length) {
#ifdef Q_OS_UNIX
        Q_UNUSED(out);
        return WriteAllFd(fd, data, length);
#else
        Q_UNUSED(fd);
        return out.write(reinterpret_cast<const char*>(data), length) == length;
#endif
    };

    std::vector<uchar> scratch;
    for (const Piece& p : m_pieces) {
        if (p.added) {
            if (!write(m_added.data() + p.source, p.length))
                return false;
            report(p.length);
            continue;
        }
        if (!m_source->IsIntact())
            return false;
        qint64 done = 0;
#ifdef Q_OS_LINUX
        // The kernel copies file to file without the bytes passing through us.
        bool kernelCopy = true;
        while (kernelCopy && done < p.length) {
            loff_t in = p.source + done;
            const ssize_t n = ::copy_file_range(m_source->Handle(), &in, fd, nullptr,
                                                size_t(std::min(p.length - done, kRun * 4)), 0);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0 && done == 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL
                                       || errno == EOPNOTSUPP))
                kernelCopy = false; // fall back to copying through memory
            else if (n <= 0)
                return false; // a read error, or the file has shrunk
            else {
                done += n;
                report(n);
            }
        }
#endif
        while (done < p.length) {
            const qint64 n = std::min(p.length - done, kRun);
            const uchar* data = m_source->Data(p.source + done, n);
            if (!data) {
                scratch.resize(size_t(n));
                if (!m_source->Read(p.source + done, n, scratch.data()))
                    return false;
                data = scratch.data();
            }
            if (!write(data, n))
                return false;
            done += n;
            report(n);
        }
    }
    return true;
}

bool CPieceTable::Save(const QString& path, bool adopt, QString* error, const Progress& progress)
{
    const QFileInfo target(path);
    const bool sameFile = m_source->IsOpen()
        && target.exists()
        && target.canonicalFilePath() == QFileInfo(m_source->Path()).canonicalFilePath();
    if (!IsSourceIntact()) {
        if (error)
            *error = Tr("The file has been shortened by another program since it was opened.");
        return false;
    }

    // A device or a pipe would be replaced by a plain file: refuse. A link is followed.
    if (target.exists() && !target.isFile()) {
        if (error)
            *error = Tr("The target is not a regular file.");
        return false;
    }

    FileOwner owner;
    owner.Remember(path);
    QSaveFile out(path);
    // Writing in place would destroy the bytes we are still reading from, so the file
    // we read from is only ever replaced by a rename.
    out.setDirectWriteFallback(!sameFile);
    if (!out.open(QIODevice::WriteOnly)) {
        if (error)
            *error = out.errorString();
        return false;
    }
    if (!WriteTo(out.handle(), out, progress)) {
        if (error)
            *error = out.errorString().isEmpty() || out.error() == QFileDevice::NoError
                ? Tr("The file could not be written.")
                : out.errorString();
        out.cancelWriting();
        return false;
    }
    owner.Apply(out.handle());
    QString syncError;
    if (!out.flush() || !SyncToDisk(out.handle(), &syncError)) {
        if (error)
            *error = syncError.isEmpty() ? out.errorString() : syncError;
        out.cancelWriting();
        return false;
    }
    // The file replaced is freed on a thread of its own: by the rename, or, when we
    // read from it, once its pieces below are dropped.
    const ReplacedFileHold replaced(path);
    if (!out.commit()) {
        if (error)
            *error = out.errorString();
        return false;
    }

    if (adopt || sameFile) {
        auto source = std::make_unique<CHexFileSource>();
        // When the new file cannot be opened the old pieces still read the old file,
        // which stays alive as long as we hold it, so the table stays whole.
        if (source->Open(path, nullptr) && source->Size() == m_size) {
            m_source = std::move(source);
            m_added.clear();
            m_pieces.clear();
            if (m_size > 0)
                m_pieces.push_back(Piece{0, 0, m_size, false});
            m_steps.clear();
            m_undoPos = 0;
        }
    }
    SetSavePoint();
    return true;
}
