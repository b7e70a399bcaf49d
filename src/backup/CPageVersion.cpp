#include "backup/CPageVersion.h"

#include "backup/CBackupManager.h"
#include "settings/MainFrameSettings.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

CPageVersion::CPageVersion(CBackupManager& manager, MainFrameSettings& settings, QWidget* parent)
    : QWidget(parent)
    , m_manager(manager)
    , m_settings(settings)
{
    auto* layout = new QVBoxLayout(this);
    m_enable = new QCheckBox(tr("&Enable Backup"), this);
    m_enable->setObjectName(QStringLiteral("3010"));
    layout->addWidget(m_enable);

    m_properties = new QGroupBox(tr("Backup Properties"), this);
    m_properties->setObjectName(QStringLiteral("3011"));
    auto* grid = new QGridLayout(m_properties);
    m_locationLabel = new QLabel(tr("Location:"), m_properties);
    m_locationLabel->setObjectName(QStringLiteral("3012"));
    m_locationEdit = new QLineEdit(m_properties);
    m_locationEdit->setObjectName(QStringLiteral("1006"));
    m_locationLabel->setBuddy(m_locationEdit);
    m_browse = new QToolButton(m_properties);
    m_browse->setObjectName(QStringLiteral("3013"));
    m_browse->setText(QStringLiteral("..."));
    m_browse->setToolTip(tr("Browse for the folder"));
    grid->addWidget(m_locationLabel, 0, 0, 1, 3);
    grid->addWidget(m_locationEdit, 1, 0, 1, 2);
    grid->addWidget(m_browse, 1, 2);

    m_versionsLabel = new QLabel(tr("Number of versions to maintain:"), m_properties);
    m_versionsLabel->setObjectName(QStringLiteral("3014"));
    m_versionsEdit = new QLineEdit(m_properties);
    m_versionsEdit->setObjectName(QStringLiteral("3016"));
    m_versionsEdit->setValidator(new QIntValidator(0, 999, m_versionsEdit));
    m_versionsEdit->setMaximumWidth(60);
    m_upDown = new QWidget(m_properties);
    m_upDown->setObjectName(QStringLiteral("3015"));
    auto* arrows = new QVBoxLayout(m_upDown);
    arrows->setContentsMargins(0, 0, 0, 0);
    arrows->setSpacing(0);
    auto* up = new QToolButton(m_upDown);
    up->setObjectName(QStringLiteral("up"));
    up->setArrowType(Qt::UpArrow);
    up->setFixedSize(18, 11);
    auto* down = new QToolButton(m_upDown);
    down->setObjectName(QStringLiteral("down"));
    down->setArrowType(Qt::DownArrow);
    down->setFixedSize(18, 11);
    arrows->addWidget(up);
    arrows->addWidget(down);
    auto* versionsRow = new QHBoxLayout;
    versionsRow->setSpacing(0);
    versionsRow->addWidget(m_versionsEdit);
    versionsRow->addWidget(m_upDown);
    versionsRow->addStretch();
    grid->addWidget(m_versionsLabel, 2, 0);
    grid->addLayout(versionsRow, 2, 1, 1, 2);

    m_deleteLabel = new QLabel(tr("Delete all backup versions on exit:"), m_properties);
    m_deleteLabel->setObjectName(QStringLiteral("3018"));
    m_delete = new QCheckBox(tr("Delete"), m_properties);
    m_delete->setObjectName(QStringLiteral("3017"));
    grid->addWidget(m_deleteLabel, 3, 0);
    grid->addWidget(m_delete, 3, 1, 1, 2);
    layout->addWidget(m_properties);

    auto* history = new QGroupBox(tr("Delete all backup history"), this);
    auto* historyLayout = new QHBoxLayout(history);
    auto* deleteFiles = new QPushButton(tr("Delete Files..."), history);
    deleteFiles->setObjectName(QStringLiteral("1002"));
    historyLayout->addWidget(deleteFiles);
    historyLayout->addStretch();
    layout->addWidget(history);
    layout->addStretch();

    connect(m_enable, &QCheckBox::toggled, this, [this](bool on) {
        if (m_loading)
            return;
        m_enabled = on ? 1 : 0;
        SetControlsEnabled(on);
        SetModified();
    });
    connect(m_delete, &QCheckBox::toggled, this, [this](bool on) {
        if (m_loading)
            return;
        m_deleteOnExit = on ? 1 : 0;
        SetModified();
    });
    connect(m_locationEdit, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (m_loading)
            return;
        m_location = text;
        SetModified();
    });
    connect(m_versionsEdit, &QLineEdit::textChanged, this, &CPageVersion::OnVersionsEdited);
    connect(up, &QToolButton::clicked, this, [this] { Step(1); });
    connect(down, &QToolButton::clicked, this, [this] { Step(-1); });
    connect(m_browse, &QToolButton::clicked, this, &CPageVersion::Browse);
    connect(deleteFiles, &QPushButton::clicked, this, &CPageVersion::DeleteFiles);
    Reset();
}

void CPageVersion::Reset()
{
    m_loading = true;
    m_deleteOnExit = m_settings.DeleteOnExit;
    m_enabled = m_settings.Enabled;
    m_versions = m_settings.Versions;
    m_location = m_settings.BackupFolder;
    m_enable->setChecked(m_enabled != 0);
    m_delete->setChecked(m_deleteOnExit != 0);
    m_locationEdit->setText(QDir::toNativeSeparators(m_location));
    m_position = std::clamp(m_versions, 1, 99);
    m_versionsEdit->setText(QString::number(m_versions));
    SetControlsEnabled(m_enabled != 0);
    m_loading = false;
    m_modified = false;
}

void CPageVersion::SetControlsEnabled(bool enabled)
{
    for (QWidget* control : std::initializer_list<QWidget*>{m_deleteLabel, m_properties, m_locationLabel, m_locationEdit,
                                                             m_browse, m_versionsLabel, m_upDown, m_versionsEdit, m_delete})
        control->setEnabled(enabled);
}

void CPageVersion::OnVersionsEdited(const QString& text)
{
    if (text.size() >= 3) {
        // Three digits can't be typed: the last good value comes back.
        m_versionsEdit->setText(QString::number(m_versions));
        return;
    }
    int number = text.toInt();
    if (number < 1) {
        number = 1;
        if (text != QLatin1String("1"))
            m_versionsEdit->setText(QStringLiteral("1"));
    }
    m_position = number;
    if (!m_loading)
        SetModified();
}

void CPageVersion::Step(int delta)
{
    // The value shown is the position before the step, and the step goes ahead: the
    // number runs one click behind the arrows, as it always has.
    m_versions = m_position;
    m_versionsEdit->setText(QString::number(m_versions));
    m_position = std::clamp(m_position + delta, 1, 99);
    SetModified();
}

void CPageVersion::Browse()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Backup Folder"), m_locationEdit->text());
    if (!folder.isEmpty())
        m_locationEdit->setText(QDir::toNativeSeparators(folder));
}

bool CPageVersion::AskDeleteAll()
{
    return QMessageBox::question(this, tr("Backup Manager"), tr("Delete all file backups?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

void CPageVersion::DeleteFiles()
{
    if (AskDeleteAll())
        m_manager.DeleteAllVersions();
}

void CPageVersion::Apply()
{
    const int number = m_versionsEdit->text().toInt();
    m_versions = std::clamp(number, 1, 99);
    // Switching backups off wipes every version only when the user says so.
    const bool switchingOff = m_settings.Enabled && !m_enabled;
    const bool wipe = switchingOff && AskDeleteAll();

    m_settings.Enabled = m_enabled;
    m_settings.DeleteOnExit = m_deleteOnExit;
    m_settings.Versions = m_versions;
    m_location = QDir::fromNativeSeparators(m_locationEdit->text().trimmed());
    if (m_enabled && !m_location.isEmpty() && !QDir(m_location).exists())
        QDir().mkpath(m_location);
    if (!m_location.isEmpty())
        m_settings.BackupFolder = m_location;
    m_manager.ApplySettingsToAll();
    if (wipe)
        m_manager.DeleteAllVersions();
    m_modified = false;
}
