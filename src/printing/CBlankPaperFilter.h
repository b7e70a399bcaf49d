#pragma once

#include <QPaintDevice>
#include <QPaintEngine>

#include <memory>

class QPainter;

// A paint device that stands in for a page of a real device and passes every drawing on
// to a painter of that device, except fills of the paper's colour over paper where
// nothing has been drawn yet: those cannot change what the page looks like. The text
// control fills every run of text with its background, which on white paper is white;
// dropping those fills halves what a PDF page has to hold and compress.
//
// Call NewPage() after the real device starts a new page.
class CBlankPaperFilter : public QPaintDevice
{
public:
    CBlankPaperFilter(QPainter& target, const QColor& paper = Qt::white);
    ~CBlankPaperFilter() override;

    QPaintEngine* paintEngine() const override;
    void NewPage();
    // Fills dropped so far, for measuring.
    long Dropped() const;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    class CEngine;
    QPaintDevice& m_device;
    std::unique_ptr<CEngine> m_engine;
};
