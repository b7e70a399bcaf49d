#pragma once

#include <QString>

namespace FileSysOrder {

// The order of siblings in the file tree, as a file manager shows them: folders before
// files, then names compared without regard to case with runs of digits compared by
// value ("file2" before "file10"). Names equal in that sense fall back to an exact
// compare, so the order is total and stable.
bool Less(bool folderA, const QString& a, bool folderB, const QString& b);

// Negative, zero or positive as `a` sorts before, with or after `b` (names only).
int CompareNames(const QString& a, const QString& b);

// A key whose plain comparison gives the order of CompareNames (ties aside, which
// the caller breaks by the exact name): case folded, each digit run as its length
// and digits without leading zeros. Sorting many names by keys is much quicker.
QString SortKey(const QString& name);

} // namespace FileSysOrder
