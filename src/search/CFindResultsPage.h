#pragma once

#include "search/FindInFilesTypes.h"
#include "shell/IOutputPage.h"

#include <QWidget>

class CFindResultsModel;
class QLabel;
class QListView;
class QModelIndex;
class QPushButton;

// The "Find Results" page of the Output bar: a status line with the Stop button over
// the list of matches.
class CFindResultsPage : public QWidget, public IOutputPage
{
    Q_OBJECT
public:
    explicit CFindResultsPage(QWidget* parent = nullptr);

    // IOutputPage
    QString Title() const override { return tr("Find Results"); }
    QWidget* Widget() override { return this; }
    void Clear() override { clearFindResults(); }

    // A search's life. beginSearch clears the list and shows the progress line with the
    // Stop button; endSearch puts the summary in its place.
    void beginSearch(const QString& description);
    void addMatches(const QList<FindInFilesMatch>& matches);
    void setSearchProgress(qint64 filesSearched, qint64 filesMatched);
    void endSearch(const FindInFilesSummary& summary);
    // A search that could not start: the reason in the status line, the list emptied.
    void showSearchError(const QString& message);
    // The outcome of Replace in Files: one row per file, and a summary line.
    void reportReplacement(const QString& description, const QList<FindInFilesMatch>& rows);
    void clearFindResults();

    QString findStatusText() const;
    bool isStopVisible() const;
    CFindResultsModel* findResultsModel() const { return m_model; }
    QListView* findResultsView() const { return m_results; }

    static QString summaryText(const FindInFilesSummary& summary);

signals:
    void openLocation(const QString& path, int line, int column);
    void stopRequested();
    // A search began or failed: the page wants to be seen.
    void showRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void activateRow(const QModelIndex& index);

    QLabel* m_status;
    QPushButton* m_stop;
    QListView* m_results;
    CFindResultsModel* m_model;
    QString m_description;
};
