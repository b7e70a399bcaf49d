#pragma once

#include <QString>
#include <QtGlobal>

// Keeps a large file that is about to be replaced open until the replacement is done.
// Replacing the last name of a file makes the file system free all its blocks there and
// then, inside the rename: about a third of a second per gigabyte on ext4, paid while
// the user waits for the save. Held open, the old file is freed when it is closed, and
// this closes it on a thread of its own.
class ReplacedFileHold
{
public:
    // Below this the file system frees a file in a few milliseconds: not worth a thread.
    static constexpr qint64 WorthHoldingFrom = qint64(64) << 20;

    // Holds `path` when it is a regular file of at least `minimumSize` bytes that can be
    // opened; otherwise holds nothing and the rename frees the file as usual.
    explicit ReplacedFileHold(const QString& path, qint64 minimumSize = WorthHoldingFrom);
    ~ReplacedFileHold();
    ReplacedFileHold(const ReplacedFileHold&) = delete;
    ReplacedFileHold& operator=(const ReplacedFileHold&) = delete;

    bool IsHolding() const { return m_handle >= 0; }

private:
    int m_handle = -1;
};
