#pragma once

#include <QByteArray>
#include <QString>

namespace TestSupport {

// The temporary root that stands in for HOME during this test run.
QString IsolatedRoot();
// A fresh empty folder below the isolated root.
QString MakeTempDir();
// Writes `bytes` to `path` (folders made as needed); fails the test when it can't.
void WriteFile(const QString& path, const QByteArray& bytes);
QByteArray ReadFile(const QString& path);
// Deletes the user's settings file, so a test starts from defaults.
void ClearSettings();

} // namespace TestSupport
