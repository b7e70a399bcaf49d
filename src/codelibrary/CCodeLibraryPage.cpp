#include "codelibrary/CCodeLibraryPage.h"

#include "codelibrary/CNewTemplate.h"
#include "codelibrary/CSolutionBarTemplateTree.h"
#include "codelibrary/TemplateFiles.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CommandIds.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QFileIconProvider>
#include <QMainWindow>

CCodeLibraryPage::CCodeLibraryPage(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
{
}

CCodeLibraryPage::~CCodeLibraryPage()
{
    if (m_tree && !m_tree->parent())
        delete m_tree.data();
}

QIcon CCodeLibraryPage::Icon() const
{
    return QIcon::fromTheme(QStringLiteral("text-x-script"),
                            QFileIconProvider().icon(QAbstractFileIconProvider::File));
}

QWidget* CCodeLibraryPage::Widget()
{
    return Tree();
}

CSolutionBarTemplateTree* CCodeLibraryPage::Tree()
{
    if (!m_tree) {
        m_tree = new CSolutionBarTemplateTree();
        m_tree->SetEditorProvider([this] { return ActiveEditor(); });
        m_tree->BuildTree(nullptr, TemplateFiles::LibraryFolder(), true);
        m_tree->ExpandNode(m_tree->Root());
        m_tree->SelectNode(m_tree->Root());
    }
    return m_tree;
}

CMFCScintilla* CCodeLibraryPage::ActiveEditor() const
{
    auto* frame = qobject_cast<CScrivelFrame*>(m_shell.ActiveChild());
    return frame && frame->GetView() ? frame->GetView()->GetEditor() : nullptr;
}

void CCodeLibraryPage::OnCreateFromSelection()
{
    CMFCScintilla* editor = ActiveEditor();
    if (!editor || !editor->HasSelection())
        return;
    const QString selected = editor->FromControlText(editor->GetSelText());
    Tree()->EditTemplate(QString(), selected, nullptr);
}

void CCodeLibraryPage::OnNewFromTemplate()
{
    CNewTemplate dialog(TemplateFiles::LibraryFolder(), m_shell.Window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    // A folder, or a template that can't be read, gives an empty document.
    const QString text =
        TemplateFiles::Decode(TemplateFiles::ReadTemplate(dialog.SelectedPath())).text;
    if (!m_shell.NewDocument(OpenOptions::Text))
        return;
    if (CMFCScintilla* editor = ActiveEditor()) {
        editor->InsertWithSelection(text);
        editor->setFocus();
    }
}

CCodeLibraryPage* InstallCodeLibrary(IShell& shell)
{
    auto* page = new CCodeLibraryPage(shell);

    CommandInfo fromTemplate;
    fromTemplate.id = Cmd::FileNewFromTemplate;
    fromTemplate.text = QObject::tr("F&rom Template");
    fromTemplate.category = QObject::tr("File");
    fromTemplate.toolTip = QObject::tr("New From Template");
    fromTemplate.run = [page] { page->OnNewFromTemplate(); };
    shell.Commands().Register(fromTemplate);
    shell.Menus().AddCommand(MenuId::FileNew, MenuGroup::Default, Cmd::FileNewFromTemplate);

    CommandInfo fromSelection;
    fromSelection.id = Cmd::CreateTemplateFromSelection;
    fromSelection.text = QObject::tr("Create template from Selection");
    fromSelection.category = QObject::tr("Edit");
    fromSelection.run = [page] { page->OnCreateFromSelection(); };
    fromSelection.update = [page](CCmdUI& ui) {
        const CMFCScintilla* editor = page->ActiveEditor();
        ui.enabled = editor && editor->HasSelection();
        ui.handled = true;
    };
    shell.Commands().Register(fromSelection);

    shell.AddExplorerPage(page);
    return page;
}
