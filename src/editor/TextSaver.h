#pragma once

#include <QString>

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
    };

    static Result Save(const CMFCScintilla& editor, const QString& path, int encoding,
                       bool writeMark);
};
