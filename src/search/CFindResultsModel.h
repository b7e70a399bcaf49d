#pragma once

#include "search/FindInFilesTypes.h"

#include <QAbstractListModel>
#include <QVector>

// The rows of the Find Results page: one per match, shown as "path(line,column): text",
// with the line counted from 1 and the column from 0 as the status bar counts them. Rows
// come in batches, each one insert, so that a hundred thousand stay quick.
class CFindResultsModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, LineRole, ColumnRole };

    explicit CFindResultsModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    void appendMatches(const QList<FindInFilesMatch>& matches);
    void clear();
    const FindInFilesMatch& match(int row) const { return m_matches[row]; }
    // Characters in the longest row shown, tabs counted as a tab stop's width.
    int longestRow() const { return m_longest; }

    static QString formatMatch(const FindInFilesMatch& match);

private:
    QVector<FindInFilesMatch> m_matches;
    int m_longest = 0;
};
