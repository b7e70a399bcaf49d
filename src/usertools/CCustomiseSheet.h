#pragma once

#include <QDialog>

class CShortcutsPage;
class CToolBarCustomiser;
class CToolsPage;
class CUserToolsManager;
class IShell;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QTabWidget;

// The customisation sheet: toolbars (which show, new ones of the user's), each
// toolbar's buttons, keyboard shortcuts, external tools and presentation options.
// Changes take effect as they are made; closing the sheet stores them.
class CCustomiseSheet : public QDialog
{
    Q_OBJECT
public:
    enum Page { CreateToolBars = 0, EditToolBars = 1, KeyboardShortcuts = 2, Tools = 3, Presentation = 4 };

    CCustomiseSheet(IShell& shell, CToolBarCustomiser& toolBars, CUserToolsManager& tools,
                    int page, QWidget* parent = nullptr);

    QTabWidget* Tabs() const { return m_tabs; }
    CShortcutsPage* ShortcutsPage() const { return m_shortcuts; }
    CToolsPage* ToolsPage() const { return m_toolsPage; }

    // Create Toolbars
    QListWidget* ToolBarList() const { return m_toolBarList; }
    QString NewToolBar(const QString& title);
    // Edit Toolbars
    void ChooseToolBar(const QString& toolBarId);
    QListWidget* AvailableList() const { return m_available; }
    QListWidget* ButtonList() const { return m_buttons; }
    void AddSelectedCommand();
    void AddSeparator();
    void RemoveSelectedButton();
    void MoveSelectedButton(int step);
    // Presentation Options
    QCheckBox* LargeIconsBox() const { return m_largeIcons; }
    QCheckBox* ToolTipsBox() const { return m_toolTips; }
    QCheckBox* KeysInToolTipsBox() const { return m_keysInToolTips; }

private:
    QWidget* MakeCreatePage();
    QWidget* MakeEditPage();
    QWidget* MakePresentationPage();
    void FillToolBarList();
    void FillAvailable();
    void FillButtons();
    void StoreButtons();
    QString CurrentToolBar() const;

    IShell& m_shell;
    CToolBarCustomiser& m_customiser;
    QTabWidget* m_tabs;
    QListWidget* m_toolBarList = nullptr;
    QComboBox* m_toolBarChoice = nullptr;
    QLineEdit* m_commandSearch = nullptr;
    QListWidget* m_available = nullptr;
    QListWidget* m_buttons = nullptr;
    CShortcutsPage* m_shortcuts = nullptr;
    CToolsPage* m_toolsPage = nullptr;
    QCheckBox* m_largeIcons = nullptr;
    QCheckBox* m_toolTips = nullptr;
    QCheckBox* m_keysInToolTips = nullptr;
};
