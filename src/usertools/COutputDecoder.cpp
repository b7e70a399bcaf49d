#include "usertools/COutputDecoder.h"

namespace {

const char kHex[] = "0123456789ABCDEF";

void AppendInvalid(QString& out, unsigned char byte)
{
    out += QLatin1String("\\x");
    out += QLatin1Char(kHex[byte >> 4]);
    out += QLatin1Char(kHex[byte & 15]);
}

// The length of the UTF-8 sequence that starts with `lead`, or 0 when it can't start one.
int SequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// How much of `bytes` holds whole characters: a sequence cut off at the end waits.
qsizetype CompletePrefix(const QByteArray& bytes)
{
    for (int back = 1; back <= 3 && back <= bytes.size(); ++back) {
        const auto b = static_cast<unsigned char>(bytes.at(bytes.size() - back));
        if ((b & 0xC0) != 0x80)
            return SequenceLength(b) > back ? bytes.size() - back : bytes.size();
    }
    return bytes.size();
}

} // namespace

void COutputDecoder::DecodeUtf8(const QByteArray& bytes, QString& out)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        // Plain ASCII runs are the common case: take them whole.
        qsizetype run = i;
        while (run < n && p[run] < 0x80)
            ++run;
        if (run > i) {
            out += QLatin1StringView(reinterpret_cast<const char*>(p + i), run - i);
            i = run;
            continue;
        }
        const int length = SequenceLength(p[i]);
        bool valid = length > 0 && i + length <= n;
        char32_t code = 0;
        if (valid) {
            code = p[i] & (0xFF >> (length + 1));
            for (int k = 1; k < length; ++k) {
                if ((p[i + k] & 0xC0) != 0x80) {
                    valid = false;
                    break;
                }
                code = (code << 6) | (p[i + k] & 0x3F);
            }
            // Overlong forms, surrogates and values past U+10FFFF are not characters.
            if (valid && ((length == 3 && code < 0x800) || (length == 4 && code < 0x10000)
                          || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF))
                valid = false;
        }
        if (!valid) {
            AppendInvalid(out, p[i]);
            ++i;
            continue;
        }
        out += QString::fromUcs4(&code, 1);
        i += length;
    }
}

void COutputDecoder::Put(const QString& text)
{
    if (m_column == m_line.size()) {
        m_line += text;
    } else {
        // After a carriage return the new text writes over the old.
        const qsizetype over = qMin(text.size(), m_line.size() - m_column);
        m_line.replace(m_column, over, text);
    }
    m_column += text.size();
}

void COutputDecoder::FlushText()
{
    if (m_pending.isEmpty())
        return;
    QString text;
    DecodeUtf8(m_pending, text);
    m_pending.clear();
    Put(text);
}

void COutputDecoder::EndLine(QStringList& lines)
{
    if (m_line.isEmpty() && !m_pending.isEmpty()) {
        // The usual line: decoded straight into its own string.
        QString text;
        text.reserve(m_pending.size());
        DecodeUtf8(m_pending, text);
        m_pending.clear();
        lines << text;
        return;
    }
    FlushText();
    lines << std::exchange(m_line, QString());
    m_column = 0;
}

void COutputDecoder::Feed(const char* bytes, qsizetype size, QStringList& lines)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes);
    qsizetype textStart = -1; // start of a run of text bytes in this chunk

    auto takeText = [&](qsizetype end) {
        if (textStart >= 0 && end > textStart)
            m_pending.append(reinterpret_cast<const char*>(p + textStart), end - textStart);
        textStart = -1;
    };

    for (qsizetype i = 0; i < size; ++i) {
        const unsigned char c = p[i];
        switch (m_escape) {
        case Escape::None:
            break;
        case Escape::Start:
            if (c == '[') {
                m_escape = Escape::Csi;
                m_csiParams.clear();
            } else if (c == ']') {
                m_escape = Escape::Osc;
            } else if (c == '(' || c == ')' || c == '*' || c == '+') {
                m_escape = Escape::Charset;
            } else {
                m_escape = Escape::None; // a two-byte sequence such as ESC 7
            }
            continue;
        case Escape::Csi:
            if (c >= 0x40 && c <= 0x7E) {
                m_escape = Escape::None;
                // Erase in line (ESC [ K, ESC [ 0 K) clears what a progress line left.
                if (c == 'K' && (m_csiParams.isEmpty() || m_csiParams == "0")) {
                    FlushText();
                    m_line.truncate(m_column);
                }
            } else if (m_csiParams.size() < 32) {
                m_csiParams.append(char(c));
            }
            continue;
        case Escape::Osc:
            if (c == 0x07)
                m_escape = Escape::None;
            else if (c == 0x1B)
                m_escape = Escape::OscEscape;
            continue;
        case Escape::OscEscape:
            m_escape = c == '\\' ? Escape::None : Escape::Osc;
            continue;
        case Escape::Charset:
            m_escape = Escape::None;
            continue;
        }

        if (c >= 0x20 && c != 0x7F) {
            if (textStart < 0)
                textStart = i;
            continue;
        }
        if (c == '\t') {
            if (textStart < 0)
                textStart = i;
            continue;
        }
        takeText(i);
        switch (c) {
        case '\n':
            EndLine(lines);
            break;
        case '\r':
            FlushText();
            m_column = 0;
            break;
        case '\b':
            FlushText();
            if (m_column > 0)
                --m_column;
            break;
        case 0x1B:
            m_escape = Escape::Start;
            break;
        default:
            break; // other control bytes (bell, NUL) show nothing
        }
        if (m_pending.size() + m_line.size() > MaxLineLength)
            EndLine(lines);
    }
    takeText(size);
    if (m_pending.size() > MaxLineLength) {
        // Keep a character that the chunk boundary cut in two for the next chunk.
        const qsizetype cut = CompletePrefix(m_pending);
        const QByteArray rest = m_pending.mid(cut);
        m_pending.truncate(cut);
        EndLine(lines);
        m_pending = rest;
    }
}

void COutputDecoder::Finish(QStringList& lines)
{
    FlushText();
    if (!m_line.isEmpty())
        EndLine(lines);
    m_escape = Escape::None;
}

QString COutputDecoder::CurrentLine()
{
    // Only whole characters: the tail may be waiting for the rest of one.
    QString shown = m_line;
    if (!m_pending.isEmpty()) {
        const qsizetype cut = CompletePrefix(m_pending);
        QString text;
        DecodeUtf8(m_pending.first(cut), text);
        if (m_column == shown.size())
            shown += text;
        else
            shown.replace(m_column, qMin(text.size(), shown.size() - m_column), text);
    }
    return shown;
}

void COutputDecoder::Reset()
{
    m_pending.clear();
    m_line.clear();
    m_column = 0;
    m_escape = Escape::None;
    m_csiParams.clear();
}
