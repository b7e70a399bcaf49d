#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Turns a tool's raw output into lines as a terminal would show them: UTF-8 decoded
// with every invalid byte shown as \xNN, colour and other escape sequences removed,
// a carriage return moving back to the start of the line so that progress counters
// end as their last state, backspace stepping back. Bytes may arrive split anywhere,
// even inside a character or an escape sequence.
class COutputDecoder
{
public:
    // A line longer than this is broken, so that output with no line ends at all
    // cannot grow one line without bound.
    static constexpr qsizetype MaxLineLength = 64 * 1024;

    // Decodes `bytes`, appending each completed line to `lines`.
    void Feed(const char* bytes, qsizetype size, QStringList& lines);
    void Feed(const QByteArray& bytes, QStringList& lines) { Feed(bytes.constData(), bytes.size(), lines); }
    // The output ended: a last line without a line end is completed (if not empty).
    void Finish(QStringList& lines);
    // The line being written, as it shows now (a progress counter).
    QString CurrentLine();
    void Reset();

private:
    enum class Escape { None, Start, Csi, Osc, OscEscape, Charset };

    void FlushText();
    void Put(const QString& text);
    void EndLine(QStringList& lines);
    static void DecodeUtf8(const QByteArray& bytes, QString& out);

    QByteArray m_pending; // text bytes not yet decoded (may end inside a character)
    QString m_line;
    qsizetype m_column = 0; // where the next character goes in m_line
    Escape m_escape = Escape::None;
    QByteArray m_csiParams;
};
