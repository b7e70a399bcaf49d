#pragma once

#include <Qsci/qsciscintillabase.h>
#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <string_view>
#include <utility>

// The editing control. Everything that talks to Scintilla goes through here: plain
// forwards named after their messages, and the few composite operations the editor
// needs. Positions and lengths are in bytes of the control's text.
class CColumnCounter;

class CMFCScintilla : public QsciScintillaBase
{
    Q_OBJECT
public:
    static constexpr int BookmarkMarker = 1;
    static constexpr int BookmarkMask = 1 << BookmarkMarker;
    static constexpr int FoldMargin = 2;
    // The marker that stands for the insertion point of selected text in templates.
    static constexpr const char* ReplaceMarker = "<%REPLACE%>";
    static constexpr int LineNumberStyle = STYLE_LINENUMBER; // 33
    static constexpr int LineNumberMargin = 1;
    // Paints the text of Markdown headings in their heading style's colour.
    static constexpr int HeadingIndicator = 8;

    explicit CMFCScintilla(QWidget* parent = nullptr);
    ~CMFCScintilla() override;

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
    // The whole text in the two pieces the control's storage holds it in, either side of
    // the gap where it makes room for typing (the second may be empty). Read where they
    // are: one contiguous pointer would first close the gap, copying everything behind
    // it, which in a large document edited near its start is a pause of its own and is
    // paid again at the next key. The pieces meet between characters.
    std::pair<std::string_view, std::string_view> TextPieces() const;
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
    // Converts every line end to `mode` as one undo step and types new ones in it.
    void ConvertLineEndings(int mode);
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
    // The text was replaced without the control's notices: remembered columns are stale.
    void ForgetColumns();
    // The current line's background: `alpha` 255 is `colour` itself, lower values mix it
    // with the text's background. Always painted behind the text.
    void SetCaretLine(bool on, quint32 colour, int alpha);
    // 0x00BBGGRR colours mixed as `colour` at `alpha` (0-255) over `background`.
    static quint32 BlendOverBackground(quint32 colour, int alpha, quint32 background);
    void SetFont(const QString& face, int size, bool bold, bool italic);
    void SetTabWidth(int width);
    void SetBlockSelect(bool on);
    bool IsBlockSelect() const { return m_blockSelect; }
    void SetWordWrap(bool on);
    bool CanUndo() const;
    bool CanRedo() const;
    bool CanPaste() const;

    // Text of the control from and to a QString, in the control's code page.
    QByteArray ToControlText(const QString& text) const;
    QString FromControlText(const QByteArray& bytes) const;

    // Removes every bookmark; other markers stay.
    void MarkerDeleteAll();
    // The byte at `position` (-1: the target's end), 0 outside the text.
    int GetCharAt(long position = -1) const;
    // Unfolds and shows every line from that of the smaller position to that of the larger.
    void EnsureRangeVisible(long a, long b);
    void SelectWord(long position);
    // Selects the line without its line end.
    void SelectLine(long line);
    // Deletes the word the caret stands in, from its start to its end.
    void DeleteWord();
    // A tab; with no selection the caret first goes to the line's start, so the whole
    // line moves right.
    void Indent();
    static bool IsBrace(int c);
    // Toggles the fold of a header line; true when it is now expanded.
    bool ToggleFold(long line);
    // The fold markers and the lexer properties; off leaves margin 2's width alone.
    void SetFolding(bool on);

    struct BraceMatch
    {
        long brace = -1;   // position of the brace next to the caret
        long partner = -1; // its partner
        bool colon = false; // a ":" that opens a block (Python)
    };
    // The brace before the caret, or with `sloppy` the one after it, and its partner.
    BraceMatch FindMatchingBrace(bool sloppy) const;
    // The partner of a brace in text no lexer classes, by characters alone; -1 for none,
    // UnknownPartner when none lies within the distance it looks.
    static constexpr long UnknownPartner = -2;
    long MatchPlainBrace(long brace) const;
    // Lights the brace at the caret and its partner, or marks a lone brace as bad.
    void HighlightBrace();
    void ClearBraceHighlight();

    // Puts `token` and a blank at the start of every selected line, or takes the token
    // (and the blank behind it) away. One undo step. A selection ending at column 0 of
    // a line leaves that line alone.
    void CommentLines(bool comment, const QByteArray& token);

    // Inserts `text` with each "<%REPLACE%>" replaced by the selection: with no
    // selection at the caret, which stays in front; otherwise over the selection.
    void InsertWithSelection(const QString& text);
    void InsertWithSelection(const QByteArray& text);
    void InsertText(const QString& text) { InsertWithSelection(text); }
    // The date and time in the locale's formats, inserted as InsertText does.
    static QString DateText(const QDateTime& when);
    static QString TimeText(const QDateTime& when);
    void InsertDate();
    void InsertTime();

    // Adds the selection to the text on the clipboard (or puts it there when the
    // clipboard holds no text). False when nothing was copied.
    bool CopyAppend();
    // CopyAppend, then the selection goes; it stays when it could not be copied.
    void CutAppend();

    // Sets or clears the bookmark of a line (-1: the caret's line).
    void ToggleBookmark(long line = -1);
    bool HasBookmark(long line) const;
    // Goes to the next (or previous) bookmark, round the end of the text. Says "No more
    // bookmarks have been found" when there is none elsewhere. With `anchor` the
    // selection extends from the old anchor.
    bool NextBookmark(bool forward, bool anchor);

    // The selection (at most 99 bytes of a longer one) as the text to search for, kept
    // in the settings as FindReplace/LastSelectedValue; with no selection the kept one.
    QString GetSearchSeed();

    // Called for each typed character: keeps the indent of the line above on a new
    // line, one step more after an unmatched "{" when `indentAfterBrace`; a typed "}"
    // takes the indent of the line of its partner.
    void AutoIndent(int ch, bool indentAfterBrace);

    // Moves the caret to a line with an explicit jump, which views record for navigation.
    void JumpToLine(long line);

    // For very large text: changes are announced once the event loop comes round, as one
    // SCN_MODIFIED (insert or delete, without the text) per turn, instead of by the control
    // itself, whose own handling counts every character in front of each change.
    void SetDeferredChangeNotices(bool deferred);
    bool DeferredChangeNotices() const { return m_deferredNotices; }

Q_SIGNALS:
    // The caret jumped by a command (bookmark, go to); positions before and after.
    void caretJumped(long from, long to);
    void contextMenuRequested(const QPoint& globalPos);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    // Ctrl with the wheel zooms.
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    // The Markdown lexer styles only a heading's "#" marks; the rest of each heading
    // line on screen gets the marks' colour through an indicator.
    void DecorateHeadings();
    bool m_headingsDirty = true;

    // The control forgets a selection mode at the next click or caret jump, so block
    // selection is kept here and given to every mouse drag.
    bool m_blockSelect = false;

    void AnnounceDeferredChange();
    void UndoRedoQuietly(unsigned int message);
    void ApplyNoticeMask();
    // Many carets defer change notices as a large text does, while they last.
    void FollowCaretCount();
    // Columns along long lines, counted from what it remembers (GetColumn).
    std::unique_ptr<CColumnCounter> m_columns;
    bool m_deferredNotices = false;
    bool m_manyCarets = false;
    bool m_changePending = false;
    int m_pendingType = 0;
    long m_pendingPosition = 0;
    long m_linesBeforeChange = 0;
};
