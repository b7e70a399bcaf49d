#pragma once

#include <Qsci/qsciscintillabase.h>

#include <QByteArray>

// A bare text control holding `text`, with "|" marking the caret and "[...]" a selection.
struct BareControl
{
    QsciScintillaBase control;

    explicit BareControl(QByteArray text)
    {
        Send(QsciScintillaBase::SCI_SETCODEPAGE, QsciScintillaBase::SC_CP_UTF8);
        Send(QsciScintillaBase::SCI_SETEOLMODE, QsciScintillaBase::SC_EOL_LF);
        long anchor = text.indexOf('[');
        long caret = -1;
        if (anchor >= 0) {
            text.remove(int(anchor), 1);
            caret = text.indexOf(']');
            text.remove(int(caret), 1);
        } else {
            caret = text.indexOf('|');
            if (caret >= 0)
                text.remove(int(caret), 1);
            else
                caret = 0;
            anchor = caret;
        }
        Send(QsciScintillaBase::SCI_SETTEXT, 0, reinterpret_cast<long>(text.constData()));
        Send(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);
        Send(QsciScintillaBase::SCI_SETSEL, anchor, caret);
    }
    long Send(unsigned int msg, unsigned long w = 0, long l = 0) { return control.SendScintilla(msg, w, l); }
    QByteArray Text()
    {
        const long length = Send(QsciScintillaBase::SCI_GETLENGTH);
        QByteArray text(int(length) + 1, '\0');
        Send(QsciScintillaBase::SCI_GETTEXT, length + 1, reinterpret_cast<long>(text.data()));
        text.chop(1);
        return text;
    }
    // The text with the caret marked, for checking where it ended up.
    QByteArray TextWithCaret()
    {
        QByteArray text = Text();
        text.insert(int(Send(QsciScintillaBase::SCI_GETCURRENTPOS)), '|');
        return text;
    }
    QByteArray Selected()
    {
        const long start = Send(QsciScintillaBase::SCI_GETSELECTIONSTART);
        return Text().mid(int(start), int(Send(QsciScintillaBase::SCI_GETSELECTIONEND) - start));
    }
    void Undo() { Send(QsciScintillaBase::SCI_UNDO); }
};
