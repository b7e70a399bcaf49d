// A stand-in for a running editor: claims a recovery folder, writes one entry through the
// worker thread and waits to be killed. Arguments: root, id, path, encoding, text.
#include "recovery/CRecoveryStore.h"

#include <QCoreApplication>
#include <QThread>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 6)
        return 2;
    CRecoveryStore store(args[1]);
    if (!store.Claim())
        return 3;
    RecoveryEntry entry;
    entry.id = args[2];
    entry.path = args[3];
    entry.title = QStringLiteral("Untitled1");
    entry.encoding = args[4].toInt();
    entry.lineEnding = 1;
    entry.time = QDateTime::currentDateTimeUtc();
    store.Write(entry, args[5].toUtf8());
    store.Flush();
    std::printf("ready %s\n", qPrintable(store.InstanceFolder()));
    std::fflush(stdout);
    for (;;)
        QThread::sleep(1);
}
