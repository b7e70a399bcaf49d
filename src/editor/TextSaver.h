#pragma once

#include <QString>

class AnsiCodePage;
class CMFCScintilla;

// Writes a control's whole text to a file in an encoding. The file is written beside
// the old one and replaces it only when complete, so a failure leaves it intact.
class TextSaver
{
public:
    struct Result
    {
        bool ok = false;
        QString error;
        // "Ansi" text held characters the code page has none for; nothing was written.
        bool unencodable = false;
    };

    static Result Save(const CMFCScintilla& editor, const QString& path, int encoding,
                       bool writeMark, const AnsiCodePage* codePage = nullptr);
};
