#pragma once

#include <Qsci/qsciscintillabase.h>
#include <QByteArray>
#include <QString>

// The editing control. Everything that talks to Scintilla goes through here: plain
// forwards named after their messages, and the few composite operations the editor
// needs. Positions and lengths are in bytes of the control's text.
class CMFCScintilla : public QsciScintillaBase
{
    Q_OBJECT
public:
    static constexpr int BookmarkMarker = 1;
    static constexpr int LineNumberStyle = STYLE_LINENUMBER; // 33
    static constexpr int LineNumberMargin = 1;

    explicit CMFCScintilla(QWidget* parent = nullptr);

    // The setup run once when a view creates its control.
    void Setup();

    // Plain forwards.
    bool GetReadOnly() const;
    void SetReadOnly(bool readOnly);
    void Undo();
    void Redo();
    void Cut();
    void Copy();
    void Paste();
    void SelectAll();
    void LineCut();
    void LineCopy();
    void DelLineRight();
    void LineDelete();
    void LineTranspose();
    void UpperCase();
    void LowerCase();
    void BackTab();
    long GetLineCount() const;
    void SetTargetStart(long position);
    void SetTargetEnd(long position);
    void SetSearchFlags(int flags);
    long GetTargetStart() const;
    long GetTargetEnd() const;
    void SetWrapMode(int mode);
    void SetWrapVisualFlags(int flags);
    void SetWrapVisualFlagsLocation(int location);
    void SetViewWS(int mode);
    void SetViewEOL(bool visible);
    void SetUseTabs(bool useTabs);
    void SetIndentationGuides(int mode);
    long GetLastChild(long line, int level) const;
    void ShowLines(long first, long last);
    void HideLines(long first, long last);
    int GetFoldLevel(long line) const;
    void SetFoldExpanded(long line, bool expanded);
    bool GetFoldExpanded(long line) const;
    long GetFoldParent(long line) const;
    bool GetLineVisible(long line) const;
    void* GetDocPointer() const;
    long GetCurrentPos() const;
    long GetLength() const;
    long PositionAfter(long position) const;
    long LineFromPosition(long position) const;
    long GetLineEndPosition(long line) const;
    long GetSelectionStart() const;
    long GetSelectionEnd() const;
    long PositionFromLine(long line) const;
    int GetLineIndentation(long line) const;
    long FindColumn(long line, long column) const;
    void GotoPos(long position);
    void SetCurrentPos(long position);
    void SetSel(long anchor, long caret);
    void SetLineIndentation(long line, int indentation);
    void BeginUndoAction();
    void EndUndoAction();
    void SetEOLMode(int mode);
    int GetEOLMode() const;
    void ClearAll();
    void Allocate(long bytes);
    void SetCodePage(int codePage);
    void EmptyUndoBuffer();
    void SetSavePoint();
    int GetStyleAt(long position) const;
    int GetLexer() const;
    void ScrollCaret();
    void SetDocPointer(void* document);
    long SearchInTarget(const QByteArray& text);
    long ReplaceTarget(const QByteArray& text);
    long ReplaceTargetRE(const QByteArray& text);

    // Composite operations.
    long GetSelectionSize() const { return GetSelectionEnd() - GetSelectionStart(); }
    bool HasSelection() const { return GetSelectionSize() > 0; }
    // Adds `length` bytes at the caret; a length of -1 measures up to the first zero.
    void AddText(const char* text, long length = -1);
    void GotoLine(long line, bool ensureVisible = false);
    QByteArray GetTextRange(long start, long end) const;
    QByteArray GetSelText() const;
    QByteArray GetText() const;
    // The line-number margin: off sets its width to 0; on fits the line count's digits.
    void SetLineNumberMargin(bool on, int margin = LineNumberMargin);
    int LineNumberMarginWidth() const;
    // Current line and column of the caret, both from 0.
    long GetCurrentLine() const;
    long GetColumn(long position = -1) const;
    void SetCaretLine(bool on, quint32 colour, int alpha);
    void SetFont(const QString& face, int size, bool bold, bool italic);
    void SetTabWidth(int width);
    void SetBlockSelect(bool on);
    void SetWordWrap(bool on);
    bool CanUndo() const;
    bool CanRedo() const;
    bool CanPaste() const;
};
