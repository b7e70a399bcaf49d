#pragma once

#include "usertools/OutputLink.h"

#include <QAbstractListModel>
#include <QStringList>

#include <deque>

// The lines of the "Tool Results" page. It keeps at most a fixed number of lines: the
// oldest go first, and a first row says how many went, so memory stays bounded
// however much a tool prints. A tool's unfinished last line (a progress counter) shows
// as the last row until the line ends.
class CToolResultsModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Kind : quint8 { Output, Status, Notice };
    enum Role { KindRole = Qt::UserRole + 1, LinkRole };
    static constexpr int DefaultLimit = 100000;

    explicit CToolResultsModel(QObject* parent = nullptr);

    void SetLimit(int lines);
    int Limit() const { return m_limit; }
    // Later lines resolve their file names against this folder (the running tool's).
    void SetBaseDirectory(const QString& directory);

    void AppendLines(const QStringList& lines, Kind kind = Output);
    void AppendLine(const QString& line, Kind kind) { AppendLines({line}, kind); }
    void SetPartialLine(const QString& text);
    void Clear();

    qint64 DroppedLines() const { return m_dropped; }
    // Rows hold the notice (when lines were dropped), the lines, then the partial line.
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QString RowText(int row) const;
    // The place a row names, when it is a link.
    bool LinkAt(int row, OutputLink& link) const;
    void SetExistsFunction(OutputLinkParser::ExistsFunction exists) { m_exists = std::move(exists); }

private:
    struct Line
    {
        QString text;
        int directory; // index into m_directories
        Kind kind;
        mutable qint8 link = -1; // unknown, no (0) or yes (1), found on first look
    };
    int FirstLineRow() const { return m_noticeShown ? 1 : 0; }
    void ShowNotice();
    const Line* LineAt(int row) const;

    std::deque<Line> m_lines;
    QStringList m_directories;
    QString m_partial;
    qint64 m_dropped = 0;
    bool m_noticeShown = false; // row 0 tells how many lines were dropped
    int m_limit = DefaultLimit;
    OutputLinkParser::ExistsFunction m_exists;
};
