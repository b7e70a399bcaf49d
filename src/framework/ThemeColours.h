#pragma once

#include <QtGlobal>

// The colours of the light or the dark theme, for everything that paints text or marks
// over the editor's page: the control's own parts, the indicators of find, compare and the
// like, and the colours of syntax definitions, which are written for a white page and are
// carried over to a dark one here. Colours are 0x00BBGGRR, as the editing control takes them.
class ThemeColours
{
public:
    explicit ThemeColours(bool dark = false)
        : m_dark(dark)
    {
    }

    // The theme the application shows now: dark when its palette's base is dark.
    static ThemeColours Current();

    bool IsDark() const { return m_dark; }

    // The page and its default text.
    quint32 Background() const { return m_dark ? 0x1E1E1E : 0xFFFFFF; }
    quint32 Text() const { return m_dark ? 0xD4D4D4 : 0x000000; }
    quint32 Caret() const { return m_dark ? 0xF0F0F0 : 0x000000; }
    quint32 SelectionBack() const { return m_dark ? 0x6F4F26 : 0xC56A31; }
    quint32 SelectionText() const { return 0xFFFFFF; }
    quint32 MarginBack() const { return m_dark ? 0x2B2B2B : 0xF0F0F0; }
    quint32 LineNumber() const { return m_dark ? 0xB0B060 : 0x808000; }
    quint32 FoldMarginBack() const { return m_dark ? 0x252525 : 0xFFFFFF; }
    quint32 FoldMarkerFore() const { return m_dark ? 0x252525 : 0xFFFFFF; }
    quint32 FoldMarkerBack() const { return m_dark ? 0x909090 : 0x808080; }
    quint32 BookmarkBack() const { return m_dark ? 0xE0A060 : 0xD07030; }
    quint32 BookmarkFore() const { return m_dark ? 0x603010 : 0x803010; }
    quint32 Whitespace() const { return m_dark ? 0x606060 : 0xB0B0B0; }

    // Indicators and marks other features draw over the text.
    enum class Mark {
        FindMatch,      // every match of a search
        Occurrence,     // the word under the caret, elsewhere
        CompareChanged, // line backgrounds of a compare
        CompareDeleted,
        CompareInserted,
        CompareFiller,
        CompareCharacters, // the changed characters inside a changed line
        CompareCurrent,    // the arrow at the current difference
        Changed,           // changed bytes of the hex view
    };
    quint32 Colour(Mark mark) const;

    // A background chosen for a white page, on this theme's page: the same colour in the
    // light theme; in the dark one its lightness turned over, keeping its hue.
    quint32 Back(quint32 colour) const;
    // A text colour chosen for a white page, on `back` (a colour of this theme): the same
    // colour in the light theme; in the dark one turned over like a background and then
    // lightened or darkened, keeping its hue, until it reads against `back`.
    quint32 Fore(quint32 colour, quint32 back) const;

    // The contrast ratio of two colours (1 to 21) as the accessibility guidelines define it.
    static double Contrast(quint32 a, quint32 b);
    // What text colours are brought to on the dark page: the guidelines' ratio for body text.
    static constexpr double MinContrast = 4.5;

private:
    bool m_dark = false;
};
