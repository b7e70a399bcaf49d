#include "PrintLayout.h"

#include <cmath>

namespace PrintLayout {

QString HeaderName(const QString& path, const QString& title)
{
    if (path.isEmpty() || path.size() >= MaxHeaderPathLength)
        return title;
    return path;
}

int LinesPerPage(int pageHeight, int lineHeight, bool header, bool footer)
{
    if (lineHeight <= 0 || pageHeight <= 0)
        return 0;
    int lines = pageHeight / lineHeight;
    if (header && lines > 3)
        lines -= 2;
    if (footer && lines > 3)
        lines -= 2;
    return lines;
}

int MarginDivisor(bool metric)
{
    return metric ? 2540 : 1000;
}

static int MulDiv(int value, int numerator, int denominator)
{
    return int(std::lround(double(value) * numerator / denominator));
}

QMargins MarginsToDevice(const Margins& margins, int dpiX, int dpiY, bool metric)
{
    if (margins.IsZero())
        return {};
    const int divisor = MarginDivisor(metric);
    return QMargins(MulDiv(margins.left, dpiX, divisor), MulDiv(margins.top, dpiY, divisor),
                    MulDiv(margins.right, dpiX, divisor), MulDiv(margins.bottom, dpiY, divisor));
}

bool IsMetric(const QLocale& locale)
{
    return locale.measurementSystem() == QLocale::MetricSystem;
}

Margins DefaultMargins(bool metric)
{
    const int m = metric ? 1500 : 600;
    return {m, m, m, m};
}

QMarginsF ToUnits(const Margins& margins, bool metric)
{
    const double scale = metric ? 100.0 : 1000.0;
    return QMarginsF(margins.left / scale, margins.top / scale, margins.right / scale,
                     margins.bottom / scale);
}

Margins FromUnits(const QMarginsF& units, bool metric)
{
    const double scale = metric ? 100.0 : 1000.0;
    return {int(std::lround(units.left() * scale)), int(std::lround(units.top() * scale)),
            int(std::lround(units.right() * scale)), int(std::lround(units.bottom() * scale))};
}

PageRects ComputeRects(const QRect& device, const QMargins& margins, int bandHeight, bool header,
                       bool footer)
{
    PageRects rects;
    rects.page = device;
    rects.text = device.marginsRemoved(margins);
    if (header) {
        rects.header = QRect(rects.text.left(), rects.text.top(), rects.text.width(), bandHeight);
        rects.text.setTop(rects.text.top() + bandHeight);
    }
    if (footer) {
        rects.footer = QRect(rects.text.left(), rects.text.bottom() + 1 - bandHeight,
                             rects.text.width(), bandHeight);
        rects.text.setBottom(rects.text.bottom() - bandHeight);
    }
    return rects;
}

QList<long> Paginate(long start, long end, const std::function<long(long)>& formatPage,
                     const std::function<bool(long)>& keepGoing)
{
    QList<long> starts{start};
    long position = start;
    while (position < end) {
        const long next = formatPage(position);
        if (next <= position || next >= end)
            break;
        starts << next;
        position = next;
        if (keepGoing && !keepGoing(next))
            break;
    }
    return starts;
}

} // namespace PrintLayout
