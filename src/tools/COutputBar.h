#pragma once

#include "search/FindInFilesTypes.h"

#include <QDockWidget>

class CFindResultsModel;
class QLabel;
class QListView;
class QModelIndex;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

// The docked "Output" window: the results of find in files on one page, the output of
// external tools on the other.
class COutputBar : public QDockWidget
{
    Q_OBJECT
public:
    enum Page { FindResultsPage = 0, ToolResultsPage = 1 };

    explicit COutputBar(QWidget* parent = nullptr);

    void showPage(Page page);
    Page currentPage() const;

    // Find Results: a search's life. beginSearch clears the list and shows the progress
    // line with the Stop button; endSearch puts the summary in its place.
    void beginSearch(const QString& description);
    void addMatches(const QList<FindInFilesMatch>& matches);
    void setSearchProgress(qint64 filesSearched, qint64 filesMatched);
    void endSearch(const FindInFilesSummary& summary);
    // A search that could not start: the reason in the status line, the list emptied.
    void showSearchError(const QString& message);
    void clearFindResults();

    QString findStatusText() const;
    bool isStopVisible() const;
    CFindResultsModel* findResultsModel() const { return m_model; }
    QListView* findResultsView() const { return m_results; }
    QPlainTextEdit* toolResultsView() const { return m_toolText; }

    static QString summaryText(const FindInFilesSummary& summary);

public slots:
    // Tool Results: text appended as it comes, kept read-only.
    void appendText(const QString& text);
    void clear();

signals:
    void openLocation(const QString& path, int line, int column);
    void stopRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void activateRow(const QModelIndex& index);

    QTabWidget* m_tabs;
    QLabel* m_status;
    QPushButton* m_stop;
    QListView* m_results;
    CFindResultsModel* m_model;
    QPlainTextEdit* m_toolText;
    QString m_description;
};
