#include "CHexGotoDialog.h"

#include "HexText.h"
#include "settings/CRegistryStore.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
const QString kSection = QStringLiteral("HexGoto");
const QString kHex = QStringLiteral("Hex");
}

CHexGotoDialog::CHexGotoDialog(qint64 current, qint64 size, QWidget* parent)
    : QDialog(parent)
    , m_current(current)
    , m_size(size)
    , m_edit(new QLineEdit(this))
    , m_hex(new QRadioButton(tr("He&xadecimal"), this))
    , m_decimal(new QRadioButton(tr("&Decimal"), this))
    , m_error(new QLabel(this))
{
    setWindowTitle(tr("Go To Offset"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    form->addRow(tr("&Offset:"), m_edit);
    layout->addLayout(form);
    auto* bases = new QHBoxLayout;
    bases->addWidget(m_hex);
    bases->addWidget(m_decimal);
    layout->addLayout(bases);
    const qint64 last = std::max<qint64>(0, size - 1);
    layout->addWidget(new QLabel(tr("From 0 to %1 (0x%2)")
                                     .arg(last)
                                     .arg(QString::number(last, 16).toUpper()),
                                 this));
    m_error->setWordWrap(true);
    QPalette pal = m_error->palette();
    pal.setColor(QPalette::WindowText, Qt::red);
    m_error->setPalette(pal);
    m_error->hide();
    layout->addWidget(m_error);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CHexGotoDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_edit, &QLineEdit::textChanged, m_error, &QWidget::hide);

    const bool hex = CRegistryStore().GetProfileInt(kSection, kHex, 0) != 0;
    (hex ? m_hex : m_decimal)->setChecked(true);
}

QString CHexGotoDialog::ErrorText() const
{
    return m_error->isHidden() ? QString() : m_error->text();
}

void CHexGotoDialog::accept()
{
    QString error;
    qint64 offset = 0;
    if (!HexText::ParseOffset(m_edit->text(), m_hex->isChecked(), m_current, m_size, &offset,
                              &error)) {
        m_error->setText(error);
        m_error->show();
        m_edit->setFocus();
        m_edit->selectAll();
        return;
    }
    m_offset = offset;
    CRegistryStore().WriteProfileInt(kSection, kHex, m_hex->isChecked() ? 1 : 0);
    QDialog::accept();
}
