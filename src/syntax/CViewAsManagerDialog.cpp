#include "CViewAsManagerDialog.h"

#include "CSyntaxParserList.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

CViewAsManagerDialog::CViewAsManagerDialog(const CSyntaxParserList& parsers, int current, QWidget* parent)
    : CViewAsManagerDialog(parsers.MenuNames(), current, parent)
{
}

CViewAsManagerDialog::CViewAsManagerDialog(const QStringList& menuNames, int current, QWidget* parent)
    : QDialog(parent)
    , m_selected(current)
{
    setWindowTitle(tr("View As ..."));
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(tr("Select View As Parser"), this);
    m_list = new QListWidget(this);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->addItems(menuNames);
    label->setBuddy(m_list);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(label);
    layout->addWidget(m_list);
    layout->addWidget(m_buttons);

    const bool validCurrent = current >= 0 && current < menuNames.size();
    if (validCurrent)
        m_list->setCurrentRow(current);
    // OK means something only once a parser is selected.
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(validCurrent);

    connect(m_list, &QListWidget::itemSelectionChanged, this, &CViewAsManagerDialog::OnSelectionChanged);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &CViewAsManagerDialog::OnItemDoubleClicked);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void CViewAsManagerDialog::OnSelectionChanged()
{
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    if (selected.isEmpty())
        return;
    m_selected = m_list->row(selected.first());
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(true);
}

void CViewAsManagerDialog::OnItemDoubleClicked(QListWidgetItem* item)
{
    const int row = item ? m_list->row(item) : -1;
    if (row < 0)
        return;
    m_selected = row;
    accept();
}
