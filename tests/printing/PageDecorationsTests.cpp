#include "printing/CPageControl.h"
#include "printing/CPrintJob.h"

#include <Qsci/qsciscintillabase.h>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <functional>
#include <iterator>

// What a view shows while editing must stay off paper; what colours the text must not.
namespace {

using Sci = QsciScintillaBase;

QByteArray Text()
{
    QByteArray text;
    for (int i = 0; i < 12; ++i) {
        text += "if (value) {\n\t\tcall(value, other);   \n}\n";
        text += QByteArray("a long line that has to wrap on paper ").repeated(6) + "\n";
    }
    return text;
}

struct LookCase
{
    const char* name;
    std::function<void(Sci&)> apply;
    bool showsOnPaper;
};

class PageLookTest : public ::testing::TestWithParam<LookCase>
{
public:
    static void Prepare(Sci& editor)
    {
        editor.resize(700, 500);
        editor.SendScintilla(Sci::SCI_SETCODEPAGE, Sci::SC_CP_UTF8);
        editor.SendScintilla(Sci::SCI_STYLESETFONT, Sci::STYLE_DEFAULT, "DejaVu Sans Mono");
        editor.SendScintilla(Sci::SCI_STYLESETSIZE, Sci::STYLE_DEFAULT, 10L);
        editor.SendScintilla(Sci::SCI_STYLECLEARALL);
        editor.SendScintilla(Sci::SCI_SETWRAPMODE, Sci::SC_WRAP_WORD);
        editor.SendScintilla(Sci::SCI_SETTEXT, Text().constData());
        editor.SendScintilla(Sci::SCI_SETSEL, 0L, 0L);
    }

    // The first printed page, with header, footer and line numbers, as pixels.
    static QImage Page(Sci& editor)
    {
        QImage image(620, 800, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        PrintOptions options;
        options.header = options.footer = options.lineNumbers = true;
        options.fontFace = QStringLiteral("DejaVu Sans Mono");
        CPrintJob job(editor, options, QStringLiteral("page.c"));
        EXPECT_TRUE(job.OnBeginPrinting(painter));
        EXPECT_GT(job.PrintPage(painter, 1), 0);
        job.OnEndPrinting();
        return image;
    }
};

TEST_P(PageLookTest, PrintsOnlyWhatColoursTheText)
{
    Sci plain;
    Prepare(plain);
    Sci decorated;
    Prepare(decorated);
    const QImage before = decorated.grab().toImage();
    GetParam().apply(decorated);
    // The setting is real: the view shows it.
    EXPECT_NE(decorated.grab().toImage(), before);

    const QImage page = Page(decorated);
    EXPECT_EQ(page != Page(plain), GetParam().showsOnPaper);
}

void Indicate(Sci& editor, int indicator, long style, long from, long length)
{
    editor.SendScintilla(Sci::SCI_INDICSETSTYLE, ulong(indicator), style);
    editor.SendScintilla(Sci::SCI_INDICSETFORE, ulong(indicator), 0x0000ffL);
    editor.SendScintilla(Sci::SCI_SETINDICATORCURRENT, ulong(indicator));
    editor.SendScintilla(Sci::SCI_INDICATORFILLRANGE, ulong(from), length);
}

void Mark(Sci& editor, ulong marker, long symbol, long colour, ulong line)
{
    editor.SendScintilla(Sci::SCI_MARKERDEFINE, marker, symbol);
    editor.SendScintilla(Sci::SCI_MARKERSETBACK, marker, colour);
    editor.SendScintilla(Sci::SCI_MARKERADD, line, long(marker));
}

INSTANTIATE_TEST_SUITE_P(
    Decorations, PageLookTest,
    ::testing::Values(
        LookCase{"wrapMarkers", [](Sci& e) { e.SendScintilla(Sci::SCI_SETWRAPVISUALFLAGS, ulong(Sci::SC_WRAPVISUALFLAG_END | Sci::SC_WRAPVISUALFLAG_START)); }, false},
        LookCase{"whitespaceDots", [](Sci& e) { e.SendScintilla(Sci::SCI_SETVIEWWS, ulong(Sci::SCWS_VISIBLEALWAYS)); }, false},
        LookCase{"lineEnds", [](Sci& e) { e.SendScintilla(Sci::SCI_SETVIEWEOL, 1UL); }, false},
        LookCase{"edgeLine", [](Sci& e) {
                     e.SendScintilla(Sci::SCI_SETEDGECOLUMN, 20UL);
                     e.SendScintilla(Sci::SCI_SETEDGEMODE, ulong(Sci::EDGE_LINE));
                 }, false},
        LookCase{"caretLine", [](Sci& e) {
                     e.SendScintilla(Sci::SCI_SETCARETLINEBACK, 0x40c0ffUL);
                     e.SendScintilla(Sci::SCI_SETCARETLINEVISIBLE, 1UL);
                     e.SendScintilla(Sci::SCI_SETCARETLINEVISIBLEALWAYS, 1UL);
                 }, false},
        LookCase{"indentGuides", [](Sci& e) { e.SendScintilla(Sci::SCI_SETINDENTATIONGUIDES, ulong(Sci::SC_IV_LOOKBOTH)); }, false},
        LookCase{"findMatches", [](Sci& e) { Indicate(e, 9, Sci::INDIC_ROUNDBOX, 4, 5); }, false},
        LookCase{"occurrences", [](Sci& e) { Indicate(e, 0, Sci::INDIC_SQUIGGLE, 14, 4); }, false},
        LookCase{"lineBackgroundMarker", [](Sci& e) { Mark(e, 3, Sci::SC_MARK_BACKGROUND, 0x80ff80, 1); }, false},
        LookCase{"bookmarkInItsMargin", [](Sci& e) {
                     e.SendScintilla(Sci::SCI_SETMARGINWIDTHN, 1UL, 16L);
                     Mark(e, 1, Sci::SC_MARK_ROUNDRECT, 0x0000ff, 0);
                 }, false},
        // The text's own colouring prints: styles, and indicators that colour letters.
        LookCase{"styledText", [](Sci& e) {
                     e.SendScintilla(Sci::SCI_STYLESETFORE, 5UL, 0x0000ffL);
                     e.SendScintilla(Sci::SCI_STYLESETBACK, 5UL, 0xe0ffe0L);
                     e.SendScintilla(Sci::SCI_STARTSTYLING, 0UL, 0L);
                     e.SendScintilla(Sci::SCI_SETSTYLING, 40UL, 5L);
                 }, true},
        LookCase{"letterColourIndicator", [](Sci& e) { Indicate(e, 8, Sci::INDIC_TEXTFORE, 0, 30); }, true}),
    [](const auto& info) { return std::string(info.param.name); });

// The page control draws a control's text as that control itself would on paper.
TEST(PageLook, AStyledControlPrintsAsItself)
{
    Sci source;
    PageLookTest::Prepare(source);
    struct Look { const char* face; long size; long weight; bool italic; long fore; long back; };
    const Look looks[] = {{"DejaVu Serif", 1400, 700, false, 0x0000c0, 0xffffff},
                          {"DejaVu Sans", 800, 400, true, 0x008000, 0xf0f0ff},
                          {"DejaVu Sans Mono", 1200, 300, true, 0x804000, 0xe0ffff}};
    for (unsigned long i = 0; i < std::size(looks); ++i) {
        const unsigned long style = 10 + i;
        source.SendScintilla(Sci::SCI_STYLESETFONT, style, looks[i].face);
        source.SendScintilla(Sci::SCI_STYLESETSIZEFRACTIONAL, style, looks[i].size);
        source.SendScintilla(Sci::SCI_STYLESETWEIGHT, style, looks[i].weight);
        source.SendScintilla(Sci::SCI_STYLESETITALIC, style, long(looks[i].italic));
        source.SendScintilla(Sci::SCI_STYLESETFORE, style, looks[i].fore);
        source.SendScintilla(Sci::SCI_STYLESETBACK, style, looks[i].back);
        source.SendScintilla(Sci::SCI_STYLESETEOLFILLED, style, 1L);
        source.SendScintilla(Sci::SCI_STARTSTYLING, 70 * i, 0L);
        source.SendScintilla(Sci::SCI_SETSTYLING, 50UL, long(style));
    }
    source.SendScintilla(Sci::SCI_SETTABWIDTH, 3UL);
    source.SendScintilla(Sci::SCI_SETWRAPINDENTMODE, ulong(Sci::SC_WRAPINDENT_INDENT));
    source.SendScintilla(Sci::SCI_SETEXTRADESCENT, 3UL);
    CPageControl page(source);
    const auto draw = [](Sci& control) {
        QImage image(500, 700, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        EXPECT_GT(control.SendScintilla(Sci::SCI_FORMATRANGE, 1UL, &painter, QRect(0, 0, 500, 700), 0L,
                                        control.SendScintilla(Sci::SCI_GETLENGTH)), 300);
        return image;
    };
    EXPECT_EQ(draw(page), draw(source));
}

TEST(PageLook, PrintingLeavesTheViewAsItWas)
{
    Sci editor;
    PageLookTest::Prepare(editor);
    editor.SendScintilla(Sci::SCI_SETMARGINTYPEN, 1UL, long(Sci::SC_MARGIN_SYMBOL));
    editor.SendScintilla(Sci::SCI_SETMARGINWIDTHN, 1UL, 7L);
    editor.SendScintilla(Sci::SCI_SETWRAPVISUALFLAGS, ulong(Sci::SC_WRAPVISUALFLAG_END));
    const QImage before = editor.grab().toImage();
    PageLookTest::Page(editor);
    EXPECT_EQ(editor.grab().toImage(), before);
    EXPECT_EQ(editor.SendScintilla(Sci::SCI_GETLENGTH), Text().size());
}

} // namespace
