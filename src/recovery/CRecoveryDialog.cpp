#include "CRecoveryDialog.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

CRecoveryDialog::CRecoveryDialog(const QList<RecoveryEntry>& entries, QWidget* parent)
    : QDialog(parent), m_entries(entries)
{
    setWindowTitle(tr("Recover Documents"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(
        tr("The program did not end cleanly. These documents had changes that were not saved:"),
        this));
    m_list = new QTreeWidget(this);
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setHeaderLabels({tr("Name"), tr("Path"), tr("When"), tr("Size")});
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout->addWidget(m_list);

    auto* buttons = new QDialogButtonBox(this);
    m_recoverButton = buttons->addButton(tr("&Recover"), QDialogButtonBox::ActionRole);
    m_discardButton = buttons->addButton(tr("&Discard"), QDialogButtonBox::ActionRole);
    m_recoverAllButton = buttons->addButton(tr("Recover &All"), QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Close);
    m_recoverAllButton->setDefault(true);
    m_recoverAllButton->setAutoDefault(true);
    m_recoverButton->setAutoDefault(false);
    m_discardButton->setAutoDefault(false);
    layout->addWidget(buttons);

    connect(m_recoverButton, &QPushButton::clicked, this, &CRecoveryDialog::RecoverSelected);
    connect(m_discardButton, &QPushButton::clicked, this, &CRecoveryDialog::DiscardSelected);
    connect(m_recoverAllButton, &QPushButton::clicked, this, &CRecoveryDialog::RecoverAll);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &CRecoveryDialog::UpdateButtons);
    Fill();
    resize(720, 320);
}

void CRecoveryDialog::Fill()
{
    m_list->clear();
    const QLocale locale;
    for (const RecoveryEntry& entry : std::as_const(m_entries)) {
        const QString name = entry.path.isEmpty() ? entry.title : QFileInfo(entry.path).fileName();
        auto* item = new QTreeWidgetItem(
            m_list, {name, entry.path.isEmpty() ? tr("(not saved yet)") : entry.path,
                     locale.toString(entry.time.toLocalTime(), QLocale::ShortFormat),
                     locale.formattedDataSize(entry.bytes)});
        item->setTextAlignment(3, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (m_list->topLevelItemCount() > 0)
        m_list->setCurrentItem(m_list->topLevelItem(0));
    UpdateButtons();
}

QList<int> CRecoveryDialog::SelectedRows() const
{
    QList<int> rows;
    for (QTreeWidgetItem* item : m_list->selectedItems())
        rows.append(m_list->indexOfTopLevelItem(item));
    std::sort(rows.begin(), rows.end(), std::greater<>());
    return rows;
}

void CRecoveryDialog::UpdateButtons()
{
    const bool any = !m_list->selectedItems().isEmpty();
    m_recoverButton->setEnabled(any);
    m_discardButton->setEnabled(any);
    m_recoverAllButton->setEnabled(!m_entries.isEmpty());
}

void CRecoveryDialog::RecoverSelected()
{
    QStringList failed;
    for (const int row : SelectedRows()) {
        if (m_recover && m_recover(m_entries[row]))
            m_entries.removeAt(row);
        else
            failed.append(m_entries[row].path.isEmpty() ? m_entries[row].title : m_entries[row].path);
    }
    if (!failed.isEmpty())
        QMessageBox::warning(this, windowTitle(),
                             tr("These documents could not be recovered:\n%1").arg(failed.join(QLatin1Char('\n'))));
    Fill();
    if (m_entries.isEmpty())
        accept();
}

void CRecoveryDialog::DiscardSelected()
{
    for (const int row : SelectedRows()) {
        if (m_discard)
            m_discard(m_entries[row]);
        m_entries.removeAt(row);
    }
    Fill();
    if (m_entries.isEmpty())
        accept();
}

void CRecoveryDialog::RecoverAll()
{
    m_list->selectAll();
    RecoverSelected();
}
