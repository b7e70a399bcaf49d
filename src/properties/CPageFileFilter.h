#pragma once

#include "CPropertyPageBase.h"
#include "FileFilterStore.h"

class QLineEdit;
class QPushButton;
class QTreeWidget;

// File Filters: the label and patterns of each file type the open and save dialogs
// offer. Changes are written when the sheet applies them.
class CPageFileFilter : public CPropertyPageBase
{
    Q_OBJECT
public:
    explicit CPageFileFilter(QWidget* parent);

    void Apply() override;
    void Reset() override;

    QList<FileFilterStore::Filter> Filters() const { return m_filters; }
    QTreeWidget* List() const { return m_list; }
    QLineEdit* LabelEdit() const { return m_label; }
    QLineEdit* ExtensionEdit() const { return m_extension; }

    // The buttons' work. Add needs both fields; a pattern already listed takes the new
    // label. Delete needs a selection, else it says so.
    bool OnAdd();
    bool OnDelete();
    void OnTest();

    static QString SaveFailedText();
    static QString SelectFirstText();

private:
    void Fill();

    QList<FileFilterStore::Filter> m_filters;
    QTreeWidget* m_list;
    QLineEdit* m_label;
    QLineEdit* m_extension;
};
