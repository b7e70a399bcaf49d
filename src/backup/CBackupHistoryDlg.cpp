#include "backup/CBackupHistoryDlg.h"

#include "backup/BackupTimeText.h"
#include "backup/CBackupStore.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

CBackupHistoryDlg::CBackupHistoryDlg(const CBackupStore& store, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Document Backups"));
    auto* layout = new QVBoxLayout(this);
    auto* group = new QGroupBox(tr("Backup History"), this);
    auto* groupLayout = new QVBoxLayout(group);
    m_list = new QListWidget(group);
    m_list->setObjectName(QStringLiteral("1026"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    groupLayout->addWidget(m_list);
    layout->addWidget(group);

    auto addRow = [this](const QString& text, quint32 data) {
        auto* item = new QListWidgetItem(text, m_list);
        item->setData(Qt::UserRole, data);
    };
    addRow(tr("Current"), CurrentRow);
    for (int i = store.GetCount() - 1; i >= 0; --i)
        addRow(BackupTimeText::RowText(store.GetEntry(i).m_time), quint32(i));
    m_list->setCurrentRow(0);

    auto* buttons = new QDialogButtonBox(this);
    auto* compare = buttons->addButton(tr("Compare"), QDialogButtonBox::AcceptRole);
    compare->setDefault(true);
    m_restore = buttons->addButton(tr("&Restore"), QDialogButtonBox::ActionRole);
    m_restore->setToolTip(tr("Put the chosen version into the editor; the file is written when you save"));
    buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &CBackupHistoryDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_restore, &QPushButton::clicked, this, &CBackupHistoryDlg::Restore);
    connect(m_list, &QListWidget::itemSelectionChanged, this, &CBackupHistoryDlg::UpdateButtons);
    layout->addWidget(buttons);
    UpdateButtons();
}

void CBackupHistoryDlg::SetRestoreAllowed(bool allowed)
{
    m_restoreAllowed = allowed;
    UpdateButtons();
}

void CBackupHistoryDlg::UpdateButtons()
{
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    m_restore->setEnabled(m_restoreAllowed && selected.size() == 1 &&
                          selected.first()->data(Qt::UserRole).toUInt() != CurrentRow);
}

void CBackupHistoryDlg::accept()
{
    QList<int> rows;
    for (QListWidgetItem* item : m_list->selectedItems())
        rows << m_list->row(item);
    if (rows.size() != 2) {
        QMessageBox::warning(this, windowTitle(),
                             tr("Please ensure that just two items are selected before requesting a compare."));
        return;
    }
    std::sort(rows.begin(), rows.end());
    m_first = m_list->item(rows[0])->data(Qt::UserRole).toUInt();
    m_second = m_list->item(rows[1])->data(Qt::UserRole).toUInt();
    QDialog::accept();
}

void CBackupHistoryDlg::Restore()
{
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    if (selected.size() != 1)
        return;
    m_first = m_second = selected.first()->data(Qt::UserRole).toUInt();
    if (m_first == CurrentRow)
        return;
    done(RestoreResult);
}
