#include "RecoveryInstall.h"

#include "CRecoveryManager.h"
#include "SessionRestore.h"
#include "framework/CChildFrame.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QDir>
#include <QMainWindow>
#include <QStandardPaths>

CRecoveryManager* InstallRecovery(IShell& shell)
{
    const QString root =
        QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(QStringLiteral("recovery"));
    auto* manager = new CRecoveryManager(shell, root, shell.Window());
    CShellEvents& events = shell.Events();
    QObject::connect(&events, &CShellEvents::documentCreated, manager,
                     [manager](CDocument* document) { manager->Watch(document); });
    QObject::connect(&events, &CShellEvents::frameCreated, manager, [manager](CChildFrame* frame) {
        if (frame)
            manager->Watch(frame->GetDocument());
    });
    // Recovered documents first, so the session does not open a second copy of one.
    QObject::connect(&events, &CShellEvents::firstIdle, manager, [manager, &shell] {
        manager->OfferRecovery();
        SessionRestore::Restore(shell);
    });
    QObject::connect(&events, &CShellEvents::closing, manager, [&shell] { SessionRestore::Save(shell); });
    QObject::connect(&events, &CShellEvents::aboutToQuit, manager, [manager] { manager->ReleaseClean(); });
    return manager;
}
