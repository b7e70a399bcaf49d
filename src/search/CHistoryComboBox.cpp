#include "CHistoryComboBox.h"

#include "app/CRegistryStore.h"

#include <QFuture>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QtConcurrent/QtConcurrentRun>
#include <mutex>
#include <optional>

namespace {

const QString SelectedName = QStringLiteral("Selected");

struct Snapshot
{
    QString section;
    QStringList entries;
    int selected = -1;
};

// Brings the section to `snapshot`, touching only the values that differ: reads are
// cheap, each write is flushed to disk.
void WriteSnapshot(const Snapshot& snapshot)
{
    CRegistryStore store;
    for (int i = 0; i < snapshot.entries.size(); ++i) {
        const QString name = QString::number(i);
        if (!store.HasValue(snapshot.section, name)
            || store.GetProfileString(snapshot.section, name) != snapshot.entries[i])
            store.WriteProfileString(snapshot.section, name, snapshot.entries[i]);
    }
    // Numbers past the end may be left from a longer list, or from a hand edit.
    QMap<QString, int> values;
    store.EnumValues(snapshot.section, values);
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        bool isNumber = false;
        const int index = it.key().toInt(&isNumber);
        if (isNumber && (index < 0 || index >= snapshot.entries.size()))
            store.DeleteValue(snapshot.section, it.key());
    }
    if (!store.HasValue(snapshot.section, SelectedName)
        || store.GetProfileInt(snapshot.section, SelectedName, -1) != snapshot.selected)
        store.WriteProfileInt(snapshot.section, SelectedName, snapshot.selected);
}

} // namespace

// The newest state waiting to be written, and the worker writing it. Shared with the
// worker, so that a box may go away while its last save finishes.
struct CHistoryComboBox::SaveQueue
{
    std::mutex mutex;
    std::optional<Snapshot> pending;
    bool running = false;
    QFuture<void> worker; // touched on the interface thread only

    static void Drain(const std::shared_ptr<SaveQueue>& queue)
    {
        for (;;) {
            Snapshot next;
            {
                std::lock_guard<std::mutex> lock(queue->mutex);
                if (!queue->pending) {
                    queue->running = false;
                    return;
                }
                next = std::move(*queue->pending);
                queue->pending.reset();
            }
            WriteSnapshot(next);
        }
    }
};

CHistoryComboBox::CHistoryComboBox(QWidget* parent)
    : QComboBox(parent)
    , m_saves(std::make_shared<SaveQueue>())
{
    setEditable(true);
    // We keep the order ourselves: Enter must not append or sort.
    setInsertPolicy(QComboBox::NoInsert);
    setMaxVisibleItems(20);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(30);
    if (QLineEdit* edit = lineEdit())
        edit->setClearButtonEnabled(false);
}

CHistoryComboBox::~CHistoryComboBox()
{
    waitForSaved();
}

void CHistoryComboBox::waitForSaved() const
{
    m_saves->worker.waitForFinished();
}

QStringList CHistoryComboBox::history() const
{
    QStringList entries;
    for (int i = m_fixedCount; i < count(); ++i)
        entries.append(itemText(i));
    return entries;
}

void CHistoryComboBox::addFixedItem(const QString& text, const QVariant& data)
{
    insertItem(m_fixedCount, text, data);
    ++m_fixedCount;
}

void CHistoryComboBox::loadHistory()
{
    const QSignalBlocker blocker(this);
    while (count() > m_fixedCount)
        removeItem(count() - 1);
    if (m_section.isEmpty())
        return;
    CRegistryStore store;
    QStringList seen;
    for (int i = 0; i < MaxEntries; ++i) {
        const QString name = QString::number(i);
        if (!store.HasValue(m_section, name))
            break;
        const QString entry = store.GetProfileString(m_section, name);
        // A store edited by hand may hold blanks or doubles: show each text once.
        if (entry.isEmpty() || seen.contains(entry))
            continue;
        seen.append(entry);
        addItem(entry);
    }
    const int selected = store.GetProfileInt(m_section, SelectedName, -1);
    if (selected >= 0 && selected < count()) {
        setCurrentIndex(selected);
    } else {
        setCurrentIndex(-1);
        setEditText(QString());
    }
}

void CHistoryComboBox::saveHistory() const
{
    if (m_section.isEmpty())
        return;
    Snapshot snapshot{m_section, history(), currentIndex()};
    std::lock_guard<std::mutex> lock(m_saves->mutex);
    m_saves->pending = std::move(snapshot);
    if (!m_saves->running) {
        m_saves->running = true;
        m_saves->worker = QtConcurrent::run([queue = m_saves] { SaveQueue::Drain(queue); });
    }
}

void CHistoryComboBox::addToHistory(const QString& text)
{
    if (text.isEmpty())
        return;
    for (int i = 0; i < m_fixedCount; ++i) {
        if (itemText(i) == text) {
            setCurrentIndex(i);
            saveHistory();
            return;
        }
    }
    {
        const QSignalBlocker blocker(this);
        for (int i = count() - 1; i >= m_fixedCount; --i) {
            if (itemText(i) == text)
                removeItem(i);
        }
        insertItem(m_fixedCount, text);
        while (count() - m_fixedCount > MaxEntries)
            removeItem(count() - 1);
        setCurrentIndex(m_fixedCount);
    }
    saveHistory();
}
