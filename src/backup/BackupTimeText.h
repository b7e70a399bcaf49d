#pragma once

#include <QString>
#include <QtGlobal>

// How the history shows when a version was made.
namespace BackupTimeText {

// "January" to "December"; empty outside 1 to 12.
QString MonthName(int month);
// "DD Month YYYY  HH:MM" in local time, e.g. "07 March 2026  09:05".
QString RowText(qint64 secondsSinceEpoch);

} // namespace BackupTimeText
