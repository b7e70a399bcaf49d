#pragma once

#include <QDialog>
#include <QString>

class CHistoryComboBox;
class CSearchCommands;
class QCheckBox;
class QPushButton;
class QRadioButton;

// The modeless Find window of text documents. It holds the options and hands each search
// to CSearchCommands, which applies it to the active text view. Its Close button writes
// the options; Escape and the main window closing leave them unwritten.
class CFindDialog : public QDialog
{
    Q_OBJECT
public:
    CFindDialog(CSearchCommands* commands, const QString& initialText, QWidget* parent = nullptr);
    ~CFindDialog() override;

    void FocusFindBox();

    CHistoryComboBox* FindCombo() const { return m_findCombo; }
    bool MatchCase() const { return m_matchCase; }
    bool MatchWord() const { return m_matchWord; }
    bool RegExp() const { return m_regExp; }
    bool SearchUp() const { return m_searchUp; }
    bool WrapAround() const { return m_wrapAround; }

    // The buttons.
    void OnFindNext();
    void OnMarkAll();
    void OnClose();

private:
    void BuildControls();
    void LoadOptions();

    CSearchCommands* m_commands;
    bool m_matchCase = true;
    bool m_matchWord = false;
    bool m_regExp = false;
    bool m_searchUp = false;
    bool m_wrapAround = false;
    CHistoryComboBox* m_findCombo = nullptr;
    QCheckBox* m_matchCaseBox = nullptr;
    QCheckBox* m_matchWordBox = nullptr;
    QCheckBox* m_regExpBox = nullptr;
    QCheckBox* m_wrapAroundBox = nullptr;
    QRadioButton* m_upButton = nullptr;
    QRadioButton* m_downButton = nullptr;
    QPushButton* m_findNextButton = nullptr;
    QPushButton* m_markAllButton = nullptr;
    QPushButton* m_closeButton = nullptr;
    QString m_initialText;
};
