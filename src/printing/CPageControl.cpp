#include "CPageControl.h"

#include <QByteArray>

namespace {

using Sci = QsciScintillaBase;

long Get(QsciScintillaBase& control, unsigned int message, unsigned long wParam = 0)
{
    return control.SendScintilla(message, wParam, 0L);
}

} // namespace

CPageControl::CPageControl(QsciScintillaBase& source)
{
    setAttribute(Qt::WA_DontShowOnScreen);
    void* document = reinterpret_cast<void*>(source.SendScintilla(Sci::SCI_GETDOCPOINTER));
    SendScintilla(Sci::SCI_SETDOCPOINTER, 0UL, document);
    CopyLook(source);
    SetLineNumbers(false);
}

void CPageControl::SetLineNumbers(bool on)
{
    int width = 0;
    if (on) {
        const long lines = SendScintilla(Sci::SCI_GETLINECOUNT);
        const QByteArray sample = "_" + QByteArray(QByteArray::number(qlonglong(lines)).size(), '9');
        width = int(SendScintilla(Sci::SCI_TEXTWIDTH, Sci::STYLE_LINENUMBER, sample.constData()));
    }
    SendScintilla(Sci::SCI_SETMARGINTYPEN, 0UL, long(Sci::SC_MARGIN_NUMBER));
    SendScintilla(Sci::SCI_SETMARGINWIDTHN, 0UL, long(width));
    for (unsigned long margin = 1; margin < 5; ++margin)
        SendScintilla(Sci::SCI_SETMARGINWIDTHN, margin, 0L);
}

void CPageControl::CopyLook(QsciScintillaBase& source)
{
    // What decides where lines break and how tall they are.
    const unsigned int same[][2] = {
        {Sci::SCI_GETTABWIDTH, Sci::SCI_SETTABWIDTH},
        {Sci::SCI_GETPRINTWRAPMODE, Sci::SCI_SETPRINTWRAPMODE},
        {Sci::SCI_GETWRAPINDENTMODE, Sci::SCI_SETWRAPINDENTMODE},
        {Sci::SCI_GETWRAPSTARTINDENT, Sci::SCI_SETWRAPSTARTINDENT},
        {Sci::SCI_GETEXTRAASCENT, Sci::SCI_SETEXTRAASCENT},
        {Sci::SCI_GETEXTRADESCENT, Sci::SCI_SETEXTRADESCENT},
        {Sci::SCI_GETCONTROLCHARSYMBOL, Sci::SCI_SETCONTROLCHARSYMBOL},
        {Sci::SCI_GETFONTQUALITY, Sci::SCI_SETFONTQUALITY},
    };
    for (const auto& pair : same)
        SendScintilla(pair[1], static_cast<unsigned long>(Get(source, pair[0])));

    QByteArray face;
    for (unsigned long style = 0; style <= Sci::STYLE_MAX; ++style) {
        const long faceLength = source.SendScintilla(Sci::SCI_STYLEGETFONT, style, static_cast<void*>(nullptr));
        face.fill('\0', int(qMax(0L, faceLength)) + 1);
        source.SendScintilla(Sci::SCI_STYLEGETFONT, style, static_cast<void*>(face.data()));
        // No name means the control's default face; an empty name would ask for another.
        if (face.front() != '\0')
            SendScintilla(Sci::SCI_STYLESETFONT, style, face.constData());
        SendScintilla(Sci::SCI_STYLESETSIZEFRACTIONAL, style, Get(source, Sci::SCI_STYLEGETSIZEFRACTIONAL, style));
        SendScintilla(Sci::SCI_STYLESETWEIGHT, style, Get(source, Sci::SCI_STYLEGETWEIGHT, style));
        const unsigned int styleValues[][2] = {
            {Sci::SCI_STYLEGETITALIC, Sci::SCI_STYLESETITALIC},
            {Sci::SCI_STYLEGETUNDERLINE, Sci::SCI_STYLESETUNDERLINE},
            {Sci::SCI_STYLEGETFORE, Sci::SCI_STYLESETFORE},
            {Sci::SCI_STYLEGETBACK, Sci::SCI_STYLESETBACK},
            {Sci::SCI_STYLEGETEOLFILLED, Sci::SCI_STYLESETEOLFILLED},
            {Sci::SCI_STYLEGETCHARACTERSET, Sci::SCI_STYLESETCHARACTERSET},
            {Sci::SCI_STYLEGETCASE, Sci::SCI_STYLESETCASE},
            {Sci::SCI_STYLEGETVISIBLE, Sci::SCI_STYLESETVISIBLE},
        };
        for (const auto& pair : styleValues)
            SendScintilla(pair[1], style, Get(source, pair[0], style));
    }

    // Indicators that colour the text are part of its colouring and print; every other
    // kind (boxes and underlines of finds, occurrences, changes) marks an editing state.
    for (unsigned long indicator = 0; indicator <= Sci::INDIC_MAX; ++indicator) {
        const long kind = Get(source, Sci::SCI_INDICGETSTYLE, indicator);
        if (kind != Sci::INDIC_TEXTFORE) {
            SendScintilla(Sci::SCI_INDICSETSTYLE, indicator, long(Sci::INDIC_HIDDEN));
            continue;
        }
        SendScintilla(Sci::SCI_INDICSETSTYLE, indicator, kind);
        SendScintilla(Sci::SCI_INDICSETFORE, indicator, Get(source, Sci::SCI_INDICGETFORE, indicator));
        SendScintilla(Sci::SCI_INDICSETFLAGS, indicator, Get(source, Sci::SCI_INDICGETFLAGS, indicator));
    }
}
