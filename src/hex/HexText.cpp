#include "HexText.h"

#include <QCoreApplication>
#include <limits>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("HexText", text);
}


bool IsSeparator(QChar c)
{
    return c.isSpace() || c == QLatin1Char(',') || c == QLatin1Char('-');
}

} // namespace

namespace HexText {

QString ToHex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

bool ParseHex(const QString& text, QByteArray* out)
{
    QByteArray bytes;
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n) {
        if (IsSeparator(text[i])) {
            ++i;
            continue;
        }
        if (text[i] == QLatin1Char('0') && i + 1 < n
            && (text[i + 1] == QLatin1Char('x') || text[i + 1] == QLatin1Char('X')))
            i += 2;
        const qsizetype groupStart = i;
        while (i < n && DigitValue(text[i]) >= 0)
            ++i;
        const qsizetype digits = i - groupStart;
        if (digits == 0 || (i < n && !IsSeparator(text[i])))
            return false;
        qsizetype k = groupStart;
        if (digits % 2 == 1)
            bytes.append(char(DigitValue(text[k++])));
        for (; k < i; k += 2)
            bytes.append(char(DigitValue(text[k]) * 16 + DigitValue(text[k + 1])));
    }
    if (bytes.isEmpty())
        return false;
    *out = bytes;
    return true;
}

bool ParseOffset(const QString& text, bool hex, qint64 current, qint64 size, qint64* out,
                 QString* error)
{
    QString s = text.trimmed();
    int sign = 0;
    if (s.startsWith(QLatin1Char('+')) || s.startsWith(QLatin1Char('-'))) {
        sign = s.startsWith(QLatin1Char('+')) ? 1 : -1;
        s = s.mid(1).trimmed();
    }
    if (s.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
        hex = true;
        s = s.mid(2);
    }
    s.remove(QLatin1Char(' '));
    bool ok = false;
    const qulonglong value = s.toULongLong(&ok, hex ? 16 : 10);
    // toULongLong accepts a sign of its own; we have taken ours already.
    if (!ok || s.isEmpty() || s.startsWith(QLatin1Char('+')) || s.startsWith(QLatin1Char('-'))) {
        if (error)
            *error = hex ? Tr("\"%1\" is not a hexadecimal number.").arg(text.trimmed())
                         : Tr("\"%1\" is not a decimal number.").arg(text.trimmed());
        return false;
    }
    const qint64 last = size > 0 ? size - 1 : 0;
    // Beyond any possible offset, kept in range for the arithmetic below.
    const qint64 magnitude = value > qulonglong(std::numeric_limits<qint64>::max() / 2)
        ? std::numeric_limits<qint64>::max() / 2
        : qint64(value);
    const qint64 target = sign == 0 ? magnitude : current + sign * magnitude;
    if (target < 0 || target > last) {
        if (error)
            *error = Tr("The offset must lie between 0 and %1 (0x%2).")
                         .arg(last)
                         .arg(QString::number(last, 16).toUpper());
        return false;
    }
    *out = target;
    return true;
}

} // namespace HexText

int HexText::DigitValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}
