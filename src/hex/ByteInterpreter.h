#pragma once

#include <QList>
#include <QString>

// The values the bytes under the caret stand for, in both byte orders.
namespace ByteInterpreter {

struct Row
{
    QString type;         // "Int16", "Float" ...
    QString littleEndian; // empty when there are too few bytes
    QString bigEndian;
};

// `available` is the number of bytes readable at `data` (at most 8 are looked at).
QList<Row> Inspect(const uchar* data, int available);

} // namespace ByteInterpreter
