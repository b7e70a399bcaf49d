#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

class CMFCScintilla;
class ExpressionSearch;
class IProgressSink;
class LongOperation;

// The search routines of a text view, over its control's target search. Find Next, Find
// Previous, Mark All, Replace and Replace All all pass through here. Made on the stack
// around one control; it keeps no state of its own (the flags live in the control).
//
// Positions are bytes of the control's text. Texts are given as QString and converted to
// the control's code page (UTF-8 or the locale's bytes).
class CTextSearch
{
public:
    explicit CTextSearch(CMFCScintilla* editor);
    ~CTextSearch();
    CTextSearch(CTextSearch&&) noexcept;

    // Searches and replacements that run longer than `quietMs` show their progress here,
    // with Cancel.
    void SetProgressSink(IProgressSink* sink, int quietMs = 200)
    {
        m_progressSink = sink;
        m_quietMs = quietMs;
    }
    // Whether the last operation was cancelled by the user.
    bool WasCancelled() const { return m_cancelled; }

    // Scintilla flags of the three options. Expressions are matched with PCRE2 syntax
    // (groups, alternation, classes, \d \w \s \b, quantifiers), one line at a time.
    static int SearchFlags(bool matchCase, bool wholeWord, bool regExp);
    void SetSearchFlags(bool matchCase, bool wholeWord, bool regExp);
    void SetSearchFlags(int scintillaFlags);

    // Searches down from the selection's end or up from its start; with `wrapAround`, a
    // miss is searched once more over the whole document. A match is made visible and
    // selected. Returns its position, or -1 (also for an invalid expression).
    long FindText(const QString& text, bool searchUp, bool wrapAround);

    // Sets a bookmark on the line of every match, starting at the first match below the
    // selection and wrapping round once; the caret goes back where it was. Returns true
    // when anything was found. Empty text finds nothing.
    bool MarkAll(const QString& text);

    // Selects the match of `text` that starts at the caret, as the current flags find it
    // within the caret's line. False, and nothing changes, when none starts there.
    bool SelectMatchAtCaret(const QString& text);

    // Replaces every match in the document, or in the whole lines the selection touches.
    // One undo step. Returns the count, 0 when nothing matched, or ScopeEmpty when
    // `selectionOnly` is set and nothing is selected. With `useExpressionTags` the
    // replacement's \1..\9 are expanded (SCI_REPLACETARGETRE).
    static constexpr long ScopeEmpty = -2;
    long ReplaceAll(const QString& find, const QString& replace, bool selectionOnly,
                    bool useExpressionTags);

    // The rhythm of the Replace button: when `lastFound` is not -1, whatever is selected
    // is replaced first; then the next match is found downward with wrap. Returns the
    // match's position or -1.
    long ReplaceNext(const QString& find, const QString& replace, bool useExpressionTags,
                     long lastFound);

    // The text a search starts with: the selection (at most 99 bytes when it is longer
    // than 100), remembered in FindReplace/LastSelectedValue; without a selection, the
    // remembered value.
    QString GetSearchSeed() const;

    // Conversions between QString and the control's bytes.
    QByteArray Encode(const QString& text) const;
    QString Decode(const QByteArray& bytes) const;

private:
    // The target search over [start, end) (end before start searches backward); the
    // target holds the match afterwards. Any failure, including an invalid expression,
    // is -1.
    long SearchRange(long start, long end, const QByteArray& text);
    // A forward search for plain text over the control's memory, many times faster than
    // the control's own; -2 when the flags or text need the control's search.
    long FindPlainForward(long start, long end, const QByteArray& text, int flags);
    bool IsWordAt(long start, long end) const;
    // Keeps the window alive during a long operation; false once cancelled.
    bool Step(long done);
    // Replaces the target; with `useExpressionTags`, \0..\9 of the last match expanded.
    // Returns the length of the inserted text.
    long ReplaceTarget(const QByteArray& replacement, bool useExpressionTags);
    bool ExpressionsOn() const;
    void SelectTarget();

    CMFCScintilla* m_editor;
    // The compiled expression of this operation, made at its first search.
    std::unique_ptr<ExpressionSearch> m_expression;
    QByteArray m_expressionText;
    int m_expressionFlags = 0;
    IProgressSink* m_progressSink = nullptr;
    int m_quietMs = 200;
    // The operation under way, while one runs (see Step).
    LongOperation* m_operation = nullptr;
    long m_operationStart = 0;
    bool m_cancelled = false;
};
