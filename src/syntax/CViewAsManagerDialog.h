#pragma once

#include <QDialog>
#include <QStringList>

class CSyntaxParserList;
class QDialogButtonBox;
class QListWidget;
class QListWidgetItem;

// "View As ...": picks one parser from the whole list, including those the menu has no
// room for. The caller applies the choice when exec() returns Accepted.
class CViewAsManagerDialog : public QDialog
{
    Q_OBJECT
public:
    CViewAsManagerDialog(const QStringList& menuNames, int current, QWidget* parent = nullptr);
    CViewAsManagerDialog(const CSyntaxParserList& parsers, int current, QWidget* parent = nullptr);

    // The chosen parser index; the index given at construction until the user picks.
    int SelectedIndex() const { return m_selected; }

    QListWidget* ListBox() const { return m_list; }

private:
    void OnSelectionChanged();
    void OnItemDoubleClicked(QListWidgetItem* item);

    QListWidget* m_list = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    int m_selected = -1;
};
