#pragma once

#include <QList>
#include <QWidget>

class IOutputPage;
class QTabWidget;

// The contents of the docked "Output" window: one tab for each page the subsystems add
// ("Find Results", "Tool Results", ...), in the order they come.
class COutputBar : public QWidget
{
    Q_OBJECT
public:
    explicit COutputBar(QWidget* parent = nullptr);

    // Adds a tab for the page; a page added twice keeps its first tab.
    void AddPage(IOutputPage* page);
    // Brings the page's tab to the front.
    void ShowPage(IOutputPage* page);
    IOutputPage* CurrentPage() const;
    const QList<IOutputPage*>& Pages() const { return m_pages; }

private:
    QTabWidget* m_tabs;
    QList<IOutputPage*> m_pages;
};
