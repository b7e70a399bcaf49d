#pragma once

#include <QString>

class QWidget;

// A page of the Output bar ("Find Results", "Tool Results", ...). The bar shows the
// widget; the page keeps owning it.
class IOutputPage
{
public:
    virtual ~IOutputPage() = default;
    virtual QString Title() const = 0;
    virtual QWidget* Widget() = 0;
    // Empties the page (the bar's "Clear" command).
    virtual void Clear() {}
    // Steps to the next or previous link in the page (F4, Shift+F4); false when there is none.
    virtual bool GoToNextLink(bool forward) { Q_UNUSED(forward); return false; }
};
