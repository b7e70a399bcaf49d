#pragma once

#include <QDialog>

class CSolutionBarTemplateTree;
class QPushButton;

// "New File From Template": picks a template to begin a new document with. The tree is
// read from the template folder each time the dialog opens.
class CNewTemplate : public QDialog
{
    Q_OBJECT
public:
    CNewTemplate(const QString& directory, QWidget* parent = nullptr);

    // The path of the item last selected (a folder may be chosen: it gives nothing).
    QString SelectedPath() const { return m_path; }
    CSolutionBarTemplateTree* Tree() const { return m_tree; }
    QPushButton* OkButton() const { return m_ok; }

private:
    CSolutionBarTemplateTree* m_tree;
    QPushButton* m_ok;
    QString m_path;
};
