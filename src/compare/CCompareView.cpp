#include "compare/CCompareView.h"

#include "compare/CCompareDoc.h"
#include "compare/CComparePane.h"
#include "compare/CLineDiff.h"
#include "compare/COverviewStrip.h"
#include "compare/CompareSource.h"
#include "compare/LinePairing.h"
#include "compare/LineTable.h"
#include "editor/EncodingWriter.h"
#include "editor/TextEncoding.h"
#include "editor/TextFile.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QShortcut>
#include <QtConcurrent/QtConcurrentRun>

namespace {

// Past this many changed line pairs the character marks would cost more than they help.
constexpr int kMaxCharDiffPairs = 50000;

std::string_view WithoutLineEnd(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

struct CCompareView::Result
{
    bool cancelled = false;
    std::vector<DiffHunk> hunks;
    int lines[2] = {0, 0};
    std::vector<std::pair<int, std::vector<CharDiff::Span>>> chars[2];
};

CCompareView::CCompareView(CCompareDoc* document, const CompareSource& left, const CompareSource& right,
                           const DiffOptions& options, const Colourer& colourer, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_options(options)
    , m_colourer(colourer)
{
    m_grid = new QGridLayout(this);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(2);
    m_grid->setVerticalSpacing(1);
    const CompareSource* sources[2] = {&left, &right};
    for (int side = 0; side < 2; ++side) {
        auto* pane = new CComparePane(this);
        m_panes[side] = pane;
        pane->installEventFilter(this);
        auto* label = new QLabel(this);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setContentsMargins(4, 2, 4, 2);
        m_labels[side] = label;

        connect(pane, &QsciScintillaBase::SCN_UPDATEUI, this, [this, pane](int updated) {
            const int from = pane == m_panes[0] ? 0 : 1;
            if (updated & (QsciScintillaBase::SC_UPDATE_V_SCROLL | QsciScintillaBase::SC_UPDATE_H_SCROLL))
                SyncScroll(from);
            if (updated & QsciScintillaBase::SC_UPDATE_SELECTION && from == m_focusSide && m_model.RowCount() > 0) {
                const int difference = m_model.DifferenceOfRow(CaretRow());
                if (difference >= 0 && difference != m_current) {
                    m_current = difference;
                    for (int s = 0; s < 2; ++s) {
                        int start = 0, count = 0;
                        m_model.DifferenceLines(difference, CompareModel::Side(s), start, count);
                        m_panes[s]->MarkCurrent(start, count);
                    }
                }
            }
        });
        connect(pane, &QsciScintillaBase::SCN_MODIFIED, this,
                [this, pane](int, int type, const char*, int, int, int, int, int, int, int) {
                    if (type & (QsciScintillaBase::SC_MOD_INSERTTEXT | QsciScintillaBase::SC_MOD_DELETETEXT))
                        OnTextChanged(pane == m_panes[0] ? 0 : 1);
                });
        auto modified = [this] {
            if (m_document)
                m_document->SetModifiedFlag(m_panes[0]->IsModified() || m_panes[1]->IsModified());
        };
        connect(pane, &QsciScintillaBase::SCN_SAVEPOINTLEFT, this, modified);
        connect(pane, &QsciScintillaBase::SCN_SAVEPOINTREACHED, this, modified);
    }
    m_strip = new COverviewStrip(this);
    m_strip->SetModel(&m_model);
    connect(m_strip, &COverviewStrip::rowClicked, this, [this](int row) {
        const int first = std::max(0, row - int(m_panes[0]->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN)) / 2);
        m_panes[0]->SetFirstVisibleRow(int(first));
    });
    LayOutPanes();
    UpdateLabels();

    // The second keys for stepping through differences, beside F8 and Shift+F8.
    auto* next = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Down), this, this, &CCompareView::NextDifference);
    next->setContext(Qt::WidgetWithChildrenShortcut);
    auto* previous = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Up), this, this, &CCompareView::PreviousDifference);
    previous->setContext(Qt::WidgetWithChildrenShortcut);

    m_identicalBytes = left.text == right.text && left.encoding == right.encoding &&
                       left.bomLength == right.bomLength && left.lostBytes == 0 && right.lostBytes == 0;

    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(600);
    connect(&m_refreshTimer, &QTimer::timeout, this, &CCompareView::Recompare);
    connect(&m_watcher, &QFutureWatcher<std::shared_ptr<Result>>::finished, this, &CCompareView::OnCompareFinished);
    if (m_document)
        m_document->SetView(this);
    // The diff starts on the worker while this thread fills the panes.
    m_initialText[0] = left.text.isNull() ? QByteArray("") : left.text;
    m_initialText[1] = right.text.isNull() ? QByteArray("") : right.text;
    StartCompare();
    m_filling = true;
    for (int side = 0; side < 2; ++side) {
        CComparePane* pane = m_panes[side];
        pane->SetText(sources[side]->text);
        pane->SetReadOnly(document->GetSide(side).readOnly);
        if (m_colourer)
            m_colourer(*pane, sources[side]->path);
    }
    m_filling = false;
}

CCompareView::~CCompareView()
{
    if (m_cancel)
        m_cancel->store(true);
    m_watcher.waitForFinished();
}

void CCompareView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !m_document)
        return;
    for (int side = 0; side < 2; ++side) {
        if (m_colourer)
            m_colourer(*m_panes[side], m_document->GetSide(side).path);
        else
            m_panes[side]->ApplyOwnStyles();
    }
}

void CCompareView::LayOutPanes()
{
    for (int side = 0; side < 2; ++side) {
        m_grid->addWidget(m_labels[side], 0, side);
        m_grid->addWidget(m_panes[side], 1, side);
    }
    m_grid->addWidget(m_strip, 1, 2);
    m_grid->setColumnStretch(0, 1);
    m_grid->setColumnStretch(1, 1);
}

void CCompareView::UpdateLabels()
{
    for (int side = 0; side < 2; ++side) {
        const CCompareDoc::Side& s = m_document->GetSide(side);
        QString text = s.label.isEmpty() ? QDir::toNativeSeparators(s.path) : s.label;
        if (s.readOnly && s.label.isEmpty())
            text += tr(" [Read Only]");
        m_labels[side]->setText(text);
        m_labels[side]->setToolTip(QDir::toNativeSeparators(s.path));
    }
}

void CCompareView::SetStatus(const QString& text)
{
    if (text == m_status)
        return;
    m_status = text;
    Q_EMIT statusTextChanged(text);
}

void CCompareView::SetOptions(const DiffOptions& options)
{
    if (options == m_options)
        return;
    m_options = options;
    Recompare();
}

void CCompareView::Recompare()
{
    m_refreshTimer.stop();
    StartCompare();
}

void CCompareView::OnTextChanged(int side)
{
    Q_UNUSED(side);
    if (!m_filling)
        m_refreshTimer.start();
}

void CCompareView::StartCompare()
{
    if (m_watcher.isRunning()) {
        m_cancel->store(true);
        m_compareAgain = true;
        return;
    }
    const bool initial = !m_initialText[0].isNull() || !m_initialText[1].isNull();
    const QByteArray left = initial ? std::exchange(m_initialText[0], QByteArray()) : m_panes[0]->Text();
    const QByteArray right = initial ? std::exchange(m_initialText[1], QByteArray()) : m_panes[1]->Text();
    const DiffOptions options = m_options;
    m_cancel = std::make_shared<std::atomic<bool>>(false);
    auto progress = std::make_shared<std::atomic<int>>(0);
    auto cancel = m_cancel;

    SetStatus(tr("Comparing..."));
    if (!m_progress) {
        m_progress = new QProgressDialog(tr("Comparing..."), tr("Cancel"), 0, 1000, this);
        m_progress->setWindowModality(Qt::NonModal);
        m_progress->setMinimumDuration(800);
        m_progress->setAutoReset(false);
    }
    m_progress->reset();
    m_progress->setValue(0);
    disconnect(m_progress, &QProgressDialog::canceled, this, nullptr);
    connect(m_progress, &QProgressDialog::canceled, this, [cancel] { cancel->store(true); });
    auto* poll = new QTimer(m_progress);
    connect(poll, &QTimer::timeout, m_progress, [dialog = m_progress.data(), progress] {
        dialog->setValue(progress->load());
    });
    connect(&m_watcher, &QFutureWatcher<std::shared_ptr<Result>>::finished, poll, &QObject::deleteLater);
    poll->start(100);

    m_watcher.setFuture(QtConcurrent::run([left, right, options, cancel, progress] {
        auto result = std::make_shared<Result>();
        const std::string_view l(left.constData(), std::size_t(left.size()));
        const std::string_view r(right.constData(), std::size_t(right.size()));
        DiffControl control{cancel.get(), [progress](int permille) { progress->store(permille); }};
        LineTable table;
        if (!table.Build(l, r, options, &control)) {
            result->cancelled = true;
            return result;
        }
        CLineDiff diff(table.LeftIds(), table.RightIds(), table.DistinctCount());
        diff.SetControl(&control);
        if (!diff.Run()) {
            result->cancelled = true;
            return result;
        }
        // Changed lines stand beside their likeliest counterparts.
        for (const DiffHunk& hunk : diff.Hunks()) {
            const std::vector<DiffHunk> parts = LinePairing::Pair(hunk, [&](int side, int line) {
                return side == 0 ? LineTable::Line(l, table.LeftStarts(), line) : LineTable::Line(r, table.RightStarts(), line);
            });
            result->hunks.insert(result->hunks.end(), parts.begin(), parts.end());
        }
        result->lines[0] = int(table.LeftIds().size());
        result->lines[1] = int(table.RightIds().size());
        int pairs = 0;
        for (const DiffHunk& h : result->hunks)
            pairs += std::min(h.leftCount, h.rightCount);
        if (pairs > kMaxCharDiffPairs)
            return result;
        for (const DiffHunk& h : result->hunks) {
            for (int k = 0; k < std::min(h.leftCount, h.rightCount); ++k) {
                if (cancel->load())
                    return result;
                const int a = h.leftStart + k, b = h.rightStart + k;
                const CharDiff::Result marks =
                    CharDiff::Compute(WithoutLineEnd(LineTable::Line(l, table.LeftStarts(), a)),
                                      WithoutLineEnd(LineTable::Line(r, table.RightStarts(), b)));
                if (!marks.left.empty())
                    result->chars[0].emplace_back(a, marks.left);
                if (!marks.right.empty())
                    result->chars[1].emplace_back(b, marks.right);
            }
        }
        return result;
    }));
}

void CCompareView::OnCompareFinished()
{
    if (m_progress) {
        m_progress->reset();
        m_progress->hide();
    }
    const std::shared_ptr<Result> result = m_watcher.result();
    if (m_compareAgain) {
        m_compareAgain = false;
        StartCompare();
        return;
    }
    if (result->cancelled) {
        SetStatus(tr("Compare cancelled."));
        return;
    }
    ShowResult(*result);
}

void CCompareView::ShowResult(const Result& result)
{
    const bool first = m_model.RowCount() == 0 && m_current < 0;
    m_model.Build(result.hunks, result.lines[0], result.lines[1]);
    for (int side = 0; side < 2; ++side)
        m_panes[side]->ShowDifferences(m_model, CompareModel::Side(side), result.chars[side]);
    m_current = -1;
    m_strip->SetModel(&m_model);
    UpdateStrip();
    const int count = m_model.DifferenceCount();
    if (count == 0)
        SetStatus(m_identicalBytes && !m_document->IsModified() ? tr("The files are identical.")
                                                                : tr("No differences."));
    else
        SetStatus(count == 1 ? tr("1 difference") : tr("%1 differences").arg(count));
    if (first && count > 0)
        GoToDifference(0);
    Q_EMIT compared();
}

bool CCompareView::WaitForCompare(int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while ((m_watcher.isRunning() || m_refreshTimer.isActive() || m_compareAgain) && timer.elapsed() < timeoutMs) {
        // Waits in the event loop rather than spinning, so the worker has the processor.
        QEventLoop loop;
        QTimer::singleShot(10, &loop, &QEventLoop::quit);
        loop.exec();
    }
    QApplication::processEvents();
    return !m_watcher.isRunning();
}

void CCompareView::SyncScroll(int from)
{
    if (m_syncing)
        return;
    m_syncing = true;
    CComparePane* source = m_panes[from];
    CComparePane* target = m_panes[1 - from];
    target->SetFirstVisibleRow(source->FirstVisibleRow());
    target->SendScintilla(QsciScintillaBase::SCI_SETXOFFSET,
                          static_cast<unsigned long>(source->SendScintilla(QsciScintillaBase::SCI_GETXOFFSET)));
    m_syncing = false;
    UpdateStrip();
}

void CCompareView::UpdateStrip()
{
    m_strip->SetVisibleRows(m_panes[0]->FirstVisibleRow(),
                            int(m_panes[0]->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN)));
}

int CCompareView::CaretRow() const
{
    const auto side = CompareModel::Side(m_focusSide);
    const int line = m_panes[m_focusSide]->CaretLine();
    if (line >= m_model.LineCount(side))
        return m_model.RowCount();
    return m_model.RowOfLine(side, line);
}

bool CCompareView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        for (int side = 0; side < 2; ++side)
            if (watched == m_panes[side])
                m_focusSide = side;
    }
    return QWidget::eventFilter(watched, event);
}

void CCompareView::GoToDifference(int index)
{
    if (index < 0 || index >= m_model.DifferenceCount())
        return;
    m_current = index;
    int displayRow = -1;
    for (int side = 0; side < 2; ++side) {
        CComparePane* pane = m_panes[side];
        int start = 0, count = 0;
        m_model.DifferenceLines(index, CompareModel::Side(side), start, count);
        const int line = std::min(start, std::max(0, pane->LineCount() - 1));
        m_syncing = true;
        pane->GoToLine(line);
        m_caretAt[side] = line;
        m_syncing = false;
        pane->MarkCurrent(start, count);
        if (count > 0 && displayRow < 0)
            displayRow = pane->RowOfLine(line);
    }
    m_panes[0]->SetFirstVisibleRow(std::max(0, displayRow - 3));
    SyncScroll(0);
    SetStatus(tr("Difference %1 of %2").arg(index + 1).arg(m_model.DifferenceCount()));
}

bool CCompareView::CaretAtCurrent() const
{
    if (m_current < 0)
        return false;
    // A difference with no lines on a side leaves the caret on the line after it.
    return m_panes[m_focusSide]->CaretLine() == m_caretAt[m_focusSide] ||
           m_model.DifferenceOfRow(CaretRow()) == m_current;
}

bool CCompareView::HasNextDifference() const
{
    if (CaretAtCurrent())
        return m_current + 1 < m_model.DifferenceCount();
    return m_model.NextDifference(CaretRow()) >= 0;
}

bool CCompareView::HasPreviousDifference() const
{
    if (CaretAtCurrent())
        return m_current > 0;
    return m_model.PreviousDifference(CaretRow()) >= 0;
}

void CCompareView::NextDifference()
{
    const int row = CaretRow();
    const int index = CaretAtCurrent() ? m_current + 1
                                                                                   : m_model.NextDifference(row);
    GoToDifference(index);
}

void CCompareView::PreviousDifference()
{
    const int row = CaretRow();
    const int index = CaretAtCurrent() ? m_current - 1
                                                                                   : m_model.PreviousDifference(row);
    GoToDifference(index);
}

bool CCompareView::CanCopyTo(int side) const
{
    return m_current >= 0 && m_current < m_model.DifferenceCount() && !m_panes[side]->IsReadOnly() &&
           !m_watcher.isRunning() && !m_refreshTimer.isActive();
}

void CCompareView::CopyTo(int side)
{
    if (!CanCopyTo(side))
        return;
    const int from = 1 - side;
    int fromStart = 0, fromCount = 0, toStart = 0, toCount = 0;
    m_model.DifferenceLines(m_current, CompareModel::Side(from), fromStart, fromCount);
    m_model.DifferenceLines(m_current, CompareModel::Side(side), toStart, toCount);
    const QByteArray text = m_panes[from]->LinesText(fromStart, fromCount);
    m_panes[side]->ReplaceLines(toStart, toCount, text);
    Recompare();
}

void CCompareView::SwapSides()
{
    m_document->SwapSides();
    std::swap(m_panes[0], m_panes[1]);
    std::swap(m_labels[0], m_labels[1]);
    std::swap(m_caretAt[0], m_caretAt[1]);
    m_focusSide = 1 - m_focusSide;
    LayOutPanes();
    UpdateLabels();
    Recompare();
}

bool CCompareView::SaveSide(int side)
{
    CComparePane* pane = m_panes[side];
    const CCompareDoc::Side& s = m_document->GetSide(side);
    if (!pane->IsModified() || s.readOnly)
        return true;
    const QByteArray text = pane->Text();
    const AnsiCodePage codePage = CCompareDoc::CodePage();
    if (s.encoding == TextEncoding::Ansi && !codePage.CanHold(text.constData(), std::size_t(text.size()))) {
        // A stand-in for what the code page lacks would lose text for good.
        QMessageBox::warning(QApplication::activeWindow(), QApplication::applicationDisplayName(),
                             tr("\"%1\" holds characters that the code page %2 cannot hold. "
                                "Save it from the editor to choose another encoding.")
                                 .arg(QDir::toNativeSeparators(s.path), codePage.Name()));
        return false;
    }
    if (m_document)
        Q_EMIT m_document->aboutToSave(s.path);
    EncodingWriter writer(s.encoding, s.writeMark, &codePage);
    TextFile file;
    bool ok = file.OpenWrite(s.path);
    if (ok) {
        const std::string_view bytes = writer.Encode(text.constData(), std::size_t(text.size()));
        ok = bytes.empty() || file.Write(bytes.data(), qint64(bytes.size()));
    }
    if (ok) {
        const std::string_view rest = writer.Finish();
        ok = rest.empty() || file.Write(rest.data(), qint64(rest.size()));
    }
    ok = ok && file.Commit();
    if (!ok) {
        QMessageBox::warning(QApplication::activeWindow(), QApplication::applicationDisplayName(),
                             tr("Failed to create a new file when saving the current document"));
        return false;
    }
    pane->SetSavePoint();
    return true;
}

bool CCompareView::SaveModifiedSides()
{
    bool ok = SaveSide(0);
    ok = SaveSide(1) && ok;
    if (m_document)
        m_document->SetModifiedFlag(m_panes[0]->IsModified() || m_panes[1]->IsModified());
    return ok;
}
