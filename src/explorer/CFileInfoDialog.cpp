#include "CFileInfoDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QMimeDatabase>
#include <QVBoxLayout>

CFileInfoDialog::CFileInfoDialog(const QString& path, QWidget* parent)
    : QDialog(parent)
    , m_path(path)
    , m_properties(FileProperties::Read(path))
{
    setWindowTitle(tr("File Properties"));
    auto* layout = new QVBoxLayout(this);

    auto* head = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("icon"));
    if (m_properties.exists)
        icon->setPixmap(QFileIconProvider().icon(QFileInfo(path)).pixmap(32, 32));
    auto* name = new QLabel(m_properties.name, this);
    name->setObjectName(QStringLiteral("name"));
    name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    head->addWidget(icon);
    head->addWidget(name, 1);
    layout->addLayout(head);

    QString type = FileProperties::Unknown();
    if (m_properties.exists)
        type = QMimeDatabase().mimeTypeForFile(path).comment();
    auto* form = new QFormLayout;
    auto addField = [this, form](const char* label, const QString& objectName, const QString& text) {
        auto* value = new QLabel(text, this);
        value->setObjectName(objectName);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(tr(label), value);
    };
    addField(QT_TR_NOOP("File Type:"), QStringLiteral("type"), type);
    addField(QT_TR_NOOP("Location:"), QStringLiteral("location"), m_properties.location);
    addField(QT_TR_NOOP("Size:"), QStringLiteral("size"), m_properties.size);
    addField(QT_TR_NOOP("Created:"), QStringLiteral("created"), m_properties.created);
    addField(QT_TR_NOOP("Modified:"), QStringLiteral("modified"), m_properties.modified);
    addField(QT_TR_NOOP("Accessed:"), QStringLiteral("accessed"), m_properties.accessed);
    layout->addLayout(form);

    m_readOnly = new QCheckBox(tr("&Read-only"), this);
    m_readOnly->setChecked(m_properties.readOnly);
    m_readOnly->setEnabled(m_properties.exists);
    m_hidden = new QCheckBox(tr("&Hidden"), this);
    m_hidden->setChecked(m_properties.hidden);
    m_hidden->setEnabled(false);
    auto* boxes = new QHBoxLayout;
    boxes->addWidget(m_readOnly);
    boxes->addWidget(m_hidden);
    boxes->addStretch(1);
    layout->addLayout(boxes);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

QString CFileInfoDialog::FieldText(const QString& field) const
{
    const auto* label = findChild<QLabel*>(field);
    return label ? label->text() : QString();
}

void CFileInfoDialog::accept()
{
    if (m_properties.exists && m_readOnly->isChecked() != m_properties.readOnly)
        FileProperties::SetReadOnly(m_path, m_readOnly->isChecked());
    QDialog::accept();
}
