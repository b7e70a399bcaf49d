#include "printing/CBlankPaperFilter.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <functional>

// Drawing through the filter must give the very pixels of drawing straight onto the
// page, while fills of paper over untouched paper are dropped.
namespace {

struct FilterCase
{
    const char* name;
    std::function<void(QPainter&)> draw;
    long dropped;
};

using BlankPaperFilterTest = ::testing::TestWithParam<FilterCase>;

QImage Paper()
{
    QImage image(300, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

void Text(QPainter& p, int y, const QColor& colour = Qt::black)
{
    p.setPen(colour);
    p.setFont(QFont(QStringLiteral("DejaVu Sans"), 14));
    p.drawText(QPointF(20, y), QStringLiteral("gypsy jig"));
}

TEST_P(BlankPaperFilterTest, DrawsWhatTheTargetWouldAndDropsOnlyBlankFills)
{
    QImage direct = Paper();
    {
        QPainter painter(&direct);
        GetParam().draw(painter);
    }
    QImage filtered = Paper();
    long dropped = 0;
    {
        QPainter out(&filtered);
        CBlankPaperFilter filter(out);
        QPainter painter(&filter);
        GetParam().draw(painter);
        dropped = filter.Dropped();
    }
    EXPECT_EQ(filtered, direct);
    EXPECT_EQ(dropped, GetParam().dropped);
}

INSTANTIATE_TEST_SUITE_P(
    Drawings, BlankPaperFilterTest,
    ::testing::Values(
        FilterCase{"whiteOnBlank", [](QPainter& p) { p.fillRect(QRectF(10, 10, 100, 30), Qt::white); }, 1},
        FilterCase{"whiteOverText", [](QPainter& p) {
                       Text(p, 40);
                       p.fillRect(QRectF(30, 20, 40, 30), Qt::white);
                   }, 0},
        FilterCase{"whiteBesideText", [](QPainter& p) {
                       Text(p, 40);
                       p.fillRect(QRectF(0, 120, 300, 20), Qt::white);
                   }, 1},
        FilterCase{"whiteOverALine", [](QPainter& p) {
                       p.setPen(QPen(Qt::red, 3));
                       p.drawLine(0, 50, 300, 50);
                       p.fillRect(QRectF(100, 45, 50, 10), Qt::white);
                   }, 0},
        FilterCase{"colouredFill", [](QPainter& p) { p.fillRect(QRectF(10, 10, 100, 30), QColor(0xe0, 0xff, 0xe0)); }, 0},
        FilterCase{"whiteOverColour", [](QPainter& p) {
                       p.fillRect(QRectF(10, 10, 100, 30), Qt::blue);
                       p.fillRect(QRectF(50, 20, 100, 30), Qt::white);
                   }, 0},
        FilterCase{"outlinedWhite", [](QPainter& p) {
                       p.setPen(Qt::black);
                       p.setBrush(Qt::white);
                       p.drawRect(QRectF(10, 10, 100, 30));
                   }, 0},
        FilterCase{"translucentWhiteOverColour", [](QPainter& p) {
                       p.fillRect(QRectF(0, 0, 300, 200), Qt::darkGray);
                       p.fillRect(QRectF(10, 10, 100, 30), QColor(255, 255, 255, 128));
                   }, 0},
        FilterCase{"rowsOfTextWithBackgrounds", [](QPainter& p) {
                       // As the text control prints: each row's blank background, then its text.
                       for (int row = 0; row < 5; ++row) {
                           p.fillRect(QRectF(0, row * 30, 300, 30), Qt::white);
                           Text(p, row * 30 + 22, row % 2 ? Qt::blue : Qt::black);
                       }
                   }, 5},
        FilterCase{"clippedAndMoved", [](QPainter& p) {
                       p.translate(0, 100);
                       p.setClipRect(QRect(0, 0, 150, 50));
                       Text(p, 30);
                       p.fillRect(QRectF(0, 0, 300, 40), Qt::white);
                       p.fillRect(QRectF(0, 60, 300, 20), Qt::white);
                       p.setClipping(false);
                       Text(p, 80, Qt::darkGreen);
                   }, 1}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(BlankPaperFilter, ANewPageStartsBlank)
{
    QImage page = Paper();
    QPainter out(&page);
    CBlankPaperFilter filter(out);
    QPainter painter(&filter);
    Text(painter, 40);
    painter.fillRect(QRectF(0, 20, 300, 30), Qt::white);
    EXPECT_EQ(filter.Dropped(), 0);
    filter.NewPage();
    painter.fillRect(QRectF(0, 20, 300, 30), Qt::white);
    EXPECT_EQ(filter.Dropped(), 1);
}

} // namespace
