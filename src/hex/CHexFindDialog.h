#pragma once

#include <QByteArray>
#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// What to look for in a binary document, as the find dialog last took it.
struct CHexFindRequest
{
    QByteArray pattern;
    bool matchCase = true;
    bool up = false;
    bool IsValid() const { return !pattern.isEmpty(); }
};

// Find in the hex view: bytes typed as hex digits or as text, match case (text only),
// direction. The choices persist in the section "HexFindDialog".
class CHexFindDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CHexFindDialog(QWidget* parent = nullptr, const QString& initialText = QString());

    CHexFindRequest Request() const { return m_request; }

    QLineEdit* FindEdit() const { return m_edit; }
    QRadioButton* TextButton() const { return m_text; }
    QRadioButton* HexButton() const { return m_hex; }
    QCheckBox* MatchCaseBox() const { return m_matchCase; }
    QRadioButton* UpButton() const { return m_up; }
    QString ErrorText() const;

public Q_SLOTS:
    void accept() override;

private:
    void UpdateState();

    QLineEdit* m_edit;
    QRadioButton* m_hex;
    QRadioButton* m_text;
    QCheckBox* m_matchCase;
    QRadioButton* m_up;
    QRadioButton* m_down;
    QLabel* m_error;
    QPushButton* m_findButton;
    CHexFindRequest m_request;
};
