#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>

// An editable combo box that remembers what was entered, in a section of the settings
// store: values "0", "1", ... newest first, and `Selected`, the chosen row. No entry
// appears twice and at most MaxEntries are kept.
//
// Fixed rows (such as file filters) may stand above the history; they are never stored
// and never pushed out.
//
// Every write to the store is flushed to disk, and a new entry moves all the others, so
// saving is done on a worker thread: only the values that changed are written, a burst
// of saves collapses into one, and the box waits for its last save when destroyed.
class CHistoryComboBox : public QComboBox
{
    Q_OBJECT
public:
    static constexpr int MaxEntries = 50;

    explicit CHistoryComboBox(QWidget* parent = nullptr);
    ~CHistoryComboBox() override;

    void setHistorySection(const QString& section) { m_section = section; }
    QString historySection() const { return m_section; }

    // Replaces the history rows with the stored ones and selects the stored row, if any.
    // The edit text is left empty when nothing is selected.
    void loadHistory();
    // Writes the history rows and the current row to the store, in the background.
    void saveHistory() const;
    // Returns once the saves asked for so far are in the store.
    void waitForSaved() const;
    // Puts `text` at the top of the history (removing an older copy), trims the list to
    // MaxEntries, selects it, and saves. Empty text and texts of fixed rows are ignored.
    void addToHistory(const QString& text);

    QStringList history() const;

    // Rows above the history, shown as `text` and carrying `data`.
    void addFixedItem(const QString& text, const QVariant& data);
    int fixedCount() const { return m_fixedCount; }

private:
    struct SaveQueue;

    std::shared_ptr<SaveQueue> m_saves;
    QString m_section;
    int m_fixedCount = 0;
};
