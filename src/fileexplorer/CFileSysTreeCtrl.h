#pragma once

#include "fileexplorer/CFileSysIcons.h"
#include "fileexplorer/CFileSysModel.h"

#include <QTreeView>
#include <functional>

class CFolderWatch;
class IShell;
class QMenu;

// The "File Explorer" page: the home folder, "/" and the mounted volumes, filled one
// level at a time as folders open. The folder of the selected item is watched, so
// the tree follows what other programs do there.
class CFileSysTreeCtrl : public QTreeView
{
    Q_OBJECT
public:
    // The commands of the item menu, by their ids.
    enum MenuCommand : int {
        CmdOpen = 57601,
        CmdOpenAsHex = 32790,
        CmdCopyPath = 28000,
        CmdOpenContainingFolder = 28001,
        CmdProperties = 32773,
    };

    explicit CFileSysTreeCtrl(IShell* shell, QWidget* parent = nullptr);
    ~CFileSysTreeCtrl() override;

    CFileSysModel* Model() const { return m_model; }
    CFolderWatch* Watch() const { return m_watch; }

    // Lays in the top level, opens the first item and selects it.
    void FirstFill();
    void FirstFill(const QStringList& topLevel);
    bool IsFilled() const { return m_filled; }

    bool ShowHidden() const { return m_model->ShowHidden(); }
    void SetShowHidden(bool show);
    // Refreshes the first top-level item's subtree, open folders included.
    void RefreshFromTop();

    // The path a command acts on: a file's path; a folder's only with `allowFolder`;
    // with `toFolder`, a file gives its folder.
    QString GetItemPath(const QModelIndex& index, bool toFolder, bool allowFolder) const;
    QModelIndex SelectedIndex() const;
    void SelectPath(const QString& path);

    // The item menu's commands on the selected item.
    void OnOpen();
    void OnOpenAsHex();
    void OnCopyPath();
    void OnOpenContainingFolder();
    void OnProperties();
    // Shows a file's properties; without one, "Properties" is greyed.
    void SetPropertiesHandler(std::function<void(const QString& path, QWidget* parent)> handler)
    {
        m_properties = std::move(handler);
    }

    // The menu for the selected item, built anew each time; the caller owns it.
    QMenu* CreateItemMenu();
    // The part of an item's row that shows its text.
    QRect LabelRect(const QModelIndex& index) const;

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    void OpenFile(const QString& path, bool hex);
    void OnExpanded(const QModelIndex& index);

    IShell* m_shell;
    CFileSysModel* m_model;
    CFolderWatch* m_watch;
    std::function<void(const QString&, QWidget*)> m_properties;
    bool m_filled = false;
};
