#include "CHexFindDialog.h"

#include "HexText.h"
#include "settings/CRegistryStore.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
const QString kSection = QStringLiteral("HexFindDialog");
}

CHexFindDialog::CHexFindDialog(QWidget* parent, const QString& initialText)
    : QDialog(parent)
    , m_edit(new QLineEdit(this))
    , m_hex(new QRadioButton(tr("&Hex values"), this))
    , m_text(new QRadioButton(tr("&Text"), this))
    , m_matchCase(new QCheckBox(tr("Match &case"), this))
    , m_up(new QRadioButton(tr("&Up"), this))
    , m_down(new QRadioButton(tr("&Down"), this))
    , m_error(new QLabel(this))
{
    setWindowTitle(tr("Find"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    form->addRow(tr("Fi&nd what:"), m_edit);
    layout->addLayout(form);

    auto* kind = new QGroupBox(tr("Search for"), this);
    auto* kindLayout = new QHBoxLayout(kind);
    kindLayout->addWidget(m_hex);
    kindLayout->addWidget(m_text);
    auto* direction = new QGroupBox(tr("Direction"), this);
    auto* directionLayout = new QHBoxLayout(direction);
    directionLayout->addWidget(m_up);
    directionLayout->addWidget(m_down);
    auto* options = new QHBoxLayout;
    options->addWidget(kind);
    options->addWidget(direction);
    layout->addLayout(options);
    layout->addWidget(m_matchCase);

    m_error->setWordWrap(true);
    QPalette pal = m_error->palette();
    pal.setColor(QPalette::WindowText, Qt::red);
    m_error->setPalette(pal);
    m_error->hide();
    layout->addWidget(m_error);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_findButton = buttons->addButton(tr("&Find Next"), QDialogButtonBox::AcceptRole);
    m_findButton->setDefault(true);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &CHexFindDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    const CRegistryStore store;
    (store.GetProfileInt(kSection, QStringLiteral("SearchAscii"), 0) ? m_text : m_hex)->setChecked(true);
    m_matchCase->setChecked(store.GetProfileInt(kSection, QStringLiteral("MatchCase"), 0) != 0);
    (store.GetProfileInt(kSection, QStringLiteral("SearchUp"), 0) ? m_up : m_down)->setChecked(true);

    m_edit->setText(initialText);
    m_edit->selectAll();
    connect(m_text, &QRadioButton::toggled, this, &CHexFindDialog::UpdateState);
    connect(m_edit, &QLineEdit::textChanged, this, &CHexFindDialog::UpdateState);
    UpdateState();
}

QString CHexFindDialog::ErrorText() const
{
    return m_error->isHidden() ? QString() : m_error->text();
}

void CHexFindDialog::UpdateState()
{
    // Case only means something for text.
    m_matchCase->setEnabled(m_text->isChecked());
    m_findButton->setEnabled(!m_edit->text().isEmpty());
    m_error->hide();
}

void CHexFindDialog::accept()
{
    CHexFindRequest request;
    if (m_text->isChecked()) {
        request.pattern = m_edit->text().toUtf8();
        request.matchCase = m_matchCase->isChecked();
    } else if (!HexText::ParseHex(m_edit->text(), &request.pattern)) {
        m_error->setText(tr("Type the bytes as hexadecimal digits, such as 4D 5A 90."));
        m_error->show();
        m_edit->setFocus();
        return;
    }
    if (request.pattern.isEmpty())
        return;
    request.up = m_up->isChecked();
    m_request = request;

    CRegistryStore store;
    store.WriteProfileInt(kSection, QStringLiteral("SearchAscii"), m_text->isChecked() ? 1 : 0);
    store.WriteProfileInt(kSection, QStringLiteral("MatchCase"), m_matchCase->isChecked() ? 1 : 0);
    store.WriteProfileInt(kSection, QStringLiteral("SearchUp"), m_up->isChecked() ? 1 : 0);
    QDialog::accept();
}
