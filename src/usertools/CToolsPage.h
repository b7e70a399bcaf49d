#pragma once

#include "usertools/UserTool.h"

#include <QWidget>

class CUserToolsManager;
class QCheckBox;
class QComboBox;
class QKeySequenceEdit;
class QLineEdit;
class QListWidget;
class QPushButton;

// "Tools": the user's external tools. Every change is taken at once, so the Tools
// menu shows what the page shows.
class CToolsPage : public QWidget
{
    Q_OBJECT
public:
    explicit CToolsPage(CUserToolsManager& manager, QWidget* parent = nullptr);

    void AddTool();
    void RemoveTool();
    void MoveTool(int step);
    int CurrentRow() const;
    void SetCurrentRow(int row);

    // The fields, for the tests and the browse buttons.
    QLineEdit* NameEdit() const { return m_name; }
    QLineEdit* CommandEdit() const { return m_command; }
    QLineEdit* ArgumentsEdit() const { return m_arguments; }
    QLineEdit* DirectoryEdit() const { return m_directory; }
    QComboBox* KindBox() const { return m_kind; }
    QCheckBox* SaveBox() const { return m_save; }
    QKeySequenceEdit* ShortcutEdit() const { return m_shortcut; }
    // Takes what the fields show into the current tool.
    void Commit();

private:
    void Refill(int row);
    void ShowTool(int row);

    CUserToolsManager& m_manager;
    QListWidget* m_list;
    QLineEdit* m_name;
    QLineEdit* m_command;
    QLineEdit* m_arguments;
    QLineEdit* m_directory;
    QComboBox* m_kind;
    QCheckBox* m_save;
    QKeySequenceEdit* m_shortcut;
    QPushButton* m_add;
    QPushButton* m_remove;
    QPushButton* m_up;
    QPushButton* m_down;
    bool m_filling = false;
};
