#pragma once

#include <QComboBox>
#include <QString>
#include <QStringList>
#include <QVariant>

// An editable combo box that remembers what was entered, in a section of the settings
// store: values "0", "1", ... newest first, and `Selected`, the chosen row. No entry
// appears twice and at most MaxEntries are kept.
//
// Fixed rows (such as file filters) may stand above the history; they are never stored
// and never pushed out.
//
// A new entry moves all the others, so the section is written whole, once, when the
// event loop is next idle: a burst of changes costs one write.
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
    // Writes the history rows and the current row to the store when the event loop is
    // next idle.
    void saveHistory() const;
    // Writes a save that is still waiting, now.
    void waitForSaved() const;
    // Puts `text` at the top of the history (removing an older copy), trims the list to
    // MaxEntries, selects it, and saves. Empty text and texts of fixed rows are ignored.
    void addToHistory(const QString& text);

    QStringList history() const;

    // Rows above the history, shown as `text` and carrying `data`.
    void addFixedItem(const QString& text, const QVariant& data);
    int fixedCount() const { return m_fixedCount; }

private:
    void WriteHistory() const;

    mutable bool m_savePending = false;
    QString m_section;
    int m_fixedCount = 0;
};
