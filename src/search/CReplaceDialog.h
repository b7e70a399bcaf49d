#pragma once

#include <QDialog>
#include <QString>

class CHistoryComboBox;
class CSearchCommands;
class QCheckBox;
class QPushButton;
class QRadioButton;

// The modeless Replace window of text documents. The first press of Replace only finds;
// each further press replaces what is selected and finds the next match. Replace All
// works on the document or on the whole lines of the selection. Its Close button writes
// the options; Escape and the main window closing leave them unwritten.
class CReplaceDialog : public QDialog
{
    Q_OBJECT
public:
    CReplaceDialog(CSearchCommands* commands, const QString& initialText,
                   QWidget* parent = nullptr);
    ~CReplaceDialog() override;

    void FocusFindBox();

    CHistoryComboBox* FindCombo() const { return m_findCombo; }
    CHistoryComboBox* ReplaceCombo() const { return m_replaceCombo; }
    bool MatchCase() const { return m_matchCase; }
    bool MatchWord() const { return m_matchWord; }
    bool RegExp() const { return m_regExp; }
    bool SelectionScope() const { return m_selectionScope; }
    long LastFound() const { return m_lastFound; }

    // The buttons.
    void OnFindNext();
    void OnReplace();
    void OnReplaceAll();
    void OnClose();

private:
    void BuildControls();
    void LoadOptions();
    void UpdateScopeButtons();
    // Both texts, or false (with a message) when there is nothing to search for.
    bool ReadTexts(QString& find, QString& replace);

    CSearchCommands* m_commands;
    bool m_matchCase = false;
    bool m_matchWord = false;
    bool m_regExp = false;
    bool m_selectionScope = false;
    CHistoryComboBox* m_findCombo = nullptr;
    CHistoryComboBox* m_replaceCombo = nullptr;
    QCheckBox* m_matchCaseBox = nullptr;
    QCheckBox* m_matchWordBox = nullptr;
    QCheckBox* m_regExpBox = nullptr;
    QRadioButton* m_selectionButton = nullptr;
    QRadioButton* m_documentButton = nullptr;
    QPushButton* m_findNextButton = nullptr;
    QPushButton* m_replaceButton = nullptr;
    QPushButton* m_replaceAllButton = nullptr;
    QPushButton* m_closeButton = nullptr;
    long m_lastFound = -1;
    QString m_initialText;
};
