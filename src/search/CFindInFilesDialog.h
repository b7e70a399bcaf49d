#pragma once

#include "FindInFilesTypes.h"

#include <QDialog>

class CHistoryComboBox;
class QCheckBox;
class QPushButton;

// The "Find in Files" dialog (command 9000): what to find, in which files, under which
// folder, with the options shared with Find and Replace. Find checks the input, records
// the histories and the options, and accepts; options() then tells what to search.
class CFindInFilesDialog : public QDialog
{
    Q_OBJECT
public:
    // `initialText` (the word at the caret) goes into the find box when not empty;
    // `initialFolder` (the active document's folder) into the folder box.
    CFindInFilesDialog(const QString& initialText, const QString& initialFolder,
                       QWidget* parent = nullptr);

    FindInFilesOptions options() const;

    CHistoryComboBox* findCombo() const { return m_find; }
    CHistoryComboBox* replaceCombo() const { return m_replace; }
    // Whether the dialog was left by "Replace..." (preview, then replace) rather than Find.
    bool replaceChosen() const { return m_replaceChosen; }
    QString replacement() const;
    CHistoryComboBox* typesCombo() const { return m_types; }
    CHistoryComboBox* folderCombo() const { return m_folder; }
    QCheckBox* subFoldersBox() const { return m_subFolders; }
    QCheckBox* matchCaseBox() const { return m_matchCase; }
    QCheckBox* matchWordBox() const { return m_matchWord; }
    QCheckBox* regExpBox() const { return m_regExp; }

    // The file patterns the types box stands for: a filter's pattern when a filter row
    // is chosen, else the text as typed.
    QString patterns() const;

public slots:
    void accept() override;
    void done(int result) override;

private:
    void browse();
    void loadFilters();
    void loadOptions();
    void saveOptions() const;
    bool check();

    CHistoryComboBox* m_find;
    CHistoryComboBox* m_replace;
    bool m_replaceChosen = false;
    CHistoryComboBox* m_types;
    CHistoryComboBox* m_folder;
    QPushButton* m_browse;
    QCheckBox* m_subFolders;
    QCheckBox* m_matchCase;
    QCheckBox* m_matchWord;
    QCheckBox* m_regExp;
};
