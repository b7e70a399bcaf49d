#include "CBlankPaperFilter.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextItem>

#include <algorithm>
#include <vector>

class CBlankPaperFilter::CEngine : public QPaintEngine
{
public:
    CEngine(QPainter& target, const QColor& paper)
        : QPaintEngine(QPaintEngine::AllFeatures), m_out(target), m_paper(paper.rgba())
    {
    }

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }

    void updateState(const QPaintEngineState& state) override
    {
        using State = const QPaintEngineState&;
        // What the painter changed, passed on in the order the real painter would apply it.
        static constexpr struct
        {
            DirtyFlag flag;
            void (*pass)(QPainter&, State);
        } kPasses[] = {
            {DirtyPen, [](QPainter& out, State in) { out.setPen(in.pen()); }},
            {DirtyBrush, [](QPainter& out, State in) { out.setBrush(in.brush()); }},
            {DirtyBrushOrigin, [](QPainter& out, State in) { out.setBrushOrigin(in.brushOrigin()); }},
            {DirtyFont, [](QPainter& out, State in) { out.setFont(in.font()); }},
            {DirtyBackground, [](QPainter& out, State in) { out.setBackground(in.backgroundBrush()); }},
            {DirtyBackgroundMode, [](QPainter& out, State in) { out.setBackgroundMode(in.backgroundMode()); }},
            {DirtyTransform, [](QPainter& out, State in) { out.setTransform(in.transform()); }},
            {DirtyClipRegion, [](QPainter& out, State in) { out.setClipRegion(in.clipRegion(), in.clipOperation()); }},
            {DirtyClipPath, [](QPainter& out, State in) { out.setClipPath(in.clipPath(), in.clipOperation()); }},
            {DirtyClipEnabled, [](QPainter& out, State in) { out.setClipping(in.isClipEnabled()); }},
            {DirtyHints, [](QPainter& out, State in) { out.setRenderHints(in.renderHints(), true); }},
            {DirtyCompositionMode, [](QPainter& out, State in) { out.setCompositionMode(in.compositionMode()); }},
            {DirtyOpacity, [](QPainter& out, State in) { out.setOpacity(in.opacity()); }},
        };
        const DirtyFlags flags = state.state();
        for (const auto& step : kPasses) {
            if (flags & step.flag)
                step.pass(m_out, state);
        }
    }

    void drawRects(const QRectF* rects, int count) override
    {
        const bool blank = IsBlankFill();
        if (blank && std::all_of(rects, rects + count, [this](const QRectF& r) { return OnBlankPaper(r); })) {
            m_dropped += count;
            return;
        }
        m_out.drawRects(rects, count);
        // A blank fill leaves paper behind: nothing later needs to keep out of its way.
        if (!blank) {
            for (int i = 0; i < count; ++i)
                Mark(rects[i]);
        }
    }
    void drawRects(const QRect* rects, int count) override
    {
        for (int i = 0; i < count; ++i) {
            const QRectF rect(rects[i]);
            drawRects(&rect, 1);
        }
    }
    void drawLines(const QLineF* lines, int count) override
    {
        m_out.drawLines(lines, count);
        for (int i = 0; i < count; ++i)
            Mark(QRectF(lines[i].p1(), lines[i].p2()).normalized());
    }
    void drawEllipse(const QRectF& rect) override
    {
        m_out.drawEllipse(rect);
        Mark(rect);
    }
    void drawPath(const QPainterPath& path) override
    {
        m_out.drawPath(path);
        Mark(path.controlPointRect());
    }
    void drawPoints(const QPointF* points, int count) override
    {
        m_out.drawPoints(points, count);
        for (int i = 0; i < count; ++i)
            Mark(QRectF(points[i], QSizeF(0, 0)));
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        if (mode == PolylineMode)
            m_out.drawPolyline(points, count);
        else
            m_out.drawPolygon(points, count, mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
        Mark(QPolygonF(QList<QPointF>(points, points + count)).boundingRect());
    }
    void drawPixmap(const QRectF& rect, const QPixmap& pixmap, const QRectF& source) override
    {
        m_out.drawPixmap(rect, pixmap, source);
        Mark(rect);
    }
    void drawImage(const QRectF& rect, const QImage& image, const QRectF& source,
                   Qt::ImageConversionFlags flags) override
    {
        m_out.drawImage(rect, image, source, flags);
        Mark(rect);
    }
    void drawTiledPixmap(const QRectF& rect, const QPixmap& pixmap, const QPointF& offset) override
    {
        m_out.drawTiledPixmap(rect, pixmap, offset);
        Mark(rect);
    }
    void drawTextItem(const QPointF& at, const QTextItem& item) override
    {
        m_out.drawTextItem(at, item);
        // A font's ascent and descent hold its glyphs, but a slanted or wide glyph may
        // reach past its advance to either side.
        const qreal height = item.ascent() + item.descent();
        const QRectF box(at.x() - height / 4, at.y() - item.ascent(), item.width() + height / 2, height);
        m_marks.push_back(ToDevice(box));
    }

    void NewPage()
    {
        m_marks.clear();
        m_floor = -1e300;
    }
    long Dropped() const { return m_dropped; }

private:
    // A solid fill of exactly the paper's colour, no outline, painted over what is there.
    bool IsBlankFill() const
    {
        const QPaintEngineState* s = state;
        return s && s->pen().style() == Qt::NoPen && s->brush().style() == Qt::SolidPattern
               && s->brush().color().rgba() == m_paper && s->opacity() >= 1.0
               && s->compositionMode() == QPainter::CompositionMode_SourceOver;
    }
    QRectF ToDevice(const QRectF& rect) const
    {
        return state && !state->transform().isIdentity() ? state->transform().mapRect(rect) : rect;
    }
    // Whether nothing drawn so far on this page reaches into `rect`. Fills come down the
    // page, so marks wholly above the highest fill asked about can be forgotten; a fill
    // above that line is passed on, as something forgotten might lie under it.
    bool OnBlankPaper(const QRectF& rect)
    {
        const QRectF area = ToDevice(rect);
        if (area.top() < m_floor)
            return false;
        if (area.top() > m_floor) {
            m_floor = area.top();
            m_marks.erase(std::remove_if(m_marks.begin(), m_marks.end(),
                                         [this](const QRectF& mark) { return mark.bottom() <= m_floor; }),
                          m_marks.end());
        }
        return std::none_of(m_marks.begin(), m_marks.end(),
                            [&area](const QRectF& mark) { return mark.intersects(area); });
    }
    // Ink may spread past an outline by the pen's width and by anti-aliasing.
    void Mark(const QRectF& rect)
    {
        const qreal spread = 1 + (state ? state->pen().widthF() : 0);
        m_marks.push_back(ToDevice(rect).adjusted(-spread, -spread, spread, spread));
    }

    QPainter& m_out;
    QRgb m_paper;
    std::vector<QRectF> m_marks;
    qreal m_floor = -1e300;
    long m_dropped = 0;
};

CBlankPaperFilter::CBlankPaperFilter(QPainter& target, const QColor& paper)
    : m_device(*target.device()), m_engine(std::make_unique<CEngine>(target, paper))
{
}

CBlankPaperFilter::~CBlankPaperFilter() = default;

QPaintEngine* CBlankPaperFilter::paintEngine() const
{
    return m_engine.get();
}

void CBlankPaperFilter::NewPage()
{
    m_engine->NewPage();
}

long CBlankPaperFilter::Dropped() const
{
    return m_engine->Dropped();
}

int CBlankPaperFilter::metric(PaintDeviceMetric which) const
{
    const QPaintDevice& d = m_device;
    switch (which) {
    case PdmWidth: return d.width();
    case PdmHeight: return d.height();
    case PdmWidthMM: return d.widthMM();
    case PdmHeightMM: return d.heightMM();
    case PdmNumColors: return d.colorCount();
    case PdmDepth: return d.depth();
    case PdmDpiX: return d.logicalDpiX();
    case PdmDpiY: return d.logicalDpiY();
    case PdmPhysicalDpiX: return d.physicalDpiX();
    case PdmPhysicalDpiY: return d.physicalDpiY();
    case PdmDevicePixelRatio: return int(d.devicePixelRatio());
    case PdmDevicePixelRatioScaled: return int(d.devicePixelRatio() * QPaintDevice::devicePixelRatioFScale());
    }
    return 0;
}
