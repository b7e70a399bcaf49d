#pragma once

#include <QDialog>

class CBackupStore;
class QListWidget;
class QPushButton;

// "Document Backups": the file as it is on disk ("Current") and every kept version,
// newest first. Two rows chosen and "Compare" closes with both; one version and
// "Restore" closes asking to put that version into the editor.
class CBackupHistoryDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr quint32 CurrentRow = 0xFFFFFFFFu;
    static constexpr int RestoreResult = 2;

    CBackupHistoryDlg(const CBackupStore& store, QWidget* parent = nullptr);

    quint32 GetFirst() const { return m_first; }
    quint32 GetSecond() const { return m_second; }
    void SetRestoreAllowed(bool allowed);

    QListWidget* List() const { return m_list; }
    void accept() override;

private:
    void Restore();
    void UpdateButtons();

    quint32 m_first = CurrentRow;
    quint32 m_second = CurrentRow;
    QListWidget* m_list;
    QPushButton* m_restore;
    bool m_restoreAllowed = true;
};
