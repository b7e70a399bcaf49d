#pragma once

#include "explorer/ExplorerPageKind.h"
#include "shell/IExplorerPage.h"

#include <QObject>
#include <QPointer>

class CFileSysTreeCtrl;
class IShell;

// The "File Explorer" page of the explorer bar. Its tree is made when the bar first
// asks for it, or at the first idle moment, when the top level is laid in.
class CFileExplorerPage : public QObject, public IExplorerPage
{
    Q_OBJECT
public:
    explicit CFileExplorerPage(IShell& shell);
    ~CFileExplorerPage() override;

    int PageKind() const override { return ExplorerPageKind::File; }
    QString Title() const override { return tr("File Explorer"); }
    QIcon Icon() const override;
    QWidget* Widget() override;
    QList<int> ToolStrip() const override;

    // The tree, made on first use.
    CFileSysTreeCtrl* Tree();
    bool ShowHidden() const { return m_showHidden; }
    void SetShowHidden(bool show);

private:
    IShell& m_shell;
    QPointer<CFileSysTreeCtrl> m_tree;
    bool m_showHidden = false;
};

// Registers the page, its tool strip commands and its settings with the shell.
CFileExplorerPage* InstallFileExplorer(IShell& shell);
