#pragma once

#include "RecoveryEntry.h"

#include <QDialog>
#include <QList>
#include <functional>

class QPushButton;
class QTreeWidget;

// Lists what an unclean end left behind (name, path, when, size) and lets the user
// recover or discard each entry, or recover them all.
class CRecoveryDialog : public QDialog
{
    Q_OBJECT
public:
    CRecoveryDialog(const QList<RecoveryEntry>& entries, QWidget* parent = nullptr);

    void SetRecover(std::function<bool(const RecoveryEntry&)> recover) { m_recover = std::move(recover); }
    void SetDiscard(std::function<void(const RecoveryEntry&)> discard) { m_discard = std::move(discard); }

    // Entries still listed (neither recovered nor discarded).
    QList<RecoveryEntry> Remaining() const { return m_entries; }
    QTreeWidget* List() const { return m_list; }
    QPushButton* RecoverButton() const { return m_recoverButton; }
    QPushButton* DiscardButton() const { return m_discardButton; }
    QPushButton* RecoverAllButton() const { return m_recoverAllButton; }

private:
    void Fill();
    void RecoverSelected();
    void DiscardSelected();
    void RecoverAll();
    void UpdateButtons();
    QList<int> SelectedRows() const;

    QList<RecoveryEntry> m_entries;
    QTreeWidget* m_list;
    QPushButton* m_recoverButton;
    QPushButton* m_discardButton;
    QPushButton* m_recoverAllButton;
    std::function<bool(const RecoveryEntry&)> m_recover;
    std::function<void(const RecoveryEntry&)> m_discard;
};
