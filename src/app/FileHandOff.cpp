#include "FileHandOff.h"

#include "settings/CRegistryStore.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QMap>
#include <QStandardPaths>

namespace {
const QString kSection = QStringLiteral("FilesToOpen");
} // namespace

FileHandOff::FileHandOff(QObject* parent)
    : QObject(parent)
{
}

FileHandOff::~FileHandOff() = default;

QString FileHandOff::ServerName()
{
#if defined(Q_OS_UNIX)
    // A bare name would put the socket in the shared temporary folder, where anything
    // else started by the same user under that name (a test run beside the program) can
    // take it over; the runtime folder belongs to this user and this session.
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (!runtime.isEmpty())
        return runtime + QStringLiteral("/morvane-hand-off");
#endif
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = qEnvironmentVariable("USERNAME");
    // Pipe names are machine-wide; the user's name keeps users apart.
    return QStringLiteral("morvane-%1").arg(user.isEmpty() ? QStringLiteral("user") : user);
}

bool FileHandOff::Listen()
{
    if (m_server)
        return true;
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(ServerName())) {
        // A socket left by a program that ended without closing it.
        QLocalServer::removeServer(ServerName());
        if (!m_server->listen(ServerName())) {
            delete m_server;
            m_server = nullptr;
            return false;
        }
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            socket->disconnectFromServer();
        }
        Q_EMIT filesPending();
    });
    return true;
}

QStringList FileHandOff::PendingPaths()
{
    CRegistryStore store;
    QMap<QString, int> names;
    store.EnumValues(kSection, names);
    QStringList paths;
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        const QString path = store.GetProfileString(kSection, it.key());
        if (!path.isEmpty())
            paths << path;
    }
    return paths;
}

bool FileHandOff::HasPending()
{
    QMap<QString, int> names;
    return CRegistryStore().EnumValues(kSection, names) > 0;
}

void FileHandOff::ClearPending()
{
    CRegistryStore().WriteProfileString(kSection, QString(), QString());
}

bool FileHandOff::Notify(int timeoutMs)
{
    QLocalSocket socket;
    socket.connectToServer(ServerName());
    if (!socket.waitForConnected(timeoutMs))
        return false;
    socket.disconnectFromServer();
    return true;
}
