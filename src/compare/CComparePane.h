#pragma once

#include "compare/CharDiff.h"
#include "compare/CompareModel.h"

#include <Qsci/qsciscintillabase.h>

#include <QByteArray>
#include <vector>

// One side of a compare: an editing control that shows the file's text as it is, with
// the differences painted over it. Filler rows are annotations, so the text in the
// control stays exactly the file's and undo, save and search work as in any editor.
class CComparePane : public QsciScintillaBase
{
    Q_OBJECT
public:
    enum Marker { ChangedMarker = 20, DeletedMarker = 21, InsertedMarker = 22, CurrentMarker = 23 };
    static constexpr int ChangeIndicator = 8;

    explicit CComparePane(QWidget* parent = nullptr);

    // Markers, marks, filler rows and margins; again after a lexer changed the styles.
    void ApplyOwnStyles();

    // Replaces the text without an undo step and marks it unmodified.
    void SetText(const QByteArray& text);
    // A copy of the whole text.
    QByteArray Text() const;
    long Length() const { return long(SendScintilla(SCI_GETLENGTH)); }
    int LineCount() const { return int(SendScintilla(SCI_GETLINECOUNT)); }
    bool IsModified() const { return SendScintilla(SCI_GETMODIFY) != 0; }
    void SetSavePoint() { SendScintilla(SCI_SETSAVEPOINT); }
    void SetReadOnly(bool readOnly) { SendScintilla(SCI_SETREADONLY, readOnly ? 1UL : 0UL); }
    bool IsReadOnly() const { return SendScintilla(SCI_GETREADONLY) != 0; }

    // Paints the differences of one side. `charSpans` holds, for each changed line of
    // this side (ascending), its line number and the differing runs.
    void ShowDifferences(const CompareModel& model, CompareModel::Side side,
                         const std::vector<std::pair<int, std::vector<CharDiff::Span>>>& charSpans);
    void ClearDifferences();
    // Marks the lines of the current difference in the margin.
    void MarkCurrent(int firstLine, int count);

    int CaretLine() const;
    int FirstVisibleRow() const { return int(SendScintilla(SCI_GETFIRSTVISIBLELINE)); }
    void SetFirstVisibleRow(int row) { SendScintilla(SCI_SETFIRSTVISIBLELINE, static_cast<unsigned long>(std::max(0, row))); }
    // The display row of a line (filler rows above it counted).
    int RowOfLine(int line) const { return int(SendScintilla(SCI_VISIBLEFROMDOCLINE, static_cast<unsigned long>(line))); }
    void GoToLine(int line);

    // The text of lines [first, first + count), line ends included.
    QByteArray LinesText(int first, int count) const;
    // Replaces lines [first, first + count) with `text` as one undo step; the text gets
    // the line ends it needs to stay whole lines.
    void ReplaceLines(int first, int count, QByteArray text);
    // "\r\n", "\r" or "\n": the first line end of the text, else the platform's.
    QByteArray LineEnd() const;

private:
    int m_fillerStyle = 0;
    bool m_shown = false;
    std::vector<int> m_annotated;
};
