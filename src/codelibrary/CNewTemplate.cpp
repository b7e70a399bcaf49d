#include "codelibrary/CNewTemplate.h"

#include "codelibrary/CSolutionBarTemplateTree.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

CNewTemplate::CNewTemplate(const QString& directory, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("New File From Template"));
    setObjectName(QStringLiteral("NewFileFromTemplate"));
    auto* layout = new QVBoxLayout(this);
    auto* text = new QLabel(
        tr("Select a template you wish to begin editing with, and Morvane will create it for you."), this);
    text->setWordWrap(true);
    m_tree = new CSolutionBarTemplateTree(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(text);
    layout->addWidget(m_tree, 1);
    layout->addWidget(buttons);
    resize(420, 460);

    // Without a folder there is nothing to choose from, and OK makes an empty document.
    if (m_tree->BuildTree(nullptr, directory, false)) {
        m_ok->setEnabled(false);
        m_tree->ExpandNode(m_tree->Root());
    }
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& index) {
        CTreeNode* node = CTreeItemModel::NodeOf(index);
        m_path = m_tree->GetItemPath(node);
        m_ok->setEnabled(!m_path.isEmpty());
    });
    connect(m_tree, &CSolutionBarTemplateTree::templateActivated, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}
