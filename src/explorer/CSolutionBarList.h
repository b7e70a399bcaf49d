#pragma once

#include "ReferenceTables.h"
#include "shell/IExplorerPage.h"

#include <QListWidget>

class IShell;
class QComboBox;

// The "List Explorer" page: ready-made snippets from the three built-in tables, chosen
// with the combo box on the bar's tool strip. A double click inserts the row into the
// active text view, the selection going where the row says "<%REPLACE%>".
class CSolutionBarList : public QListWidget, public IExplorerPage
{
    Q_OBJECT
public:
    explicit CSolutionBarList(IShell& shell, QWidget* parent = nullptr);
    ~CSolutionBarList() override;

    int PageKind() const override;
    QString Title() const override;
    QIcon Icon() const override;
    QWidget* Widget() override { return this; }
    QList<QWidget*> ToolStripWidgets() override;

    QComboBox* TableChooser() const { return m_chooser; }
    // Empties the list and adds the rows of the chosen table.
    void FillList();
    // Inserts the current row into the active text view; false when nothing was done.
    bool InsertCurrentRow();
    // The insert text of a row, as Windows-1252 bytes.
    QByteArray InsertText(int row) const;

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    IShell& m_shell;
    QComboBox* m_chooser;
};
