#include "backup/BackupTimeText.h"

#include <QDateTime>

namespace BackupTimeText {

QString MonthName(int month)
{
    // English names whatever the locale: the rows read the same on every desktop.
    static const char* const names[] = {"January", "February", "March",     "April",
                                        "May",     "June",     "July",      "August",
                                        "September", "October", "November", "December"};
    if (month < 1 || month > 12)
        return {};
    return QString::fromLatin1(names[month - 1]);
}

QString RowText(qint64 secondsSinceEpoch)
{
    const QDateTime local = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch).toLocalTime();
    const QDate date = local.date();
    const QTime time = local.time();
    return QStringLiteral("%1 %2 %3  %4:%5")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(MonthName(date.month()))
        .arg(date.year())
        .arg(time.hour(), 2, 10, QLatin1Char('0'))
        .arg(time.minute(), 2, 10, QLatin1Char('0'));
}

} // namespace BackupTimeText
