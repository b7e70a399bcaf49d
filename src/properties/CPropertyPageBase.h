#pragma once

#include "shell/IPropertyPage.h"

#include <QWidget>

// What the sheet's own pages share: a title, the help page F1 opens while the page is
// in front, and a modified flag that enables Apply.
class CPropertyPageBase : public QWidget, public IPropertyPage
{
    Q_OBJECT
public:
    CPropertyPageBase(const QString& title, const QString& helpPage, QWidget* parent);

    QString Title() const override { return m_title; }
    QWidget* Widget() override { return this; }
    bool IsModified() const override { return m_modified; }
    void SetModified(bool modified = true);

Q_SIGNALS:
    void modifiedChanged(bool modified);

private:
    QString m_title;
    bool m_modified = false;
};

// Colours as the settings keep them (0x00BBGGRR) and as widgets show them.
QColor ColourFromRef(quint32 colour);
quint32 RefFromColour(const QColor& colour);
