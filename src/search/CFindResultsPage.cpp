#include "CFindResultsPage.h"

#include "CFindResultsModel.h"

#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>

namespace {

// All rows share one size (fast with many rows); its width is that of the longest row,
// so that the list scrolls sideways far enough for every line.
class ResultRowDelegate : public QStyledItemDelegate
{
public:
    ResultRowDelegate(const CFindResultsModel* model, QObject* parent)
        : QStyledItemDelegate(parent), m_model(model) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QSize base = QStyledItemDelegate::sizeHint(option, index);
        const int width = option.fontMetrics.horizontalAdvance(QLatin1Char('x')) * m_model->longestRow();
        return QSize(std::max(base.width(), width), base.height());
    }

private:
    const CFindResultsModel* m_model;
};

} // namespace

CFindResultsPage::CFindResultsPage(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("FindResultsPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    auto* statusRow = new QHBoxLayout;
    m_status = new QLabel;
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_stop = new QPushButton(tr("Stop"));
    m_stop->setVisible(false);
    statusRow->addWidget(m_status, 1);
    statusRow->addWidget(m_stop);
    layout->addLayout(statusRow);

    m_model = new CFindResultsModel(this);
    m_results = new QListView;
    m_results->setModel(m_model);
    m_results->setItemDelegate(new ResultRowDelegate(m_model, m_results));
    m_results->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_results->setUniformItemSizes(true); // rows are measured once: fast with many rows
    m_results->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_results->setSelectionMode(QAbstractItemView::SingleSelection);
    m_results->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_results->setTextElideMode(Qt::ElideNone);
    m_results->installEventFilter(this);
    layout->addWidget(m_results, 1);

    connect(m_stop, &QPushButton::clicked, this, &CFindResultsPage::stopRequested);
    connect(m_results, &QListView::doubleClicked, this, &CFindResultsPage::activateRow);
}

void CFindResultsPage::beginSearch(const QString& description)
{
    m_description = description;
    m_model->clear();
    m_status->setText(tr("%1: searching...").arg(description));
    m_stop->setVisible(true);
    m_stop->setEnabled(true);
    emit showRequested();
}

void CFindResultsPage::addMatches(const QList<FindInFilesMatch>& matches)
{
    m_model->appendMatches(matches);
}

void CFindResultsPage::setSearchProgress(qint64 filesSearched, qint64 filesMatched)
{
    m_status->setText(tr("%1: %2 files searched, %3 found in %4 files...")
                          .arg(m_description)
                          .arg(filesSearched)
                          .arg(m_model->rowCount())
                          .arg(filesMatched));
}

QString CFindResultsPage::summaryText(const FindInFilesSummary& summary)
{
    QString text = tr("%1 matches in %2 of %3 files searched")
                       .arg(summary.matches)
                       .arg(summary.filesMatched)
                       .arg(summary.filesSearched);
    QStringList skipped;
    if (summary.filesBinary > 0)
        skipped.append(tr("%1 binary").arg(summary.filesBinary));
    if (summary.filesUnreadable > 0)
        skipped.append(tr("%1 unreadable").arg(summary.filesUnreadable));
    if (!skipped.isEmpty())
        text += tr("; skipped %1").arg(skipped.join(QStringLiteral(", ")));
    if (summary.truncated)
        text += tr("; stopped at %1 matches").arg(summary.matches);
    else if (summary.cancelled)
        text += tr("; stopped");
    text += QLatin1Char('.');
    return text;
}

void CFindResultsPage::endSearch(const FindInFilesSummary& summary)
{
    m_stop->setVisible(false);
    m_status->setText(QStringLiteral("%1: %2").arg(m_description, summaryText(summary)));
}

void CFindResultsPage::showSearchError(const QString& message)
{
    m_model->clear();
    m_stop->setVisible(false);
    m_status->setText(message);
    emit showRequested();
}

void CFindResultsPage::reportReplacement(const QString& description, const QList<FindInFilesMatch>& rows)
{
    m_description = description;
    m_model->clear();
    m_model->appendMatches(rows);
    m_stop->setVisible(false);
    m_status->setText(tr("%1: %n file(s)", nullptr, int(rows.size())).arg(description));
    emit showRequested();
}

void CFindResultsPage::clearFindResults()
{
    m_model->clear();
    m_status->clear();
}

QString CFindResultsPage::findStatusText() const
{
    return m_status->text();
}

bool CFindResultsPage::isStopVisible() const
{
    return !m_stop->isHidden();
}

void CFindResultsPage::activateRow(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const FindInFilesMatch& m = m_model->match(index.row());
    emit openLocation(m.path, m.line, m.column);
}

bool CFindResultsPage::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_results && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            activateRow(m_results->currentIndex());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
