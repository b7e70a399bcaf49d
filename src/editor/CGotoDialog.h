#pragma once

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPushButton;

// Asks for a line to go to. The number is the one the status bar shows: 1 is the first
// line. An empty box can't be confirmed; any number can, and one beyond the last line
// takes the caret to the last line.
class CGotoDialog : public QDialog
{
    Q_OBJECT
public:
    CGotoDialog(QWidget* parent, long lineCount);

    // The chosen number as typed; 0 while the box is empty.
    long GetLine() const { return m_line; }
    // The control's line (counted from 0) for the chosen number.
    long TargetLine() const;

    QLineEdit* LineEdit() const { return m_edit; }
    QPushButton* OkButton() const;

private:
    void OnTextChanged(const QString& text);

    QLabel* m_label;
    QLineEdit* m_edit;
    QDialogButtonBox* m_buttons;
    long m_line = 1;
};
