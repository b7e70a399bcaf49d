#pragma once

#include <QByteArray>
#include <QtGlobal>

// Whether a file can be loaded as text without running the machine out of memory.
namespace MemoryGuard {

// The bytes the control needs for a file of `fileSize` bytes read in `encoding`: its text
// as UTF-8, a style byte per character unless it is kept without colours, and the line
// index.
qint64 EstimateTextLoad(qint64 fileSize, int encoding, bool styled = true);
// MemAvailable from the text of /proc/meminfo, in bytes; -1 when it is not there.
qint64 ParseMemAvailable(const QByteArray& meminfo);
// The memory free for a load; MORVANE_MEMAVAILABLE (bytes) stands in for the machine's
// figure so tests can fake a small machine. -1 when unknown.
qint64 AvailableMemory();
// An unknown figure never stops a load.
bool Fits(qint64 needed, qint64 available);

} // namespace MemoryGuard
