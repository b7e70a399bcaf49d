#pragma once

#include <QWidget>

class CCommandRegistry;
class CUserToolsManager;
class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

// "Keyboard Shortcuts": every command by category with its key and its default; search
// by name or key; assign, remove, reset one or all. A key already taken is named
// before it is moved. Keys of external tools belong to the tools themselves.
class CShortcutsPage : public QWidget
{
    Q_OBJECT
public:
    CShortcutsPage(CCommandRegistry& commands, CUserToolsManager* tools, QWidget* parent = nullptr);

    void Refill();
    void SetFilter(const QString& text);
    // Selects a command's row; false when it is not listed (filtered out).
    bool SelectCommand(int id);
    int SelectedCommand() const;
    // Gives the selected command `key`, taking it from the command that had it. With
    // `confirm`, the user is asked first when the key is taken; false when not assigned.
    bool Assign(const QKeySequence& key, bool confirm = true);
    void RemoveKey();
    void ResetSelected();
    void ResetAll();

    // The warning under the key field ("Ctrl+S is assigned to \"Save\"").
    QString ConflictText() const;

private:
    void SetKey(int id, const QKeySequence& key);
    void UpdateDetails();
    void UpdateConflict();

    CCommandRegistry& m_commands;
    CUserToolsManager* m_tools;
    QLineEdit* m_search;
    QTreeWidget* m_tree;
    QKeySequenceEdit* m_keyEdit;
    QLabel* m_conflict;
    QLabel* m_defaultLabel;
    QPushButton* m_assign;
    QPushButton* m_remove;
    QPushButton* m_reset;
};
