#pragma once

#include "shell/IPropertyPage.h"

#include <QDialog>
#include <QList>

class QDialogButtonBox;
class QPushButton;
class QTabWidget;

// "Document Properties": one tab per registered page, in the order given. OK applies
// every changed page and closes, Apply applies them and stays, Cancel closes without
// writing anything.
class CPropertiesSheet : public QDialog
{
    Q_OBJECT
public:
    CPropertiesSheet(const QList<PropertyPageFactory>& factories, QWidget* parent = nullptr);
    ~CPropertiesSheet() override;

    int PageCount() const { return int(m_pages.size()); }
    IPropertyPage* Page(int index) const { return m_pages.value(index); }
    QTabWidget* Tabs() const { return m_tabs; }
    QPushButton* ApplyButton() const;

    // Applies every page holding changes.
    void ApplyAll();
    void accept() override;

Q_SIGNALS:
    // The Help button: the window in front asks for its page.
    void helpRequested();

private:
    void UpdateApply();
    void UpdateHelpPage();

    QTabWidget* m_tabs;
    QDialogButtonBox* m_buttons;
    QList<IPropertyPage*> m_pages;
};
