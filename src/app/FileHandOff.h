#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;

// Files handed over by other processes: they write one value per file into the
// settings section "FilesToOpen" and then connect to a local socket in this user's
// runtime folder (a pipe named for the user where there is none); any connection makes
// the running program look at the section.
class FileHandOff : public QObject
{
    Q_OBJECT
public:
    explicit FileHandOff(QObject* parent = nullptr);
    ~FileHandOff() override;

    // Starts listening; false when the socket can't be made (the program runs on).
    bool Listen();
    static QString ServerName();

    // The paths waiting in the section, empty entries left out, in name order.
    static QStringList PendingPaths();
    static bool HasPending();
    // Removes the whole section.
    static void ClearPending();

    // Asks a running program to look at the section; false when none listens.
    static bool Notify(int timeoutMs = 1000);

Q_SIGNALS:
    void filesPending();

private:
    QLocalServer* m_server = nullptr;
};
