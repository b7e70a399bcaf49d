#include "usertools/CToolOutputPage.h"

#include "usertools/CToolResultsModel.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QListView>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

CToolOutputPage::CToolOutputPage(QObject* parent)
    : QObject(parent)
    , m_model(new CToolResultsModel(this))
    , m_widget(new QWidget)
    , m_view(new QListView(m_widget))
{
    m_widget->setObjectName(QStringLiteral("ToolResultsPage"));
    auto* layout = new QVBoxLayout(m_widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    m_view->setModel(m_model);
    // Every row is one line of one font: the view needs no per-row measuring, which is
    // what keeps a hundred thousand rows cheap.
    m_view->setUniformItemSizes(true);
    m_view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_view->installEventFilter(this);

    // The list answers the copy key itself: a second action bound to it would make the
    // window's Edit > Copy key ambiguous.
    auto* copy = new QAction(tr("&Copy") + QLatin1Char('\t')
                                 + QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText),
                             m_view);
    connect(copy, &QAction::triggered, this, &CToolOutputPage::CopySelection);
    auto* clear = new QAction(tr("C&lear"), m_view);
    connect(clear, &QAction::triggered, this, &CToolOutputPage::Clear);
    m_view->addAction(copy);
    m_view->addAction(clear);

    connect(m_view, &QListView::activated, this, [this](const QModelIndex& index) { ActivateRow(index.row()); });
    // Follow the end unless the user scrolled up to read.
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
        m_follow = value >= m_view->verticalScrollBar()->maximum();
    });
    connect(m_model, &QAbstractItemModel::rowsInserted, this, &CToolOutputPage::ScrollIfFollowing);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] { m_follow = true; });
}

CToolOutputPage::~CToolOutputPage()
{
    delete m_widget;
}

QString CToolOutputPage::Title() const
{
    return tr("Tool Results");
}

QWidget* CToolOutputPage::Widget()
{
    return m_widget;
}

void CToolOutputPage::Clear()
{
    m_model->Clear();
}

void CToolOutputPage::AddContextAction(QAction* action)
{
    auto* separator = new QAction(m_view);
    separator->setSeparator(true);
    m_view->addAction(separator);
    m_view->addAction(action);
}

void CToolOutputPage::ScrollIfFollowing()
{
    if (!m_follow || m_scrollPending || !m_view)
        return;
    // Once per turn of the event loop, not once per batch of rows.
    m_scrollPending = true;
    QTimer::singleShot(0, this, [this] {
        m_scrollPending = false;
        if (m_follow && m_view)
            m_view->scrollToBottom();
    });
}

bool CToolOutputPage::ActivateRow(int row)
{
    OutputLink link;
    if (!m_view || !m_model->LinkAt(row, link))
        return false;
    m_view->setCurrentIndex(m_model->index(row));
    if (m_open)
        m_open(link);
    return true;
}

bool CToolOutputPage::GoToNextLink(bool forward)
{
    const int rows = m_model->rowCount();
    if (rows == 0 || !m_view)
        return false;
    const int current = m_view->currentIndex().isValid() ? m_view->currentIndex().row() : (forward ? -1 : rows);
    const int step = forward ? 1 : -1;
    OutputLink link;
    for (int row = current + step; row >= 0 && row < rows; row += step) {
        if (m_model->LinkAt(row, link)) {
            m_follow = false;
            m_view->scrollTo(m_model->index(row));
            return ActivateRow(row);
        }
    }
    return false;
}

void CToolOutputPage::CopySelection() const
{
    if (!m_view)
        return;
    QModelIndexList rows = m_view->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QStringList lines;
    for (const QModelIndex& index : std::as_const(rows))
        lines << m_model->RowText(index.row());
    if (!lines.isEmpty())
        QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

bool CToolOutputPage::eventFilter(QObject* watched, QEvent* event)
{
    // The type first: comparing with the guarded view casts it, which is wrong while the
    // view is being destroyed and still sends events.
    if (event->type() == QEvent::KeyPress && watched == m_view) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy)) {
            CopySelection();
            return true;
        }
        if (key->key() == Qt::Key_F4) {
            GoToNextLink(!(key->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
