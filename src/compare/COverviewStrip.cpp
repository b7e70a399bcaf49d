#include "compare/COverviewStrip.h"

#include <QMouseEvent>
#include <QPainter>

COverviewStrip::COverviewStrip(QWidget* parent)
    : QWidget(parent)
{
    setFixedWidth(18);
    setCursor(Qt::PointingHandCursor);
    setToolTip(tr("Differences in the whole file"));
}

void COverviewStrip::SetModel(const CompareModel* model)
{
    m_model = model;
    update();
}

void COverviewStrip::SetVisibleRows(int first, int count)
{
    if (first == m_first && count == m_count)
        return;
    m_first = first;
    m_count = count;
    update();
}

void COverviewStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base).darker(104));
    if (!m_model || m_model->RowCount() == 0)
        return;
    const double scale = double(height()) / m_model->RowCount();
    const int half = width() / 2;
    const QColor changed(0xFF, 0xD8, 0x40), deleted(0xE0, 0x50, 0x50), inserted(0x40, 0xB0, 0x40);
    for (const CompareModel::Block& b : m_model->Blocks()) {
        if (!b.difference)
            continue;
        const int paired = std::min(b.count[0], b.count[1]);
        auto band = [&](int rowFrom, int rows, int x, int w, const QColor& colour) {
            if (rows <= 0)
                return;
            const int y = int(rowFrom * scale);
            const int h = std::max(2, int((rowFrom + rows) * scale) - y);
            painter.fillRect(x, y, w, h, colour);
        };
        band(b.row, paired, 1, width() - 2, changed);
        band(b.row + paired, b.count[0] - paired, 1, half - 1, deleted);
        band(b.row + paired, b.count[1] - paired, half, width() - half - 1, inserted);
    }
    if (m_count > 0) {
        painter.setPen(palette().color(QPalette::Text));
        const int y = int(m_first * scale);
        const int h = std::max(3, int(m_count * scale));
        painter.drawRect(0, y, width() - 1, std::min(h, height() - y - 1));
    }
}

int COverviewStrip::RowAt(int y) const
{
    if (!m_model || height() <= 0)
        return 0;
    return int(double(y) / height() * m_model->RowCount());
}

void COverviewStrip::mousePressEvent(QMouseEvent* event)
{
    Q_EMIT rowClicked(RowAt(int(event->position().y())));
}

void COverviewStrip::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        Q_EMIT rowClicked(RowAt(int(event->position().y())));
}
