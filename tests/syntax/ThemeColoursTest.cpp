#include "framework/ThemeColours.h"

#include <QColor>

#include <gtest/gtest.h>

namespace {

QColor ToQColor(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

double HueDistance(quint32 a, quint32 b)
{
    const double d = std::abs(ToQColor(a).hslHueF() - ToQColor(b).hslHueF()) * 360;
    return d > 180 ? 360 - d : d;
}

// Colours the definitions and the sheet's colour page use, as written for a white page.
const quint32 kSamples[] = {0x000000, 0xFFFFFF, 0x008000, 0xFF0000, 0x1515A3, 0x808000, 0xC08000,
                            0x8C8C8C, 0x0080FF, 0xE0E0FF, 0xF0F7FF, 0x3F7F5F};

// The light theme shows what the user chose, exactly: their colour edits are not touched.
TEST(ThemeColours, LightThemeKeepsEveryColour)
{
    const ThemeColours light(false);
    for (const quint32 colour : kSamples) {
        EXPECT_EQ(light.Back(colour), colour);
        EXPECT_EQ(light.Fore(colour, 0xFFFFFF), colour);
    }
}

// In the dark theme a light background turns dark and a tint keeps its hue; every text
// colour reads on the page and a coloured one keeps its hue.
TEST(ThemeColours, DarkThemeTurnsLightnessOverKeepingHue)
{
    const ThemeColours dark(true);
    EXPECT_EQ(dark.Back(0xFFFFFF), dark.Background());
    for (const quint32 colour : kSamples) {
        SCOPED_TRACE(ToQColor(colour).name().toStdString());
        const quint32 back = dark.Back(colour);
        const quint32 fore = dark.Fore(colour, dark.Background());
        EXPECT_GE(ThemeColours::Contrast(fore, dark.Background()), ThemeColours::MinContrast);
        const QColor original = ToQColor(colour);
        if (original.hslSaturationF() > 0.3 && original.lightnessF() > 0.1 && original.lightnessF() < 0.9) {
            EXPECT_LT(HueDistance(fore, colour), 20.0);
            EXPECT_LT(HueDistance(back, colour), 20.0);
        }
        // Light backgrounds become dark ones, so light text on them stays possible.
        if (original.lightnessF() > 0.85) {
            EXPECT_LT(ToQColor(back).lightnessF(), 0.35);
        }
    }
}

// A text colour on a coloured background of its own (a task marker: white on orange) is
// brought to the ratio against that background, not the page.
TEST(ThemeColours, DarkTextReadsOnItsOwnBackground)
{
    const ThemeColours dark(true);
    for (const quint32 lightBack : {0x0080C0u, 0xC08000u, 0xE0E0FFu, 0x00FFFFu}) {
        const quint32 back = dark.Back(lightBack);
        for (const quint32 fore : {0xFFFFFFu, 0x000000u, 0x1515A3u})
            EXPECT_GE(ThemeColours::Contrast(dark.Fore(fore, back), back), ThemeColours::MinContrast)
                << std::hex << fore << " on " << lightBack;
    }
}

} // namespace
