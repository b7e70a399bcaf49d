#pragma once

#include <QString>
#include <functional>

class QWidget;

// A page of the "Document Properties" sheet. A page is made each time the sheet opens,
// reads the settings it shows as it is made, and writes them only in Apply.
class IPropertyPage
{
public:
    virtual ~IPropertyPage() = default;
    virtual QString Title() const = 0;
    virtual QWidget* Widget() = 0;
    // Writes what the user changed and makes it take effect.
    virtual void Apply() = 0;
    // Shows the stored settings again, dropping what the user changed.
    virtual void Reset() = 0;
    // Whether the page holds changes not yet applied.
    virtual bool IsModified() const { return true; }
};

// Makes a page whose widget is a child of `parent`; the sheet owns the page.
using PropertyPageFactory = std::function<IPropertyPage*(QWidget* parent)>;
