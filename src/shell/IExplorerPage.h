#pragma once

#include <QIcon>
#include <QList>
#include <QString>

class QWidget;

// A page of the explorer bar ("File Explorer", "Project Explorer", ...).
class IExplorerPage
{
public:
    virtual ~IExplorerPage() = default;
    // Which page this is, for the bar's toggles and its saved order (the page flag).
    virtual int PageKind() const = 0;
    virtual QString Title() const = 0;
    virtual QIcon Icon() const { return {}; }
    virtual QWidget* Widget() = 0;
    // Command ids for the bar's tool strip while this page is active (0 is a line).
    virtual QList<int> ToolStrip() const { return {}; }
    // Extra widgets of the tool strip (a table chooser), owned by the page.
    virtual QList<QWidget*> ToolStripWidgets() { return {}; }
};
