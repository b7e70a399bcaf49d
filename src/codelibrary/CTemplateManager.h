#pragma once

#include <QDialog>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

// "Template Manager": names a template and shows its code. A character that can't end
// a file name, typed at the end of the name, is taken away again with a beep.
class CTemplateManager : public QDialog
{
    Q_OBJECT
public:
    CTemplateManager(const QString& name, const QString& code, QWidget* parent = nullptr);

    QString Name() const { return m_name; }
    QString Code() const { return m_code; }

    QLineEdit* NameEdit() const { return m_nameEdit; }
    QPlainTextEdit* CodeEdit() const { return m_codeEdit; }
    QPushButton* OkButton() const { return m_ok; }

private:
    void OnNameChanged(const QString& text);

    QString m_name;
    QString m_code;
    QLineEdit* m_nameEdit;
    QPlainTextEdit* m_codeEdit;
    QPushButton* m_ok;
};
