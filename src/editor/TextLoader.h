#pragma once

#include <QString>
#include <cstddef>

class AnsiCodePage;
class CMFCScintilla;
class IProgressSink;

// Moves a file's bytes into a control: reads in pieces, decodes, and adds the text
// with the control's change notifications and undo collection off, which is what
// makes large files load fast. Afterwards the control is as if the text had been
// typed and saved: save point set, undo history empty.
//
// With a progress sink and a file of more than a few pieces, reading and decoding run on
// a thread of their own while this one feeds the control in large steps, keeps the
// interface alive and offers Cancel.
class TextLoader
{
public:
    struct Result
    {
        bool ok = false;
        QString error;          // the system's reason when the file could not be read
        qint64 bytesRead = 0;
        std::size_t lostBytes = 0; // bytes that could not become text (see EncodingReader)
        bool cancelled = false;     // the user cancelled; the control's text is partial
    };

    static Result Load(CMFCScintilla& editor, const QString& path, int encoding, int bomLength,
                       IProgressSink* progress = nullptr,
                       const AnsiCodePage* codePage = nullptr);

private:
    static Result LoadInSteps(CMFCScintilla& editor, const QString& path, int encoding,
                              int bomLength, IProgressSink& progress, const AnsiCodePage* codePage);
};
