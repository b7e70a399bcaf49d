#pragma once

#include <QColor>
#include <QPushButton>

// A button showing a colour swatch; a click chooses another colour.
class CColourButton : public QPushButton
{
    Q_OBJECT
public:
    explicit CColourButton(QWidget* parent = nullptr);
    QColor Colour() const { return m_colour; }
    void SetColour(const QColor& colour);

Q_SIGNALS:
    void colourChanged(const QColor& colour);

private:
    void Choose();
    QColor m_colour = Qt::black;
};
