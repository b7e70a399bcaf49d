#pragma once

#include "compare/CompareModel.h"

#include <QWidget>

// The strip beside the scroll bar: the whole compare at once, every difference a mark
// at its place, the visible rows framed. A click scrolls there.
class COverviewStrip : public QWidget
{
    Q_OBJECT
public:
    explicit COverviewStrip(QWidget* parent = nullptr);

    void SetModel(const CompareModel* model);
    void SetVisibleRows(int first, int count);
    QSize sizeHint() const override { return {18, 100}; }

Q_SIGNALS:
    void rowClicked(int row);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    int RowAt(int y) const;

    const CompareModel* m_model = nullptr;
    int m_first = 0;
    int m_count = 0;
};
