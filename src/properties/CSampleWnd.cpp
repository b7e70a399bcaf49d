#include "CSampleWnd.h"

#include <QPainter>

CSampleWnd::CSampleWnd(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("SyntaxSample"));
    setMinimumHeight(48);
}

void CSampleWnd::SetColours(const QColor& fore, const QColor& back)
{
    m_fore = fore;
    m_back = back;
    update();
}

QSize CSampleWnd::sizeHint() const
{
    return {220, 56};
}

void CSampleWnd::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect frame = rect().adjusted(0, 0, -1, -1);
    const bool enabled = isEnabled();
    painter.fillRect(frame, enabled ? m_back : palette().color(QPalette::Disabled, QPalette::Window));
    painter.setPen(palette().color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::Mid));
    painter.drawRect(frame);
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(10);
    painter.setFont(font);
    painter.setPen(enabled ? m_fore : palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.drawText(frame, Qt::AlignCenter, SampleText());
}
