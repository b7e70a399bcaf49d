#include "CSolutionBarList.h"

#include "ExplorerPageKind.h"
#include "Windows1252.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "shell/IShell.h"

#include <QComboBox>
#include <QMouseEvent>
#include <QStyle>

namespace {
constexpr int InsertRole = Qt::UserRole + 1;
}

CSolutionBarList::CSolutionBarList(IShell& shell, QWidget* parent)
    : QListWidget(parent)
    , m_shell(shell)
{
    setObjectName(QStringLiteral("ListExplorer"));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    m_chooser = new QComboBox;
    m_chooser->setObjectName(QStringLiteral("TableChooser"));
    m_chooser->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (int table = 0; table < ReferenceTables::TableCount; ++table)
        m_chooser->addItem(ReferenceTables::TableName(ReferenceTables::Table(table)), table);
    m_chooser->setCurrentIndex(0);
    connect(m_chooser, &QComboBox::currentIndexChanged, this, &CSolutionBarList::FillList);
    FillList();
}

CSolutionBarList::~CSolutionBarList()
{
    // The chooser sits on the bar's tool strip once shown; it is ours all the same.
    if (m_chooser && !m_chooser->parent())
        delete m_chooser;
}

int CSolutionBarList::PageKind() const
{
    return ExplorerPageKind::List;
}

QString CSolutionBarList::Title() const
{
    return tr("List Explorer");
}

QIcon CSolutionBarList::Icon() const
{
    return QIcon::fromTheme(QStringLiteral("format-justify-left"), style()->standardIcon(QStyle::SP_FileDialogListView));
}

QList<QWidget*> CSolutionBarList::ToolStripWidgets()
{
    return {m_chooser};
}

void CSolutionBarList::FillList()
{
    clear();
    const auto table = ReferenceTables::Table(m_chooser->currentData().toInt());
    const QList<ReferenceTables::Row> rows = ReferenceTables::Rows(table);
    for (const ReferenceTables::Row& row : rows) {
        auto* item = new QListWidgetItem(Windows1252::Decode(row.display).replace(QLatin1Char('\t'), QStringLiteral("    ")));
        item->setData(InsertRole, row.insert);
        addItem(item);
    }
}

QByteArray CSolutionBarList::InsertText(int row) const
{
    const QListWidgetItem* it = item(row);
    return it ? it->data(InsertRole).toByteArray() : QByteArray();
}

bool CSolutionBarList::InsertCurrentRow()
{
    const QListWidgetItem* current = currentItem();
    if (!current || !current->isSelected())
        return false;
    const QByteArray text = current->data(InsertRole).toByteArray();
    if (text.isEmpty())
        return false;
    // Only a text view takes a row; hex and compare views are left alone.
    auto* frame = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild());
    if (!frame || !frame->GetView() || !frame->GetView()->GetEditor())
        return false;
    // The table's bytes become characters here; the editor writes them in its code page.
    frame->GetView()->GetEditor()->InsertWithSelection(Windows1252::Decode(text));
    return true;
}

void CSolutionBarList::mouseDoubleClickEvent(QMouseEvent* event)
{
    QListWidget::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()))
        InsertCurrentRow();
}
