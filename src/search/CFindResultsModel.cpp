#include "CFindResultsModel.h"

#include <QDir>
#include <algorithm>

CFindResultsModel::CFindResultsModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int CFindResultsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_matches.size());
}

QString CFindResultsModel::formatMatch(const FindInFilesMatch& match)
{
    return QStringLiteral("%1(%2,%3): %4")
        .arg(QDir::toNativeSeparators(match.path))
        .arg(match.line)
        .arg(match.column)
        .arg(match.text);
}

QVariant CFindResultsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_matches.size())
        return QVariant();
    const FindInFilesMatch& m = m_matches[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return formatMatch(m);
    case Qt::ToolTipRole:
        return QDir::toNativeSeparators(m.path);
    case PathRole:
        return m.path;
    case LineRole:
        return m.line;
    case ColumnRole:
        return m.column;
    default:
        return QVariant();
    }
}

void CFindResultsModel::appendMatches(const QList<FindInFilesMatch>& matches)
{
    if (matches.isEmpty())
        return;
    for (const FindInFilesMatch& m : matches) {
        // Path, numbers and text; a tab may take up to eight columns.
        const int length = int(m.path.size() + m.text.size() + m.text.count(QLatin1Char('\t')) * 7) + 16;
        m_longest = std::max(m_longest, length);
    }
    const int first = int(m_matches.size());
    beginInsertRows(QModelIndex(), first, first + int(matches.size()) - 1);
    m_matches += matches;
    endInsertRows();
}

void CFindResultsModel::clear()
{
    beginResetModel();
    m_matches.clear();
    m_matches.squeeze();
    m_longest = 0;
    endResetModel();
}
