#include "COutputBar.h"

#include "shell/IOutputPage.h"

#include <QTabWidget>
#include <QVBoxLayout>

COutputBar::COutputBar(QWidget* parent)
    : QWidget(parent)
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("OutputBarPages"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tabs);
    m_tabs->setTabPosition(QTabWidget::South);
}

void COutputBar::AddPage(IOutputPage* page)
{
    if (!page || m_pages.contains(page) || !page->Widget())
        return;
    m_pages << page;
    m_tabs->addTab(page->Widget(), page->Title());
}

void COutputBar::ShowPage(IOutputPage* page)
{
    const qsizetype index = m_pages.indexOf(page);
    if (index >= 0)
        m_tabs->setCurrentIndex(int(index));
}

IOutputPage* COutputBar::CurrentPage() const
{
    const int index = m_tabs->currentIndex();
    return index >= 0 && index < m_pages.size() ? m_pages.at(index) : nullptr;
}
