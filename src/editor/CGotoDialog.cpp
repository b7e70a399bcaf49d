#include "CGotoDialog.h"

#include <climits>

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include <climits>

CGotoDialog::CGotoDialog(QWidget* parent, long lineCount)
    : QDialog(parent)
    , m_label(new QLabel(this))
    , m_edit(new QLineEdit(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(QStringLiteral("GotoDialog"));
    setWindowTitle(tr("Go To Line"));
    setWindowIcon(QIcon::fromTheme(QStringLiteral("go-jump")));

    m_label->setText(tr("Line number (1 - %1):").arg(lineCount));
    m_label->setBuddy(m_edit);
    // Digits only, of any length: a number too large for the line count still goes
    // to the last line.
    m_edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), m_edit));
    m_edit->setObjectName(QStringLiteral("LineEdit"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_edit);
    layout->addWidget(m_buttons);

    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_edit, &QLineEdit::textChanged, this, &CGotoDialog::OnTextChanged);

    m_edit->setText(QString::number(m_line));
    m_edit->selectAll();
    setFixedSize(sizeHint());
}

QPushButton* CGotoDialog::OkButton() const
{
    return m_buttons->button(QDialogButtonBox::Ok);
}

void CGotoDialog::OnTextChanged(const QString& text)
{
    OkButton()->setEnabled(!text.isEmpty());
    if (text.isEmpty()) {
        m_line = 0;
        return;
    }
    bool ok = false;
    const qulonglong value = text.toULongLong(&ok);
    // More digits than any line count: the last line it is.
    m_line = (!ok || value > qulonglong(LONG_MAX)) ? LONG_MAX : long(value);
}

long CGotoDialog::TargetLine() const
{
    return m_line > 0 ? m_line - 1 : 0;
}
