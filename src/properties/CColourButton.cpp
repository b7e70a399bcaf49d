#include "CColourButton.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

CColourButton::CColourButton(QWidget* parent) : QPushButton(parent)
{
    connect(this, &QPushButton::clicked, this, &CColourButton::Choose);
    SetColour(m_colour);
}

void CColourButton::SetColour(const QColor& colour)
{
    const bool changed = colour != m_colour;
    m_colour = colour;
    QPixmap swatch(28, 14);
    swatch.fill(colour);
    QPainter painter(&swatch);
    painter.setPen(Qt::gray);
    painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    painter.end();
    setIcon(QIcon(swatch));
    setIconSize(swatch.size());
    setText(colour.name().toUpper());
    if (changed)
        Q_EMIT colourChanged(colour);
}

void CColourButton::Choose()
{
    const QColor chosen = QColorDialog::getColor(m_colour, this);
    if (chosen.isValid())
        SetColour(chosen);
}
