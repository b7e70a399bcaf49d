#include "CFindInFilesRunner.h"

#include "CFindInFilesEngine.h"
#include "CFindResultsPage.h"

#include <QDir>

CFindInFilesRunner::CFindInFilesRunner(CFindResultsPage* page, QObject* parent)
    : QObject(parent)
    , m_engine(new CFindInFilesEngine(this))
    , m_page(page)
{
    connect(page, &CFindResultsPage::stopRequested, this, &CFindInFilesRunner::cancel);
    connect(m_engine, &CFindInFilesEngine::matchesFound, this, [this](const QList<FindInFilesMatch>& batch) {
        if (m_page)
            m_page->addMatches(batch);
    });
    connect(m_engine, &CFindInFilesEngine::progress, this, [this](qint64 searched, qint64 matched) {
        if (m_page)
            m_page->setSearchProgress(searched, matched);
    });
    connect(m_engine, &CFindInFilesEngine::finished, this, [this](const FindInFilesSummary& summary) {
        if (m_page)
            m_page->endSearch(summary);
        emit finished(summary);
    });
}

QString CFindInFilesRunner::describe(const FindInFilesOptions& options)
{
    QString patterns = options.patterns.trimmed();
    if (patterns.isEmpty())
        patterns = QStringLiteral("*.*");
    return tr("Find \"%1\" in %2 (%3)").arg(options.text, QDir::toNativeSeparators(options.folder), patterns);
}

bool CFindInFilesRunner::start(const FindInFilesOptions& options)
{
    if (!m_engine->start(options)) {
        if (m_page)
            m_page->showSearchError(m_engine->errorString());
        return false;
    }
    m_lastOptions = options;
    if (m_page)
        m_page->beginSearch(describe(options));
    return true;
}

void CFindInFilesRunner::cancel()
{
    m_engine->cancel();
}

bool CFindInFilesRunner::isRunning() const
{
    return m_engine->isRunning();
}
