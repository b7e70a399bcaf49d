#pragma once

#include <QColor>
#include <QWidget>

// A framed sample of text in a style's colours, greyed while disabled.
class CSampleWnd : public QWidget
{
    Q_OBJECT
public:
    explicit CSampleWnd(QWidget* parent = nullptr);

    void SetColours(const QColor& fore, const QColor& back);
    QColor Fore() const { return m_fore; }
    QColor Back() const { return m_back; }
    static QString SampleText() { return QStringLiteral("AaBbCcXxYyZz"); }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_fore = Qt::black;
    QColor m_back = Qt::white;
};
