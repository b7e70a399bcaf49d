#include "settings/NavigationHistory.h"

void NavigationHistory::Add(QObject* view, long position)
{
    const Entry entry{view, position};
    const qsizetype existing = m_entries.indexOf(entry);
    if (existing >= 0) {
        if (existing != m_cursor)
            m_cursor = int(m_entries.size()) - 1;
        return;
    }
    m_entries.append(entry);
    while (m_entries.size() > MaxEntries)
        m_entries.removeFirst();
    m_cursor = int(m_entries.size()) - 1;
}

bool NavigationHistory::Back(Entry& entry)
{
    if (!CanGoBack())
        return false;
    // From one past the newest entry, the newest is the first step back.
    entry = m_entries.at(--m_cursor);
    return true;
}

bool NavigationHistory::Forward(Entry& entry)
{
    if (m_cursor >= int(m_entries.size()))
        return false;
    ++m_cursor;
    // Stepping past the newest entry is allowed and yields nothing.
    if (m_cursor >= int(m_entries.size()))
        return false;
    entry = m_entries.at(m_cursor);
    return true;
}

void NavigationHistory::RemoveView(const QObject* view)
{
    const qsizetype before = m_entries.size();
    m_entries.removeIf([view](const Entry& e) { return e.view.isNull() || e.view.data() == view; });
    if (before != m_entries.size())
        m_cursor = int(m_entries.size()) - 1;
}
