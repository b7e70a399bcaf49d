#include "ThemeColours.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Colours are turned over in the Oklab space, where lightness is close to what the eye sees
// and changing it leaves the hue alone; sRGB would shift a blue towards purple.
struct Lab
{
    double L = 0, a = 0, b = 0;
};

double ToLinear(int channel)
{
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double FromLinear(double c)
{
    return c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1.0 / 2.4) - 0.055;
}

std::array<double, 3> LinearRgb(quint32 colour)
{
    return {ToLinear(int(colour & 0xFF)), ToLinear(int((colour >> 8) & 0xFF)), ToLinear(int((colour >> 16) & 0xFF))};
}

Lab ToLab(quint32 colour)
{
    const auto [r, g, b] = LinearRgb(colour);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

std::array<double, 3> LabToLinear(const Lab& lab)
{
    const double l = std::pow(lab.L + 0.3963377774 * lab.a + 0.2158037573 * lab.b, 3);
    const double m = std::pow(lab.L - 0.1055613458 * lab.a - 0.0638541728 * lab.b, 3);
    const double s = std::pow(lab.L - 0.0894841775 * lab.a - 1.2914855480 * lab.b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

bool InGamut(const std::array<double, 3>& rgb)
{
    constexpr double Slack = 1e-6;
    return std::all_of(rgb.begin(), rgb.end(), [](double c) { return c >= -Slack && c <= 1 + Slack; });
}

// Back to a displayable colour of the same lightness and hue: what does not fit loses
// chroma rather than being clipped channel by channel, which would change the hue.
quint32 FromLab(Lab lab)
{
    lab.L = std::clamp(lab.L, 0.0, 1.0);
    if (!InGamut(LabToLinear(lab))) {
        double low = 0, high = 1;
        for (int i = 0; i < 20; ++i) {
            const double mid = (low + high) / 2;
            (InGamut(LabToLinear({lab.L, lab.a * mid, lab.b * mid})) ? low : high) = mid;
        }
        lab.a *= low;
        lab.b *= low;
    }
    const auto rgb = LabToLinear(lab);
    quint32 out = 0;
    for (int i = 0; i < 3; ++i) {
        const int channel = int(std::lround(std::clamp(FromLinear(std::clamp(rgb[size_t(i)], 0.0, 1.0)), 0.0, 1.0) * 255));
        out |= quint32(channel) << (8 * i);
    }
    return out;
}

double Luminance(quint32 colour)
{
    const auto [r, g, b] = LinearRgb(colour);
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

// Lightness of the dark page, and of the brightest text colour turned over (black text
// becomes the dark theme's default text rather than a glaring white).
constexpr double TextTop = 0.88;
// The lightest a background gets in the dark theme: light text still reads on it.
constexpr double BackTop = 0.5;

double PageLightness()
{
    static const double lightness = ToLab(ThemeColours(true).Background()).L;
    return lightness;
}

} // namespace

ThemeColours ThemeColours::Current()
{
    const QColor base = QGuiApplication::palette().color(QPalette::Base);
    return ThemeColours(base.lightness() < 128);
}

quint32 ThemeColours::Colour(Mark mark) const
{
    switch (mark) {
    case Mark::FindMatch:
        return m_dark ? 0x30A0FF : 0x0080FF;
    case Mark::Occurrence:
        return m_dark ? 0xE0B070 : 0xC08040;
    case Mark::CompareChanged:
        return Back(0xB0F0FF);
    case Mark::CompareDeleted:
        return Back(0xC8C8FF);
    case Mark::CompareInserted:
        return Back(0xC8F0C8);
    case Mark::CompareFiller:
        return m_dark ? 0x383838 : 0xE6E6E6;
    case Mark::CompareCharacters:
        return m_dark ? 0x40A0FF : 0x3070F0;
    case Mark::CompareCurrent:
        return m_dark ? 0xD0D0D0 : 0x303030;
    case Mark::Changed:
        return m_dark ? 0x6E6EFF : 0x0000C8;
    }
    return Text();
}

quint32 ThemeColours::Back(quint32 colour) const
{
    if (!m_dark)
        return colour;
    // White becomes the page and every other background a darker or lighter shade of the
    // page, never a middle tone on which neither light nor dark text would read. The curve
    // keeps near-white tints (a caret line, a string's background) apart from the page.
    Lab lab = ToLab(colour);
    const double page = PageLightness();
    lab.L = page + std::pow(std::max(0.0, 1 - lab.L), 0.6) * (BackTop - page);
    // A tint stays a tint, a little muted so that it does not glow on the dark page.
    lab.a *= 0.8;
    lab.b *= 0.8;
    return FromLab(lab);
}

quint32 ThemeColours::Fore(quint32 colour, quint32 back) const
{
    if (!m_dark)
        return colour;
    Lab lab = ToLab(colour);
    const double page = PageLightness();
    lab.L = TextTop - lab.L * (TextTop - page);
    quint32 out = FromLab(lab);
    // Lightness moves away from the background's until the text reads against it.
    const double step = ToLab(back).L < 0.5 ? 0.01 : -0.01;
    while (Contrast(out, back) < MinContrast && lab.L > 0 && lab.L < 1) {
        lab.L = std::clamp(lab.L + step, 0.0, 1.0);
        out = FromLab(lab);
    }
    return out;
}

double ThemeColours::Contrast(quint32 a, quint32 b)
{
    const double la = Luminance(a) + 0.05;
    const double lb = Luminance(b) + 0.05;
    return la > lb ? la / lb : lb / la;
}
