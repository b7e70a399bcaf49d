#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

// Made by the application library the test links: a plain QApplication or CMorvaneApp.
QApplication* CreateTestApplication(int& argc, char** argv);

// Every test binary runs in a throw-away home: settings, data and caches all land in
// a temporary folder that is removed at the end.
int main(int argc, char** argv)
{
    ::testing::InitGoogleMock(&argc, argv);

    QTemporaryDir home(QDir::tempPath() + QStringLiteral("/morvane-test-XXXXXX"));
    if (!home.isValid())
        return 2;
    const QByteArray root = home.path().toUtf8();
    qputenv("HOME", root);
    qputenv("XDG_CONFIG_HOME", root + "/.config");
    qputenv("XDG_DATA_HOME", root + "/.local/share");
    qputenv("XDG_CACHE_HOME", root + "/.cache");
    qputenv("XDG_STATE_HOME", root + "/.local/state");
    qputenv("XDG_RUNTIME_DIR", root + "/run");
    QDir().mkpath(home.path() + QStringLiteral("/run"));
    QFile::setPermissions(home.path() + QStringLiteral("/run"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Machine-wide settings go to the temporary folder too.
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, home.path() + QStringLiteral("/etc"));
    QSettings::setPath(QSettings::IniFormat, QSettings::SystemScope, home.path() + QStringLiteral("/etc"));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path() + QStringLiteral("/.config"));
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, home.path() + QStringLiteral("/.config"));

    std::unique_ptr<QApplication> app(CreateTestApplication(argc, argv));
    app->setOrganizationName(QStringLiteral("Brackwyn"));
    app->setApplicationName(QStringLiteral("Morvane"));
    return RUN_ALL_TESTS();
}
