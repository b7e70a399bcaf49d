#include "ByteInterpreter.h"

#include <QtEndian>
#include <cstring>

namespace {

template <typename T>
QString Integer(const uchar* data, int available, bool little)
{
    if (available < int(sizeof(T)))
        return QString();
    const T value = little ? qFromLittleEndian<T>(data) : qFromBigEndian<T>(data);
    return QString::number(value);
}

template <typename Bits, typename Float>
QString Real(const uchar* data, int available, bool little)
{
    if (available < int(sizeof(Bits)))
        return QString();
    const Bits bits = little ? qFromLittleEndian<Bits>(data) : qFromBigEndian<Bits>(data);
    Float value;
    std::memcpy(&value, &bits, sizeof value);
    return QString::number(value, 'g', sizeof(Float) == 4 ? 9 : 17);
}

template <typename T>
ByteInterpreter::Row IntegerRow(const char* name, const uchar* data, int available)
{
    return {QLatin1String(name), Integer<T>(data, available, true),
            Integer<T>(data, available, false)};
}

} // namespace

namespace ByteInterpreter {

QList<Row> Inspect(const uchar* data, int available)
{
    return {
        IntegerRow<qint8>("Int8", data, available),
        IntegerRow<quint8>("UInt8", data, available),
        IntegerRow<qint16>("Int16", data, available),
        IntegerRow<quint16>("UInt16", data, available),
        IntegerRow<qint32>("Int32", data, available),
        IntegerRow<quint32>("UInt32", data, available),
        IntegerRow<qint64>("Int64", data, available),
        IntegerRow<quint64>("UInt64", data, available),
        {QStringLiteral("Float"), Real<quint32, float>(data, available, true),
         Real<quint32, float>(data, available, false)},
        {QStringLiteral("Double"), Real<quint64, double>(data, available, true),
         Real<quint64, double>(data, available, false)},
    };
}

} // namespace ByteInterpreter
