#pragma once

#include <Qsci/qsciscintillabase.h>

// A hidden control that lays out and draws printed pages. It shares the document of the
// control being printed (text, colouring, indicator values) and copies its text styles,
// but none of its editing decorations: no caret line, selection, whitespace dots, wrap
// markers, edge line, find or occurrence indicators, markers or folding. Printing through
// it also leaves the visible view alone, so nothing on screen changes while pages are made.
class CPageControl : public QsciScintillaBase
{
public:
    explicit CPageControl(QsciScintillaBase& source);

    // Shows the line numbers in the one margin that prints, or no margin at all.
    void SetLineNumbers(bool on);

private:
    void CopyLook(QsciScintillaBase& source);
};
