#include "ThemePalette.h"

#include <QStyle>
#include <QStyleFactory>

#include <memory>

namespace ThemePalette {

QPalette Dark()
{
    const QColor window(0x2D, 0x2D, 0x2D), text(0xDC, 0xDC, 0xDC), base(0x1E, 0x1E, 0x1E);
    const QColor disabled(0x80, 0x80, 0x80);
    QPalette palette(text, window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x26, 0x26));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3A, 0x3A));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x8C, 0x8C, 0x8C));
    palette.setColor(QPalette::Text, QColor(0xD4, 0xD4, 0xD4));
    palette.setColor(QPalette::Button, QColor(0x35, 0x35, 0x35));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, QColor(0xFF, 0x6E, 0x6E));
    palette.setColor(QPalette::Light, QColor(0x4A, 0x4A, 0x4A));
    palette.setColor(QPalette::Midlight, QColor(0x3E, 0x3E, 0x3E));
    palette.setColor(QPalette::Mid, QColor(0x28, 0x28, 0x28));
    palette.setColor(QPalette::Dark, QColor(0x1A, 0x1A, 0x1A));
    palette.setColor(QPalette::Shadow, QColor(0x10, 0x10, 0x10));
    palette.setColor(QPalette::Highlight, QColor(0x26, 0x4F, 0x78));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x5A, 0xA0, 0xFF));
    palette.setColor(QPalette::LinkVisited, QColor(0xB0, 0x8C, 0xFF));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x40, 0x40, 0x40));
    palette.setColor(QPalette::Disabled, QPalette::Base, window);
    return palette;
}

QPalette Light()
{
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("Fusion")));
    return fusion ? fusion->standardPalette() : QPalette(Qt::black, QColor(0xEF, 0xEF, 0xEF));
}

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

} // namespace ThemePalette
