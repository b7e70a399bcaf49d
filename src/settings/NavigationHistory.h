#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

// Caret positions to go back and forward to: pairs of view and position, at most 20,
// no pair twice, the oldest dropped first.
//
// The cursor is the index of the entry the user stands on. After an add it stands on
// the newest entry; Back steps towards the oldest, Forward towards the newest and may
// step one past it (to Count()), which yields no entry.
class NavigationHistory
{
public:
    static constexpr int MaxEntries = 20;

    // A view that goes away turns its entries' pointer null rather than dangling.
    struct Entry
    {
        QPointer<QObject> view;
        long position = 0;
        bool operator==(const Entry& other) const
        {
            return view == other.view && position == other.position;
        }
    };

    // Records a position. A pair already stored is not stored again; when it is the one
    // the cursor stands on (the echo of a jump made by Back or Forward) the cursor stays,
    // otherwise the cursor moves to the newest entry.
    void Add(QObject* view, long position);
    // Steps back or forward; false (and no entry) when there is nowhere to go.
    bool Back(Entry& entry);
    bool Forward(Entry& entry);
    bool CanGoBack() const { return m_cursor > 0; }
    bool CanGoForward() const { return m_cursor + 1 < m_entries.size(); }
    // Forgets every position of a view that is going away, and of any already gone.
    void RemoveView(const QObject* view);

    int Count() const { return int(m_entries.size()); }
    int Cursor() const { return m_cursor; }
    const QList<Entry>& Entries() const { return m_entries; }

private:
    QList<Entry> m_entries;
    int m_cursor = -1;
};
