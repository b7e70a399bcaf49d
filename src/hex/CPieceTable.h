#pragma once

#include "CHexFileSource.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

// The bytes of a binary document: the file as opened plus every edit, kept as a list of
// pieces that point either into the file or into an append-only buffer of typed bytes.
// Edits never copy the file, so a disk image of any size opens at once. Every edit is
// recorded; undo and redo have no limit.
class CPieceTable
{
public:
    struct FindResult
    {
        qint64 offset = -1; // start of the match, -1 when none
        bool failed = false; // the file could not be read
        bool cancelled = false; // the progress callback asked to stop
    };
    // Hears the bytes searched so far; returning false stops the search.
    using FindProgress = std::function<bool(qint64 searched)>;

    CPieceTable();
    ~CPieceTable();

    // Replaces the content by the file at `path`; the history is emptied.
    bool Open(const QString& path, QString* error);
    // Empty content, no file.
    void Reset();

    const CHexFileSource& Source() const { return *m_source; }
    // False when the underlying file has shrunk since it was opened.
    bool IsSourceIntact() const;

    qint64 Size() const { return m_size; }
    bool Read(qint64 offset, qint64 length, uchar* dest) const;
    QByteArray Read(qint64 offset, qint64 length) const;

    // Sets flags[i] to 1 where byte offset + i was typed or pasted (is not the file's
    // own byte at this place), else 0. False on a bad range.
    bool MarkChanged(qint64 offset, qint64 length, uchar* flags) const;

    // Edits. `merge` joins the edit to the previous undo step (the second digit typed
    // into a byte). Each returns false, changing nothing, when the range is bad.
    bool Insert(qint64 offset, const QByteArray& bytes, bool merge = false);
    bool Overwrite(qint64 offset, const QByteArray& bytes, bool merge = false);
    bool Remove(qint64 offset, qint64 length, bool merge = false);
    // Replaces [offset, offset + removeLength) by `bytes` in one step.
    bool Replace(qint64 offset, qint64 removeLength, const QByteArray& bytes, bool merge = false);

    bool CanUndo() const { return m_undoPos > 0; }
    bool CanRedo() const { return m_undoPos < m_steps.size(); }
    // Each sets `where` to the offset of the change, for the caret.
    bool Undo(qint64* where = nullptr);
    bool Redo(qint64* where = nullptr);

    bool IsModified() const { return m_undoPos != m_savedPos; }
    void SetSavePoint() { m_savedPos = m_undoPos; }

    // Forward: the first match starting at or after `from`. Backward: the last match
    // starting at or before `from`. Matches may cross any piece boundary.
    FindResult Find(const QByteArray& pattern, qint64 from, bool forward, bool matchCase,
                    const FindProgress& progress = {}) const;

    // Writes the content to `path` through a file beside it that is renamed over it, so
    // a failure leaves the old file as it was. With `adopt` (or when `path` is the file
    // we read from) the table then reads from the new file and its history is emptied;
    // otherwise only the save point moves.
    // `progress`, when set, hears the number of bytes written now and then.
    using Progress = std::function<void(qint64 written)>;
    bool Save(const QString& path, bool adopt, QString* error, const Progress& progress = {});

    int PieceCount() const { return int(m_pieces.size()); }

private:
    struct Piece
    {
        qint64 start;  // logical offset, kept up to date
        qint64 source; // offset in the file or in the added buffer
        qint64 length;
        bool added;
        qint64 End() const { return start + length; }
    };
    struct Record
    {
        size_t index;
        std::vector<Piece> removed;
        std::vector<Piece> inserted;
        qint64 offset;
    };
    using Step = std::vector<Record>;

    size_t PieceAt(qint64 offset) const;
    void Apply(size_t index, size_t removeCount, const std::vector<Piece>& insert);
    void Renumber(size_t from);
    // A contiguous run of bytes starting at `offset`, at most `maximum` long.
    const uchar* Span(qint64 offset, qint64 maximum, qint64* length,
                      std::vector<uchar>& scratch) const;
    // A contiguous run ending at `end`.
    const uchar* SpanBefore(qint64 end, qint64 maximum, qint64* length,
                            std::vector<uchar>& scratch) const;
    bool WriteTo(int fd, class QSaveFile& out, const Progress& progress) const;

    std::unique_ptr<CHexFileSource> m_source;
    std::vector<uchar> m_added;
    std::vector<Piece> m_pieces;
    qint64 m_size = 0;
    std::vector<Step> m_steps;
    size_t m_undoPos = 0;
    size_t m_savedPos = 0; // SIZE_MAX when the saved state is no longer reachable
};
