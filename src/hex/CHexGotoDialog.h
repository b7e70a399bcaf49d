#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QRadioButton;

// Go to an offset typed in hexadecimal or decimal ("+n" and "-n" count from the caret).
// The base persists as "HexGoto/Hex". Input out of range is refused with a message in
// the dialog, which stays open.
class CHexGotoDialog : public QDialog
{
    Q_OBJECT
public:
    CHexGotoDialog(qint64 current, qint64 size, QWidget* parent = nullptr);

    qint64 Offset() const { return m_offset; }

    QLineEdit* OffsetEdit() const { return m_edit; }
    QRadioButton* HexButton() const { return m_hex; }
    QRadioButton* DecimalButton() const { return m_decimal; }
    QString ErrorText() const;

public Q_SLOTS:
    void accept() override;

private:
    qint64 m_current;
    qint64 m_size;
    qint64 m_offset = -1;
    QLineEdit* m_edit;
    QRadioButton* m_hex;
    QRadioButton* m_decimal;
    QLabel* m_error;
};
