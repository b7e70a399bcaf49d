#pragma once

#include "explorer/ExplorerPageKind.h"
#include "shell/IExplorerPage.h"

#include <QObject>
#include <QPointer>

class CMFCScintilla;
class CSolutionBarTemplateTree;
class IShell;

// The "Code Library" page of the explorer bar, and the commands that reach the library
// from elsewhere: a template from the editor's selection, and a new document from a
// template.
class CCodeLibraryPage : public QObject, public IExplorerPage
{
    Q_OBJECT
public:
    explicit CCodeLibraryPage(IShell& shell);
    ~CCodeLibraryPage() override;

    int PageKind() const override { return ExplorerPageKind::CodeLibrary; }
    QString Title() const override { return tr("Code Library"); }
    QIcon Icon() const override;
    QWidget* Widget() override;

    // The tree, read from the template folder on first use.
    CSolutionBarTemplateTree* Tree();
    // The active text view's editor, or null.
    CMFCScintilla* ActiveEditor() const;

    // "Create template from Selection".
    void OnCreateFromSelection();
    // "From Template": the chooser, then a new text document with the template in it.
    void OnNewFromTemplate();

private:
    IShell& m_shell;
    QPointer<CSolutionBarTemplateTree> m_tree;
};

// Registers the page and its commands with the shell.
CCodeLibraryPage* InstallCodeLibrary(IShell& shell);
