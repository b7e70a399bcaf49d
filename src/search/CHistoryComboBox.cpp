#include "CHistoryComboBox.h"

#include "settings/CRegistryStore.h"

#include <QLineEdit>
#include <QSignalBlocker>
#include <QTimer>

namespace {

const QString SelectedName = QStringLiteral("Selected");

} // namespace

CHistoryComboBox::CHistoryComboBox(QWidget* parent)
    : QComboBox(parent)
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
    if (m_savePending)
        WriteHistory();
}

void CHistoryComboBox::WriteHistory() const
{
    m_savePending = false;
    if (m_section.isEmpty())
        return;
    QList<QPair<QString, QVariant>> values;
    const QStringList entries = history();
    for (int i = 0; i < entries.size(); ++i)
        values.append({QString::number(i), entries.at(i)});
    values.append({SelectedName, currentIndex()});
    CRegistryStore().ReplaceSection(m_section, values);
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
    if (m_section.isEmpty() || m_savePending)
        return;
    m_savePending = true;
    QTimer::singleShot(0, this, [this] {
        if (m_savePending)
            WriteHistory();
    });
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
