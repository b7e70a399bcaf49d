#pragma once

#include <QString>

// Compares two files byte for byte.
namespace ByteCompare {

struct Result
{
    bool ok = false;     // both files could be read to the end
    qint64 offset = -1;  // the first differing byte; -1 when the files are identical
    qint64 leftSize = 0;
    qint64 rightSize = 0;
    QString error;
};

// A file that is a prefix of the other differs at the shorter one's size.
Result FirstDifference(const QString& left, const QString& right);

} // namespace ByteCompare
