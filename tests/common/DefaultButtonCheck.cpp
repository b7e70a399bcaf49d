#include "DefaultButtonCheck.h"

#include <QDialog>
#include <QPushButton>
#include <QTest>

namespace TestSupport {

QStringList ButtonsPressedByEnter(QDialog& dialog)
{
    QStringList pressed;
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        QObject::disconnect(button, &QPushButton::clicked, nullptr, nullptr);
        QObject::connect(button, &QPushButton::clicked, [&pressed, button] { pressed << button->text(); });
    }
    dialog.show();
    if (!QTest::qWaitForWindowExposed(&dialog))
        return {QStringLiteral("(the dialog never showed)")};
    QWidget* focus = dialog.focusWidget();
    QTest::keyClick(focus ? focus : static_cast<QWidget*>(&dialog), Qt::Key_Return);
    for (QPushButton* button : dialog.findChildren<QPushButton*>())
        QObject::disconnect(button, &QPushButton::clicked, nullptr, nullptr);
    return pressed;
}

} // namespace TestSupport
