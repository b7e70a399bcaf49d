#pragma once

#include "shell/IPropertyPage.h"

#include <QWidget>

class CBackupManager;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QToolButton;
struct MainFrameSettings;

// "Backup Manager": backups on or off, where they go, how many versions each file
// keeps, whether a file's versions go when it closes, and deleting them all.
class CPageVersion : public QWidget, public IPropertyPage
{
    Q_OBJECT
public:
    CPageVersion(CBackupManager& manager, MainFrameSettings& settings, QWidget* parent = nullptr);

    QString Title() const override { return tr("Backup Manager"); }
    QWidget* Widget() override { return this; }
    void Apply() override;
    void Reset() override;
    bool IsModified() const override { return m_modified; }

    int m_deleteOnExit = 0;
    int m_enabled = 1;
    int m_versions = 1;
    QString m_location;

private:
    void SetControlsEnabled(bool enabled);
    void OnVersionsEdited(const QString& text);
    void Step(int delta);
    void Browse();
    void DeleteFiles();
    bool AskDeleteAll();
    void SetModified() { m_modified = true; }

    CBackupManager& m_manager;
    MainFrameSettings& m_settings;
    QCheckBox* m_enable;
    QGroupBox* m_properties;
    QLabel* m_locationLabel;
    QLineEdit* m_locationEdit;
    QToolButton* m_browse;
    QLabel* m_versionsLabel;
    QLineEdit* m_versionsEdit;
    QWidget* m_upDown;
    QLabel* m_deleteLabel;
    QCheckBox* m_delete;
    int m_position = 1;
    bool m_modified = false;
    bool m_loading = false;
};
