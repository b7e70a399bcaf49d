#pragma once

#include "FindInFilesTypes.h"

#include <QObject>
#include <QPointer>

class CFindInFilesEngine;
class CFindResultsPage;

// Runs one find in files at a time and shows it on the Find Results page:
// the matches as they arrive, the progress, the Stop button and the summary.
class CFindInFilesRunner : public QObject
{
    Q_OBJECT
public:
    explicit CFindInFilesRunner(CFindResultsPage* page, QObject* parent = nullptr);

    // Shows the page and starts; a search already running is stopped first. Returns
    // false when the options can't be searched, with the reason on the bar.
    bool start(const FindInFilesOptions& options);
    void cancel();
    bool isRunning() const;
    CFindInFilesEngine* engine() const { return m_engine; }

    static QString describe(const FindInFilesOptions& options);
    // The options of the run whose results the page shows.
    const FindInFilesOptions& lastOptions() const { return m_lastOptions; }

signals:
    void finished(const FindInFilesSummary& summary);

private:
    CFindInFilesEngine* m_engine;
    QPointer<CFindResultsPage> m_page;
    FindInFilesOptions m_lastOptions;
};
