#include "usertools/CToolResultsModel.h"

#include <QBrush>
#include <QGuiApplication>
#include <QPalette>

CToolResultsModel::CToolResultsModel(QObject* parent)
    : QAbstractListModel(parent)
{
    m_directories << QString();
}

void CToolResultsModel::SetLimit(int lines)
{
    m_limit = qMax(1, lines);
    if (qsizetype(m_lines.size()) > m_limit) {
        beginResetModel();
        const qsizetype excess = qsizetype(m_lines.size()) - m_limit;
        m_lines.erase(m_lines.begin(), m_lines.begin() + excess);
        m_dropped += excess;
        m_noticeShown = true;
        endResetModel();
    }
}

void CToolResultsModel::SetBaseDirectory(const QString& directory)
{
    if (m_directories.last() != directory)
        m_directories << directory;
}

void CToolResultsModel::AppendLines(const QStringList& lines, Kind kind)
{
    if (lines.isEmpty())
        return;
    qsizetype skip = 0;
    // A batch larger than the whole page keeps only its own tail.
    if (lines.size() > m_limit) {
        skip = lines.size() - m_limit;
    }
    const qsizetype incoming = lines.size() - skip;
    const qsizetype overflow = qsizetype(m_lines.size()) + incoming - m_limit;
    if (overflow > 0) {
        const int first = FirstLineRow();
        beginRemoveRows({}, first, first + int(overflow) - 1);
        m_lines.erase(m_lines.begin(), m_lines.begin() + overflow);
        endRemoveRows();
        // The notice changes after the removal, so views see one change at a time.
        m_dropped += overflow;
        ShowNotice();
    }
    if (skip > 0) {
        m_dropped += skip;
        ShowNotice();
    }
    const int at = FirstLineRow() + int(m_lines.size());
    beginInsertRows({}, at, at + int(incoming) - 1);
    const int directory = int(m_directories.size()) - 1;
    for (qsizetype i = skip; i < lines.size(); ++i)
        m_lines.push_back(Line{lines.at(i), directory, kind});
    endInsertRows();
}

void CToolResultsModel::ShowNotice()
{
    if (m_noticeShown) {
        Q_EMIT dataChanged(index(0), index(0));
        return;
    }
    beginInsertRows({}, 0, 0);
    m_noticeShown = true;
    endInsertRows();
}

void CToolResultsModel::SetPartialLine(const QString& text)
{
    const int row = FirstLineRow() + int(m_lines.size());
    if (m_partial.isEmpty() && !text.isEmpty()) {
        beginInsertRows({}, row, row);
        m_partial = text;
        endInsertRows();
    } else if (!m_partial.isEmpty() && text.isEmpty()) {
        beginRemoveRows({}, row, row);
        m_partial.clear();
        endRemoveRows();
    } else if (m_partial != text) {
        m_partial = text;
        Q_EMIT dataChanged(index(row), index(row));
    }
}

void CToolResultsModel::Clear()
{
    beginResetModel();
    m_lines.clear();
    m_partial.clear();
    m_dropped = 0;
    m_noticeShown = false;
    m_directories = QStringList{m_directories.last()};
    endResetModel();
}

int CToolResultsModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid())
        return 0;
    return FirstLineRow() + int(m_lines.size()) + (m_partial.isEmpty() ? 0 : 1);
}

const CToolResultsModel::Line* CToolResultsModel::LineAt(int row) const
{
    const int at = row - FirstLineRow();
    if (at < 0 || at >= int(m_lines.size()))
        return nullptr;
    return &m_lines[size_t(at)];
}

QString CToolResultsModel::RowText(int row) const
{
    if (row < 0 || row >= rowCount())
        return {};
    if (m_noticeShown && row == 0)
        return tr("... %1 earlier lines were dropped: the page keeps the last %2 lines")
            .arg(m_dropped)
            .arg(m_limit);
    if (const Line* line = LineAt(row))
        return line->text;
    return m_partial;
}

bool CToolResultsModel::LinkAt(int row, OutputLink& link) const
{
    const Line* line = LineAt(row);
    if (!line || line->kind != Output || line->link == 0)
        return false;
    const bool found = OutputLinkParser::Parse(line->text, m_directories.value(line->directory), link, m_exists);
    line->link = found ? 1 : 0;
    return found;
}

QVariant CToolResultsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const int row = index.row();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return RowText(row);
    case KindRole: {
        const Line* line = LineAt(row);
        return int(line ? line->kind : (m_noticeShown && row == 0 ? Notice : Output));
    }
    case LinkRole:
    case Qt::ForegroundRole: {
        const Line* line = LineAt(row);
        if (!line)
            return role == LinkRole ? QVariant(false) : QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText));
        if (line->kind != Output)
            return role == LinkRole ? QVariant(false) : QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText));
        if (line->link < 0) {
            OutputLink link;
            LinkAt(row, link);
        }
        if (role == LinkRole)
            return line->link == 1;
        return line->link == 1 ? QVariant(QGuiApplication::palette().brush(QPalette::Link)) : QVariant();
    }
    default:
        return {};
    }
}
