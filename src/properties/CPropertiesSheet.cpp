#include "CPropertiesSheet.h"

#include "CPropertyPageBase.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

CPropertiesSheet::CPropertiesSheet(const QList<PropertyPageFactory>& factories, QWidget* parent)
    : QDialog(parent), m_tabs(new QTabWidget(this)),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel
                                         | QDialogButtonBox::Apply | QDialogButtonBox::Help,
                                     this))
{
    setWindowTitle(tr("Document Properties"));
    setObjectName(QStringLiteral("DocumentProperties"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(m_buttons);
    for (const PropertyPageFactory& factory : factories) {
        IPropertyPage* page = factory ? factory(m_tabs) : nullptr;
        if (!page || !page->Widget())
            continue;
        m_pages << page;
        m_tabs->addTab(page->Widget(), page->Title());
        if (auto* own = dynamic_cast<CPropertyPageBase*>(page))
            connect(own, &CPropertyPageBase::modifiedChanged, this, &CPropertiesSheet::UpdateApply);
    }
    connect(m_buttons, &QDialogButtonBox::accepted, this, &CPropertiesSheet::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &CPropertiesSheet::reject);
    connect(ApplyButton(), &QPushButton::clicked, this, &CPropertiesSheet::ApplyAll);
    connect(m_buttons, &QDialogButtonBox::helpRequested, this, &CPropertiesSheet::helpRequested);
    connect(m_tabs, &QTabWidget::currentChanged, this, &CPropertiesSheet::UpdateHelpPage);
    // Pages of other subsystems have no signal for their changes: ask them now and then.
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, &CPropertiesSheet::UpdateApply);
    poll->start(300);
    UpdateApply();
    UpdateHelpPage();
}

CPropertiesSheet::~CPropertiesSheet()
{
    for (IPropertyPage* page : std::as_const(m_pages))
        delete page;
}

QPushButton* CPropertiesSheet::ApplyButton() const
{
    return m_buttons->button(QDialogButtonBox::Apply);
}

void CPropertiesSheet::ApplyAll()
{
    for (IPropertyPage* page : std::as_const(m_pages)) {
        if (page->IsModified())
            page->Apply();
    }
    UpdateApply();
}

void CPropertiesSheet::accept()
{
    ApplyAll();
    QDialog::accept();
}

void CPropertiesSheet::UpdateApply()
{
    bool modified = false;
    for (const IPropertyPage* page : std::as_const(m_pages))
        modified = modified || page->IsModified();
    ApplyButton()->setEnabled(modified);
}

void CPropertiesSheet::UpdateHelpPage()
{
    const QWidget* current = m_tabs->currentWidget();
    const QVariant page = current ? current->property("helpPage") : QVariant();
    setProperty("helpPage", page.isValid() ? page : QVariant(QStringLiteral("properties.html")));
}
