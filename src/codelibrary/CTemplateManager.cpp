#include "codelibrary/CTemplateManager.h"

#include "codelibrary/TemplateName.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

CTemplateManager::CTemplateManager(const QString& name, const QString& code, QWidget* parent)
    : QDialog(parent)
    , m_name(name)
    , m_code(code)
{
    setWindowTitle(tr("Template Manager"));
    setObjectName(QStringLiteral("TemplateManager"));
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::Monospace);
    if (!font.exactMatch())
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(15);
    font.setWeight(QFont::Normal);

    auto* layout = new QVBoxLayout(this);
    auto* nameLabel = new QLabel(tr("Name :"), this);
    m_nameEdit = new QLineEdit(name, this);
    m_nameEdit->setObjectName(QStringLiteral("nameEdit"));
    m_nameEdit->setFont(font);
    nameLabel->setBuddy(m_nameEdit);
    auto* codeLabel = new QLabel(tr("Code : "), this);
    m_codeEdit = new QPlainTextEdit(this);
    m_codeEdit->setObjectName(QStringLiteral("codeEdit"));
    m_codeEdit->setFont(font);
    m_codeEdit->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_codeEdit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_codeEdit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_codeEdit->setTabStopDistance(4 * QFontMetricsF(font).horizontalAdvance(QLatin1Char(' ')));
    m_codeEdit->setPlainText(code);
    codeLabel->setBuddy(m_codeEdit);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    layout->addWidget(nameLabel);
    layout->addWidget(m_nameEdit);
    layout->addWidget(codeLabel);
    layout->addWidget(m_codeEdit, 1);
    layout->addWidget(buttons);
    resize(560, 420);

    m_ok->setEnabled(!m_name.isEmpty());
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_nameEdit, &QLineEdit::textChanged, this, &CTemplateManager::OnNameChanged);
    connect(m_codeEdit, &QPlainTextEdit::textChanged, this, [this] { m_code = m_codeEdit->toPlainText(); });
    m_nameEdit->setFocus();
}

void CTemplateManager::OnNameChanged(const QString& text)
{
    const TemplateName::Edit edit = TemplateName::Apply(m_name, text);
    m_name = edit.stored;
    if (edit.revert) {
        const QSignalBlocker block(m_nameEdit);
        m_nameEdit->setText(m_name);
        QApplication::beep();
    }
    m_ok->setEnabled(!m_name.isEmpty());
}
