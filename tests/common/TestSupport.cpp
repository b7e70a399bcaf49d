#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QUuid>
#include <gtest/gtest.h>

namespace TestSupport {

QString IsolatedRoot()
{
    return qEnvironmentVariable("HOME");
}

QString MakeTempDir()
{
    const QString path = QDir(IsolatedRoot()).filePath(
        QStringLiteral("t-") + QUuid::createUuid().toString(QUuid::Id128));
    QDir().mkpath(path);
    return path;
}

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

void ClearSettings()
{
    for (auto scope : {QSettings::UserScope, QSettings::SystemScope}) {
        QSettings settings(QSettings::NativeFormat, scope, QStringLiteral("Brackwyn"),
                           QStringLiteral("Morvane"));
        settings.clear();
        settings.sync();
    }
}

} // namespace TestSupport

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>

namespace TestSupport {

ModalAnswerer::ModalAnswerer(int button)
    : m_button(button)
{
    m_timer.setInterval(10);
    QObject::connect(&m_timer, &QTimer::timeout, this, [this] { Poll(); });
    m_timer.start();
}

void ModalAnswerer::Poll()
{
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal)
        return;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        m_texts << box->text();
        QAbstractButton* button = m_button ? box->button(QMessageBox::StandardButton(m_button)) : nullptr;
        if (button)
            button->click();
        else
            box->done(QMessageBox::Cancel);
        return;
    }
    if (auto* dialog = qobject_cast<QDialog*>(modal)) {
        m_texts << dialog->windowTitle();
        dialog->reject();
    }
}

} // namespace TestSupport
