#pragma once

#include "CBaseTreeCtrl.h"
#include "CWorkspace.h"
#include "shell/IExplorerPage.h"

#include <functional>

class IShell;
class QMenu;

// The "Project Explorer" page: the workspace's tree. A click brings an open file
// forward, a double click opens it, the item menu offers Open, Remove and Properties.
// The workspace logic lives in CWorkspace; this view asks its questions and shows it.
class CSolutionBarProjTree : public CBaseTreeCtrl, public IExplorerPage, public IWorkspacePrompts
{
    Q_OBJECT
public:
    explicit CSolutionBarProjTree(IShell& shell, QWidget* parent = nullptr);
    ~CSolutionBarProjTree() override;

    CWorkspace& Workspace() { return m_workspace; }

    // IExplorerPage
    int PageKind() const override;
    QString Title() const override;
    QIcon Icon() const override;
    QWidget* Widget() override { return this; }
    QList<int> ToolStrip() const override;

    // Base tree operations, carried out on the workspace.
    void SetModified(bool modified) override;
    void SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord) override;

    // The path of the item under a viewport point, when the point is on its icon or
    // label; that item is then selected.
    QString ItemPathAt(const QPoint& viewportPos);
    // Click and double click on an item path.
    void ActivateItem(const QString& path);
    void OpenItem(const QString& path);
    // The item menu's commands, on the selected item.
    void OpenSelected();
    void ShowSelectedProperties();
    QMenu* ItemMenu();

    // Workspace commands of the File menu.
    void CommandNewWorkspace();
    void CommandOpenWorkspace();
    void CommandSaveWorkspace();
    // Opens `path` as the workspace and brings the page forward (the ".spf" route).
    bool OpenWorkspaceFile(const QString& path);

    // For tests: answers instead of message boxes and dialogs.
    std::function<bool()> askSaveBeforeClose;
    std::function<QString()> askSavePath;
    std::function<QString()> askOpenPath;
    std::function<bool()> confirmDeleteFolder;
    std::function<void(const QString&)> showMessage;
    std::function<void(const QString&)> showProperties;

    // IWorkspacePrompts
    bool AskSaveBeforeClose() override;
    QString AskSavePath() override;
    bool ConfirmDeleteFolder() override;
    void ShowInformation(const QString& text) override;
    void ShowError(const QString& text) override;

Q_SIGNALS:
    // Asks the bar to bring this page forward.
    void showRequested();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    IShell& m_shell;
    CWorkspace m_workspace;
    QMenu* m_itemMenu = nullptr;
    bool m_clickPending = false;
};
