#include "CFindBar.h"

#include "FindReplaceSettings.h"
#include "editor/CMFCScintilla.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

#include <algorithm>

namespace {

using Sci = QsciScintillaBase;

// Orange under the text, light enough for every syntax colour to stay legible.
constexpr long MatchColour = 0x0090FF; // BGR
constexpr long MatchAlpha = 90;
// Enough for any screenful; keeps a screen of one huge line from stalling the paint.
constexpr int MaxPaintedMatches = 5000;

} // namespace

CFindBar::CFindBar(CMFCScintilla* editor, QWidget* parent)
    : QWidget(parent)
    , m_editor(editor)
{
    setObjectName(QStringLiteral("FindBar"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    m_close = new QToolButton(this);
    m_close->setIcon(QIcon::fromTheme(QStringLiteral("window-close")));
    m_close->setText(QStringLiteral("x"));
    m_close->setToolTip(tr("Close (Esc)"));
    m_close->setAutoRaise(true);
    layout->addWidget(m_close);
    layout->addWidget(new QLabel(tr("Find:"), this));
    m_edit = new QLineEdit(this);
    m_edit->setObjectName(QStringLiteral("FindBarText"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMinimumWidth(150);
    layout->addWidget(m_edit, 1);
    m_previous = new QToolButton(this);
    m_previous->setArrowType(Qt::UpArrow);
    m_previous->setToolTip(tr("Previous match (Shift+Enter)"));
    m_previous->setAutoRaise(true);
    layout->addWidget(m_previous);
    m_next = new QToolButton(this);
    m_next->setArrowType(Qt::DownArrow);
    m_next->setToolTip(tr("Next match (Enter)"));
    m_next->setAutoRaise(true);
    layout->addWidget(m_next);
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("FindBarCount"));
    m_count->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("000,000 of 000,000...")));
    layout->addWidget(m_count);
    m_matchCase = new QCheckBox(tr("Match &case"), this);
    m_wholeWord = new QCheckBox(tr("Whole w&ord"), this);
    m_regExp = new QCheckBox(tr("Rege&x"), this);
    m_regExp->setToolTip(tr("Use regular expressions"));
    for (QCheckBox* box : {m_matchCase, m_wholeWord, m_regExp}) {
        box->setFocusPolicy(Qt::TabFocus);
        layout->addWidget(box);
    }
    layout->addStretch();

    // The dialogs' options are where the bar starts.
    const FindReplaceSettings options = FindReplaceSettings::Load();
    m_matchCase->setChecked(options.matchCase);
    m_wholeWord->setChecked(options.matchWord);
    m_regExp->setChecked(options.regExp);

    m_slice.setSingleShot(true);
    m_slice.setInterval(0);
    m_recount.setSingleShot(true);
    m_recount.setInterval(150);
    connect(&m_slice, &QTimer::timeout, this, &CFindBar::RunSlice);
    connect(&m_recount, &QTimer::timeout, this, [this] { Restart(Pending::None); });
    connect(m_edit, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (text.isEmpty() && m_editor) // back where the typing began
            m_editor->SetSel(long(m_anchor), long(m_anchor));
        Restart(Pending::Type);
    });
    for (QCheckBox* box : {m_matchCase, m_wholeWord, m_regExp})
        connect(box, &QCheckBox::toggled, this, [this] { Restart(Pending::Type); });
    connect(m_next, &QToolButton::clicked, this, &CFindBar::FindNext);
    connect(m_previous, &QToolButton::clicked, this, &CFindBar::FindPrevious);
    connect(m_close, &QToolButton::clicked, this, &CFindBar::Close);
    m_edit->installEventFilter(this);

    if (m_editor) {
        m_editor->SendScintilla(Sci::SCI_INDICSETSTYLE, static_cast<unsigned long>(MatchIndicator),
                                static_cast<long>(Sci::INDIC_ROUNDBOX));
        m_editor->SendScintilla(Sci::SCI_INDICSETFORE, static_cast<unsigned long>(MatchIndicator), MatchColour);
        m_editor->SendScintilla(Sci::SCI_INDICSETALPHA, static_cast<unsigned long>(MatchIndicator), MatchAlpha);
        m_editor->SendScintilla(Sci::SCI_INDICSETOUTLINEALPHA, static_cast<unsigned long>(MatchIndicator), 200L);
        m_editor->SendScintilla(Sci::SCI_INDICSETUNDER, static_cast<unsigned long>(MatchIndicator), 1L);
        connect(m_editor, &Sci::SCN_UPDATEUI, this, [this](int) {
            if (!isVisible())
                return;
            PaintVisible(false);
            UpdateLabel(); // the caret may have moved onto or off a match
        });
        connect(m_editor, &Sci::SCN_MODIFIED, this,
                [this](int, int type, const char*, int, int, int, int, int, int, int) {
                    if (!(type & (Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT)) || !m_scanner.IsStarted())
                        return;
                    // The positions found so far no longer hold: count again once the
                    // edits pause.
                    m_slice.stop();
                    m_scanner.Reset();
                    m_pending = Pending::None;
                    UpdateLabel();
                    if (isVisible())
                        m_recount.start();
                });
    }
    hide();
}

CFindBar* CFindBar::ForEditor(CMFCScintilla* editor)
{
    if (!editor)
        return nullptr;
    QWidget* view = editor->parentWidget();
    if (view)
        if (auto* bar = view->findChild<CFindBar*>(QString(), Qt::FindDirectChildrenOnly))
            return bar;
    auto* bar = new CFindBar(editor, view);
    if (view && view->layout())
        view->layout()->addWidget(bar);
    return bar;
}

void CFindBar::Open(const QString& seed)
{
    if (m_editor)
        m_anchor = m_editor->SendScintilla(Sci::SCI_GETSELECTIONSTART);
    show();
    if (!seed.isEmpty() && seed != m_edit->text())
        m_edit->setText(seed); // counts through textChanged
    else
        Restart(Pending::Type);
    m_edit->selectAll();
    m_edit->setFocus(Qt::ShortcutFocusReason);
}

void CFindBar::Close()
{
    m_slice.stop();
    m_recount.stop();
    m_pending = Pending::None;
    if (m_editor) {
        m_editor->SendScintilla(Sci::SCI_SETINDICATORCURRENT, static_cast<unsigned long>(MatchIndicator));
        m_editor->SendScintilla(Sci::SCI_INDICATORCLEARRANGE, 0UL, m_editor->SendScintilla(Sci::SCI_GETLENGTH));
    }
    m_paintedFrom = m_paintedTo = 0;
    hide();
    if (m_editor)
        m_editor->setFocus(Qt::OtherFocusReason);
}

void CFindBar::FindNext()
{
    if (!m_editor || m_edit->text().isEmpty())
        return;
    const qint64 start = m_editor->SendScintilla(Sci::SCI_GETSELECTIONSTART);
    const qint64 end = m_editor->SendScintilla(Sci::SCI_GETSELECTIONEND);
    m_pending = Pending::Next;
    m_pendingFrom = start == end ? start : start + 1;
    if (!m_scanner.IsStarted())
        Restart(Pending::Next); // after an edit: count again now rather than later
    ResolvePending();
    UpdateLabel();
}

void CFindBar::FindPrevious()
{
    if (!m_editor || m_edit->text().isEmpty())
        return;
    m_pending = Pending::Previous;
    m_pendingFrom = m_editor->SendScintilla(Sci::SCI_GETSELECTIONSTART);
    if (!m_scanner.IsStarted())
        Restart(Pending::Previous);
    ResolvePending();
    UpdateLabel();
}

void CFindBar::Restart(Pending pending)
{
    m_slice.stop();
    m_recount.stop();
    ClearPainted();
    const QString text = m_edit->text();
    const SearchQuery query(text, m_matchCase->isChecked(), m_wholeWord->isChecked(), m_regExp->isChecked());
    m_error = text.isEmpty() || query.IsValid() ? QString() : query.ErrorString();
    const qint64 length = m_editor && !text.isEmpty() ? m_editor->SendScintilla(Sci::SCI_GETLENGTH) : 0;
    m_scanner.Start(text.isEmpty() ? SearchQuery() : query, m_error.isEmpty() ? length : 0);
    if (pending == Pending::Type)
        m_pendingFrom = m_anchor;
    if (pending != Pending::None)
        m_pending = pending;
    RunSlice();
}

void CFindBar::RunSlice()
{
    if (!m_editor)
        return;
    const auto read = [this](qint64 from, qint64 to) -> std::string_view {
        const long length = long(to - from);
        const auto* data = reinterpret_cast<const char*>(
            m_editor->SendScintilla(Sci::SCI_GETRANGEPOINTER, static_cast<unsigned long>(from), length));
        return data ? std::string_view(data, std::size_t(length)) : std::string_view();
    };
    QElapsedTimer clock;
    clock.start();
    while (!m_scanner.Step(read, StepBytes) && clock.elapsed() < SliceMs) {
    }
    ResolvePending();
    PaintVisible(true);
    UpdateLabel();
    if (!m_scanner.Done())
        m_slice.start();
    else if (m_scanner.IsStarted())
        emit countFinished(qint64(m_scanner.Matches().size()));
}

void CFindBar::ResolvePending()
{
    if (m_pending == Pending::None || !m_scanner.IsStarted())
        return;
    const auto& matches = m_scanner.Matches();
    const bool done = m_scanner.Done();
    qint64 index = -1;
    if (m_pending == Pending::Previous) {
        if (m_scanner.ScannedTo() < m_pendingFrom && !done)
            return; // matches before the selection may still come
        index = m_scanner.LastBefore(m_pendingFrom);
        if (index < 0 && !done)
            return;
        if (index < 0)
            index = qint64(matches.size()) - 1; // wrap to the last
    } else {
        index = m_scanner.FirstFrom(m_pendingFrom);
        if (index < 0 && !done)
            return;
        if (index < 0 && !matches.empty())
            index = 0; // wrap to the first
    }
    const Pending was = m_pending;
    m_pending = Pending::None;
    if (index >= 0 && Select(index) && was != Pending::Type)
        m_anchor = matches[std::size_t(index)].start;
}

bool CFindBar::Select(qint64 index)
{
    const auto& matches = m_scanner.Matches();
    if (!m_editor || index < 0 || index >= qint64(matches.size()))
        return false;
    const MatchScanner::Match& match = matches[std::size_t(index)];
    m_editor->EnsureRangeVisible(long(match.start), long(match.start + match.length));
    m_editor->SetSel(long(match.start), long(match.start + match.length));
    return true;
}

qint64 CFindBar::CurrentIndex() const
{
    if (!m_editor)
        return -1;
    const qint64 start = m_editor->SendScintilla(Sci::SCI_GETSELECTIONSTART);
    const qint64 end = m_editor->SendScintilla(Sci::SCI_GETSELECTIONEND);
    const qint64 index = m_scanner.FirstFrom(start);
    if (index < 0)
        return -1;
    const MatchScanner::Match& match = m_scanner.Matches()[std::size_t(index)];
    return match.start == start && match.start + match.length == end ? index : -1;
}

void CFindBar::UpdateLabel()
{
    const QLocale locale;
    QString text;
    bool failed = false;
    if (!m_error.isEmpty()) {
        text = tr("Invalid expression");
        failed = true;
    } else if (!m_edit->text().isEmpty() && m_scanner.IsStarted()) {
        const qint64 count = qint64(m_scanner.Matches().size());
        const qint64 current = CurrentIndex();
        const QString more = m_scanner.Done() ? QString() : QStringLiteral("...");
        if (m_scanner.Done() && count == 0) {
            text = tr("No results");
            failed = true;
        } else if (current >= 0) {
            text = tr("%1 of %2").arg(locale.toString(current + 1), locale.toString(count)) + more;
        } else {
            text = tr("%1 matches").arg(locale.toString(count)) + more;
        }
    }
    m_count->setText(text);
    m_count->setToolTip(m_error);
    QPalette palette;
    if (failed)
        palette.setColor(QPalette::Base, QColor(0xff, 0xd8, 0xd8));
    m_edit->setPalette(palette);
}

void CFindBar::ClearPainted()
{
    if (m_editor && m_paintedTo > m_paintedFrom) {
        m_editor->SendScintilla(Sci::SCI_SETINDICATORCURRENT, static_cast<unsigned long>(MatchIndicator));
        const qint64 length = m_editor->SendScintilla(Sci::SCI_GETLENGTH);
        const qint64 to = std::min(m_paintedTo, length);
        if (to > m_paintedFrom)
            m_editor->SendScintilla(Sci::SCI_INDICATORCLEARRANGE, static_cast<unsigned long>(m_paintedFrom),
                                    long(to - m_paintedFrom));
    }
    m_paintedFrom = m_paintedTo = 0;
}

void CFindBar::PaintVisible(bool force)
{
    if (!m_editor || !m_scanner.IsStarted())
        return;
    // The lines on screen, with a screenful either side for smooth scrolling.
    const long firstVisible = m_editor->SendScintilla(Sci::SCI_GETFIRSTVISIBLELINE);
    const long onScreen = m_editor->SendScintilla(Sci::SCI_LINESONSCREEN) + 1;
    const long firstLine = m_editor->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE,
                                                   static_cast<unsigned long>(std::max(0L, firstVisible - onScreen)));
    const long lastLine = m_editor->SendScintilla(Sci::SCI_DOCLINEFROMVISIBLE,
                                                  static_cast<unsigned long>(firstVisible + 2 * onScreen));
    const qint64 from = m_editor->SendScintilla(Sci::SCI_POSITIONFROMLINE, static_cast<unsigned long>(firstLine));
    const qint64 to = m_editor->SendScintilla(Sci::SCI_GETLINEENDPOSITION, static_cast<unsigned long>(lastLine));
    if (!force && from == m_paintedFrom && to == m_paintedTo)
        return;
    ClearPainted();
    m_editor->SendScintilla(Sci::SCI_SETINDICATORCURRENT, static_cast<unsigned long>(MatchIndicator));
    const auto& matches = m_scanner.Matches();
    qint64 index = m_scanner.FirstFrom(from);
    for (int painted = 0; index >= 0 && index < qint64(matches.size()) && painted < MaxPaintedMatches;
         ++index, ++painted) {
        const MatchScanner::Match& match = matches[std::size_t(index)];
        if (match.start >= to)
            break;
        m_editor->SendScintilla(Sci::SCI_INDICATORFILLRANGE, static_cast<unsigned long>(match.start),
                                long(match.length));
    }
    m_paintedFrom = from;
    m_paintedTo = to;
}

void CFindBar::keyPressEvent(QKeyEvent* event)
{
    // Esc from any control of the bar.
    if (event->key() == Qt::Key_Escape) {
        Close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool CFindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_edit && (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride)) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (enter || key->key() == Qt::Key_Escape) {
            // Claim the key before any window shortcut does.
            if (event->type() == QEvent::ShortcutOverride) {
                event->accept();
                return true;
            }
            if (key->key() == Qt::Key_Escape)
                Close();
            else if (key->modifiers() & Qt::ShiftModifier)
                FindPrevious();
            else
                FindNext();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
