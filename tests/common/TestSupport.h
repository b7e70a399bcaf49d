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

#include <QObject>
#include <QStringList>
#include <QTimer>

namespace TestSupport {

// Answers every modal message box that opens while it lives, recording its text, so
// that code which shows one can run in a test without a person to click.
class ModalAnswerer : public QObject
{
public:
    // `button` is pressed when the box has it (e.g. QMessageBox::No), else the box is
    // closed with Escape.
    explicit ModalAnswerer(int button = 0);
    const QStringList& Texts() const { return m_texts; }

private:
    void Poll();
    QTimer m_timer;
    int m_button;
    QStringList m_texts;
};

} // namespace TestSupport

#include <QByteArray>
#include <ostream>

// Readable failure messages for Qt's strings.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << '"' << bytes.toStdString() << '"' << " (" << bytes.size() << " bytes)";
}
inline void PrintTo(const QStringList& list, std::ostream* out)
{
    *out << '[' << list.join(QStringLiteral(", ")).toStdString() << ']';
}
