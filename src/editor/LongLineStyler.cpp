#include "LongLineStyler.h"

#include "CMFCScintilla.h"
#include "LongLinePieces.h"

#include <QEvent>
#include <algorithm>
#include <climits>
#include <limits>
#include <vector>

namespace {

using Sci = QsciScintillaBase;

// Room for the widths of every piece a long line is likely to hold: two ASCII characters
// make about nine thousand pieces, words of other scripts many more. The control's own
// default, for ordinary text, is a thousand.
constexpr unsigned long kPieceCacheSize = 65536;
constexpr unsigned long kDefaultCacheSize = 1024;

constexpr qint64 kTrusted = std::numeric_limits<qint64>::max();

// More separate fresh stretches than this are merged into one (many carets typing).
constexpr int kMostFreshRanges = 64;

// Attributes that make a style look the way it does, as (get, set) message pairs.
constexpr unsigned int kLook[][2] = {
    {Sci::SCI_STYLEGETFORE, Sci::SCI_STYLESETFORE},
    {Sci::SCI_STYLEGETBACK, Sci::SCI_STYLESETBACK},
    {Sci::SCI_STYLEGETWEIGHT, Sci::SCI_STYLESETWEIGHT},
    {Sci::SCI_STYLEGETITALIC, Sci::SCI_STYLESETITALIC},
    {Sci::SCI_STYLEGETSIZEFRACTIONAL, Sci::SCI_STYLESETSIZEFRACTIONAL},
    {Sci::SCI_STYLEGETEOLFILLED, Sci::SCI_STYLESETEOLFILLED},
    {Sci::SCI_STYLEGETUNDERLINE, Sci::SCI_STYLESETUNDERLINE},
    {Sci::SCI_STYLEGETCASE, Sci::SCI_STYLESETCASE},
    {Sci::SCI_STYLEGETCHARACTERSET, Sci::SCI_STYLESETCHARACTERSET},
    {Sci::SCI_STYLEGETVISIBLE, Sci::SCI_STYLESETVISIBLE},
    {Sci::SCI_STYLEGETCHANGEABLE, Sci::SCI_STYLESETCHANGEABLE},
    {Sci::SCI_STYLEGETHOTSPOT, Sci::SCI_STYLESETHOTSPOT},
};

QByteArray FontOf(CMFCScintilla* editor, int style)
{
    QByteArray name(256, '\0');
    const long length = editor->SendScintilla(Sci::SCI_STYLEGETFONT, static_cast<unsigned long>(style),
                                              name.data());
    name.truncate(int(std::clamp<long>(length, 0, 255)));
    return name;
}

} // namespace

LongLineStyler::LongLineStyler(CMFCScintilla* editor)
    : QObject(editor)
    , m_editor(editor)
{
}

void LongLineStyler::SetActive(bool active)
{
    if (active) {
        // Whatever set a lexer since has taken the control from us.
        m_editor->SendScintilla(Sci::SCI_SETLEXER, static_cast<unsigned long>(Sci::SCLEX_CONTAINER));
        MirrorPlainStyle();
    }
    if (active == m_active) {
        // The text may have been read again without a word to us.
        if (active) {
            m_toldLength = m_editor->GetLength();
            FillWhereNeeded(0, m_toldLength);
        }
        return;
    }
    m_active = active;
    m_fresh.clear();
    m_unsureFrom = kTrusted;
    if (active) {
        connect(m_editor, &CMFCScintilla::SCN_STYLENEEDED, this, &LongLineStyler::OnStyleNeeded);
        connect(m_editor, &CMFCScintilla::SCN_MODIFIED, this,
                [this](int position, int type, const char* text, int length) {
                    OnModified(position, type, text, length);
                });
        m_editor->viewport()->installEventFilter(this);
        m_editor->SendScintilla(Sci::SCI_SETPOSITIONCACHE, kPieceCacheSize);
        // At once, before anything lays a line out: a layout made without the pieces
        // measures the whole line the slow way.
        m_toldLength = m_editor->GetLength();
        Fill(0, m_toldLength);
    } else {
        disconnect(m_editor, &CMFCScintilla::SCN_STYLENEEDED, this, nullptr);
        disconnect(m_editor, &CMFCScintilla::SCN_MODIFIED, this, nullptr);
        m_editor->viewport()->removeEventFilter(this);
        m_editor->SendScintilla(Sci::SCI_SETPOSITIONCACHE, kDefaultCacheSize);
        // The pieces are not what the next lexer wants: have it style everything again.
        m_editor->SendScintilla(Sci::SCI_STARTSTYLING, 0UL, 0L);
    }
}

bool LongLineStyler::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        MirrorPlainStyle();
    return QObject::eventFilter(watched, event);
}

void LongLineStyler::MirrorPlainStyle()
{
    for (const unsigned char piece : {LongLinePieces::StyleA, LongLinePieces::StyleB}) {
        for (const auto& look : kLook) {
            const long plain = m_editor->SendScintilla(look[0], 0UL);
            // Setting a style lays every line out again: only when it differs.
            if (m_editor->SendScintilla(look[0], static_cast<unsigned long>(piece)) != plain)
                m_editor->SendScintilla(look[1], static_cast<unsigned long>(piece), plain);
        }
        const QByteArray font = FontOf(m_editor, 0);
        if (FontOf(m_editor, piece) != font)
            m_editor->SendScintilla(Sci::SCI_STYLESETFONT, static_cast<unsigned long>(piece), font.constData());
    }
}

void LongLineStyler::OnModified(int position, int type, const char*, int length)
{
    // Undo and redo are announced afterwards as one summary, without their places.
    if ((type & (Sci::SC_PERFORMED_UNDO | Sci::SC_PERFORMED_REDO)) && length <= 0) {
        m_unsureFrom = 0;
        return;
    }
    if (length <= 0 || position < 0)
        return;
    const qint64 start = position;
    const qint64 end = start + length;
    if (type & Sci::SC_MOD_BEFOREINSERT) {
        m_toldLength += length;
        if (m_unsureFrom != kTrusted && m_unsureFrom > start)
            m_unsureFrom += length;
        for (Range& range : m_fresh) {
            if (range.start >= start)
                range.start += length;
            if (range.end >= start)
                range.end += length;
        }
        m_fresh.append({start, end});
        if (m_fresh.size() > kMostFreshRanges) {
            Range all = m_fresh.first();
            for (const Range& range : std::as_const(m_fresh)) {
                all.start = std::min(all.start, range.start);
                all.end = std::max(all.end, range.end);
            }
            m_fresh = {all};
        }
    } else if (type & Sci::SC_MOD_BEFOREDELETE) {
        m_toldLength -= length;
        auto shift = [&](qint64 at) { return at <= start ? at : std::max(start, at - length); };
        if (m_unsureFrom != kTrusted)
            m_unsureFrom = shift(m_unsureFrom);
        for (Range& range : m_fresh) {
            range.start = shift(range.start);
            range.end = shift(range.end);
        }
        m_fresh.erase(std::remove_if(m_fresh.begin(), m_fresh.end(),
                                     [](const Range& range) { return range.end <= range.start; }),
                      m_fresh.end());
    }
}

void LongLineStyler::OnStyleNeeded(int position)
{
    const qint64 length = m_editor->GetLength();
    // The notice carries an int: past 2 GB it says nothing useful, and the whole text is
    // then what is wanted.
    const qint64 wanted = position < 0 || length > INT_MAX ? length : std::min<qint64>(position, length);
    const qint64 from = m_editor->SendScintilla(Sci::SCI_GETENDSTYLED);
    for (const Range& range : std::as_const(m_fresh))
        Fill(std::min(range.start, length), std::min(range.end, length));
    m_fresh.clear();
    // Changes made with the control's notices held back (Replace All, a reload) show in a
    // length the notices do not account for, or start where the control says styling
    // must start again.
    if (length != m_toldLength)
        m_unsureFrom = 0;
    m_toldLength = length;
    if (m_unsureFrom < wanted) {
        FillWhereNeeded(m_unsureFrom, wanted);
        m_unsureFrom = wanted < length ? wanted : kTrusted;
    } else if (from < wanted && !LongLinePieces::IsPieceStyle(m_editor->GetStyleAt(from))) {
        FillWhereNeeded(from, wanted);
    }
    // What lies between is in pieces already: only the end of what is styled moves.
    m_editor->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<unsigned long>(std::max(wanted, qint64(0))), 0L);
}

void LongLineStyler::FillWhereNeeded(qint64 start, qint64 end)
{
    constexpr qint64 window = 1 << 16;
    QByteArray cells(2 * window + 2, Qt::Uninitialized);
    qint64 runStart = -1;
    for (qint64 at = start; at < end; at += window) {
        const qint64 stop = std::min(end, at + window);
        m_editor->SendScintilla(Sci::SCI_GETSTYLEDTEXT, long(at), long(stop), cells.data());
        for (qint64 i = 0; i < stop - at; ++i) {
            const bool piece = LongLinePieces::IsPieceStyle(static_cast<unsigned char>(cells[2 * i + 1]));
            if (!piece && runStart < 0) {
                runStart = at + i;
            } else if (piece && runStart >= 0) {
                Fill(runStart, at + i);
                runStart = -1;
            }
        }
    }
    if (runStart >= 0)
        Fill(runStart, end);
}

void LongLineStyler::Fill(qint64 start, qint64 end)
{
    if (end <= start)
        return;
    const auto* text = reinterpret_cast<const char*>(m_editor->SendScintilla(
        Sci::SCI_GETRANGEPOINTER, static_cast<unsigned long>(start), static_cast<long>(end - start)));
    if (!text)
        return;
    const auto before = static_cast<unsigned char>(start > 0 ? m_editor->GetStyleAt(start - 1) : 0);
    std::vector<unsigned char> styles(static_cast<size_t>(end - start));
    LongLinePieces::Fill(text, end - start, styles.data(), before);
    m_editor->SendScintilla(Sci::SCI_STARTSTYLING, static_cast<unsigned long>(start), 0L);
    m_editor->SendScintilla(Sci::SCI_SETSTYLINGEX, static_cast<unsigned long>(styles.size()),
                            reinterpret_cast<const char*>(styles.data()));
}
