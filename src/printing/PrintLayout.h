#pragma once

#include <QList>
#include <QLocale>
#include <QMargins>
#include <QRect>
#include <QString>

#include <functional>

// The arithmetic of a printed page, kept apart from any device so that it can be
// checked on its own: which name the header shows, how many lines fit, where the
// margins fall and where each page starts.
namespace PrintLayout {

// Paths this long or longer do not fit a header line; the title stands in for them.
inline constexpr int MaxHeaderPathLength = 69;

// Margins as the page setup keeps them: left, top, right, bottom, in hundredths of a
// millimetre when metric, else in thousandths of an inch.
struct Margins
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool IsZero() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    bool operator==(const Margins&) const = default;
};

QString HeaderName(const QString& path, const QString& title);

// Lines of `lineHeight` that fit `pageHeight`; the header and the footer take two lines
// each, but only while more than three are left for the text.
int LinesPerPage(int pageHeight, int lineHeight, bool header, bool footer);

// 2540 for hundredths of a millimetre, 1000 for thousandths of an inch.
int MarginDivisor(bool metric);

// The margins in device units. All four zero stay zero; otherwise each is scaled by
// the device's resolution across (left, right) or down (top, bottom), rounded.
QMargins MarginsToDevice(const Margins& margins, int dpiX, int dpiY, bool metric);

// Whether the locale measures in metric units, and the page setup's starting margins
// for it: 15 mm, or 0.6 inch.
bool IsMetric(const QLocale& locale);
Margins DefaultMargins(bool metric);

// Millimetres or inches, as a page layout takes them, and back.
QMarginsF ToUnits(const Margins& margins, bool metric);
Margins FromUnits(const QMarginsF& units, bool metric);

struct PageRects
{
    QRect page;   // the whole printable area
    QRect text;   // where the text is laid out
    QRect header; // above the text; empty without a header
    QRect footer; // below the text; empty without a footer
};

// The page less the margins; the header and the footer each take `bandHeight` off the
// text area when they are on.
PageRects ComputeRects(const QRect& device, const QMargins& margins, int bandHeight, bool header,
                       bool footer);

// Lays out pages from `start` until `end`: `formatPage(position)` returns where the page
// beginning at `position` ends. Returns each page's start, always at least one. A page
// that makes no progress (nothing fits) ends the run rather than loop. `keepGoing` is
// asked after each page with the position reached; false stops early (cancel).
QList<long> Paginate(long start, long end, const std::function<long(long)>& formatPage,
                     const std::function<bool(long)>& keepGoing = {});

} // namespace PrintLayout
