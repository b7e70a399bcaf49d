#include "CPageFileFilter.h"

#include <QApplication>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

CPageFileFilter::CPageFileFilter(QWidget* parent)
    : CPropertyPageBase(tr("File Filters"), QStringLiteral("properties.html#filters"), parent),
      m_list(new QTreeWidget(this)), m_label(new QLineEdit(this)), m_extension(new QLineEdit(this))
{
    setObjectName(QStringLiteral("PageFileFilter"));
    m_list->setHeaderLabels({tr("Label"), tr("Extension")});
    m_list->setColumnWidth(0, 100);
    m_list->setColumnWidth(1, 200);
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_label->setObjectName(QStringLiteral("FilterLabel"));
    m_extension->setObjectName(QStringLiteral("FilterExtension"));
    m_extension->setPlaceholderText(QStringLiteral("*.c;*.h"));

    auto* add = new QPushButton(tr("&Add"), this);
    auto* remove = new QPushButton(tr("&Delete"), this);
    auto* test = new QPushButton(tr("&Test..."), this);
    add->setObjectName(QStringLiteral("AddFilter"));
    remove->setObjectName(QStringLiteral("DeleteFilter"));
    test->setObjectName(QStringLiteral("TestFilter"));
    connect(add, &QPushButton::clicked, this, &CPageFileFilter::OnAdd);
    connect(remove, &QPushButton::clicked, this, &CPageFileFilter::OnDelete);
    connect(test, &QPushButton::clicked, this, &CPageFileFilter::OnTest);
    connect(m_list, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item) {
            m_label->setText(item->text(0));
            m_extension->setText(item->text(1));
        }
    });

    auto* form = new QFormLayout;
    form->addRow(tr("&Label:"), m_label);
    form->addRow(tr("&Extension:"), m_extension);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch();
    buttons->addWidget(test);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(form);
    layout->addLayout(buttons);
    Reset();
}

QString CPageFileFilter::SaveFailedText()
{
    return tr("Failed to save the file extension");
}

QString CPageFileFilter::SelectFirstText()
{
    return tr("Please select one or more filters before pressing Delete.");
}

void CPageFileFilter::Fill()
{
    m_list->clear();
    for (const FileFilterStore::Filter& filter : std::as_const(m_filters))
        new QTreeWidgetItem(m_list, {filter.label, filter.extension});
}

bool CPageFileFilter::OnAdd()
{
    const QString label = m_label->text().trimmed();
    const QString extension = m_extension->text().trimmed();
    if (label.isEmpty() || extension.isEmpty()) {
        QApplication::beep();
        return false;
    }
    bool replaced = false;
    for (FileFilterStore::Filter& filter : m_filters) {
        if (filter.extension == extension) {
            filter.label = label;
            replaced = true;
        }
    }
    if (!replaced)
        m_filters.append({label, extension});
    std::sort(m_filters.begin(), m_filters.end(),
              [](const auto& a, const auto& b) { return a.extension < b.extension; });
    Fill();
    m_label->clear();
    m_extension->clear();
    SetModified();
    return true;
}

bool CPageFileFilter::OnDelete()
{
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    if (selected.isEmpty()) {
        QMessageBox::information(this, windowTitle().isEmpty() ? tr("File Filters") : windowTitle(),
                                 SelectFirstText());
        return false;
    }
    QStringList gone;
    for (const QTreeWidgetItem* item : selected)
        gone << item->text(1);
    m_filters.removeIf([&](const FileFilterStore::Filter& filter) { return gone.contains(filter.extension); });
    Fill();
    SetModified();
    return true;
}

void CPageFileFilter::OnTest()
{
    QFileDialog dialog(this, tr("Test"));
    dialog.setNameFilters(FileFilterStore::DialogFilters(m_filters));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.exec();
}

void CPageFileFilter::Apply()
{
    if (!FileFilterStore::Save(m_filters)) {
        QMessageBox::warning(this, tr("File Filters"), SaveFailedText());
        return;
    }
    SetModified(false);
}

void CPageFileFilter::Reset()
{
    m_filters = FileFilterStore::Load();
    Fill();
    SetModified(false);
}
