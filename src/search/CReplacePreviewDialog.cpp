#include "CReplacePreviewDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
constexpr int PathRole = Qt::UserRole + 1;
}

CReplacePreviewDialog::CReplacePreviewDialog(const QString& find, const QString& replacement,
                                             const QList<FindInFilesMatch>& matches, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Replace in Files"));
    auto* layout = new QVBoxLayout(this);
    m_tree = new QTreeWidget;
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    QHash<QString, QTreeWidgetItem*> files;
    for (const FindInFilesMatch& match : matches) {
        QTreeWidgetItem*& file = files[match.path];
        if (!file) {
            file = new QTreeWidgetItem(m_tree);
            file->setData(0, PathRole, match.path);
            file->setCheckState(0, Qt::Checked);
        }
        auto* line = new QTreeWidgetItem(file);
        line->setText(0, QStringLiteral("%1: %2").arg(match.line).arg(match.text));
    }
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* file = m_tree->topLevelItem(i);
        file->setText(0, tr("%1 (%n match(es))", nullptr, file->childCount())
                             .arg(QDir::toNativeSeparators(file->data(0, PathRole).toString())));
    }
    if (m_tree->topLevelItemCount() <= 20)
        m_tree->expandAll();
    layout->addWidget(new QLabel(tr("Replace \"%1\" with \"%2\" in %n file(s):", nullptr, m_tree->topLevelItemCount())
                                     .arg(find, replacement)));
    layout->addWidget(m_tree, 1);
    // Made inside the dialog, so that the default set below is the dialog's own.
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(tr("&Replace"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(700, 450);
}

QStringList CReplacePreviewDialog::chosenFiles() const
{
    QStringList files;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        if (m_tree->topLevelItem(i)->checkState(0) == Qt::Checked)
            files += m_tree->topLevelItem(i)->data(0, PathRole).toString();
    return files;
}
