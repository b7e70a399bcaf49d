#pragma once

#include <QObject>

class QsciScintillaBase;

// Pairs brackets and quotes as they are typed: an opener inserts its closer, typing the
// closer steps over it, and Backspace on an empty pair removes both. Nothing is paired
// where the lexer styles the caret's place as a string or a comment.
namespace AutoClose {
// Handles one typed character; true when it was dealt with here and must not be inserted.
bool TypeChar(QsciScintillaBase& control, char typed);
// Handles Backspace; true when an empty pair was removed.
bool Backspace(QsciScintillaBase& control);
} // namespace AutoClose

// Feeds a control's key presses to AutoClose while `enabled` says so.
class CAutoCloseFilter : public QObject
{
    Q_OBJECT
public:
    explicit CAutoCloseFilter(const bool* enabled, QObject* parent = nullptr);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const bool* m_enabled;
};
