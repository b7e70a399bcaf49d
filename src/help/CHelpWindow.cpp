#include "CHelpWindow.h"

#include "HelpLocator.h"

#include <QHelpContentWidget>
#include <QHelpContentModel>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QHelpSearchQueryWidget>
#include <QHelpSearchResultWidget>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QVBoxLayout>

CHelpBrowser::CHelpBrowser(QHelpEngine* engine, QWidget* parent) : QTextBrowser(parent), m_engine(engine)
{
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        if (url.scheme() == QLatin1String("qthelp") || url.isRelative())
            setSource(url.isRelative() ? source().resolved(url) : url);
        else
            QDesktopServices::openUrl(url);
    });
}

QVariant CHelpBrowser::loadResource(int type, const QUrl& name)
{
    if (name.scheme() == QLatin1String("qthelp"))
        return m_engine->fileData(name);
    return QTextBrowser::loadResource(type, name);
}

CHelpWindow::CHelpWindow(const QString& collection, QWidget* parent)
    : QWidget(parent, Qt::Window), m_engine(new QHelpEngine(collection, this)),
      m_browser(new CHelpBrowser(m_engine, this)), m_tabs(new QTabWidget(this))
{
    setWindowTitle(tr("Morvane Help"));
    setObjectName(QStringLiteral("HelpWindow"));
    resize(900, 640);
    m_engine->setReadOnly(false);
    m_valid = !collection.isEmpty() && m_engine->setupData()
              && m_engine->registeredDocumentations().contains(QLatin1String(HelpLocator::Namespace));

    // Contents.
    QHelpContentWidget* contents = m_engine->contentWidget();
    connect(contents, &QHelpContentWidget::linkActivated, m_browser, [this](const QUrl& url) { m_browser->setSource(url); });
    m_tabs->addTab(contents, tr("&Contents"));
    connect(m_engine->contentModel(), &QHelpContentModel::contentsCreated, contents, [contents] {
        contents->expandToDepth(0);
    });

    // Index with a filter line.
    auto* indexPage = new QWidget(m_tabs);
    auto* indexLayout = new QVBoxLayout(indexPage);
    auto* filter = new QLineEdit(indexPage);
    filter->setObjectName(QStringLiteral("HelpIndexFilter"));
    filter->setPlaceholderText(tr("Look for"));
    QHelpIndexWidget* index = m_engine->indexWidget();
    connect(filter, &QLineEdit::textChanged, index, [index](const QString& text) { index->filterIndices(text); });
    connect(filter, &QLineEdit::returnPressed, index, &QHelpIndexWidget::activateCurrentItem);
    connect(index, &QHelpIndexWidget::documentActivated, m_browser,
            [this](const QHelpLink& link) { m_browser->setSource(link.url); });
    connect(index, &QHelpIndexWidget::documentsActivated, m_browser, [this](const QList<QHelpLink>& links) {
        if (!links.isEmpty())
            m_browser->setSource(links.front().url);
    });
    indexLayout->addWidget(filter);
    indexLayout->addWidget(index);
    m_tabs->addTab(indexPage, tr("&Index"));

    // Full-text search; the index is built in the background the first time.
    QHelpSearchEngine* search = m_engine->searchEngine();
    auto* searchPage = new QWidget(m_tabs);
    auto* searchLayout = new QVBoxLayout(searchPage);
    searchLayout->addWidget(search->queryWidget());
    searchLayout->addWidget(search->resultWidget());
    connect(search->queryWidget(), &QHelpSearchQueryWidget::search, search,
            [search] { search->search(search->queryWidget()->searchInput()); });
    connect(search->resultWidget(), &QHelpSearchResultWidget::requestShowLink, m_browser,
            [this](const QUrl& url) { m_browser->setSource(url); });
    m_tabs->addTab(searchPage, tr("&Search"));
    if (m_valid)
        search->scheduleIndexDocumentation();

    auto* splitter = new QSplitter(this);
    splitter->addWidget(m_tabs);
    splitter->addWidget(m_browser);
    splitter->setStretchFactor(1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    if (!m_valid) {
        auto* missing = new QLabel(tr("The help pages could not be found. They are built with the program "
                                      "(qhelpgenerator) and installed beside it."), this);
        missing->setWordWrap(true);
        missing->setMargin(8);
        layout->addWidget(missing);
    }
    layout->addWidget(splitter);
    if (m_valid)
        ShowPage(QStringLiteral("index.html"));
}

void CHelpWindow::ShowPage(const QString& page)
{
    const QUrl url(HelpLocator::PageUrl(page));
    m_browser->setSource(url);
    if (QHelpContentWidget* contents = m_engine->contentWidget()) {
        const QModelIndex found = contents->indexOf(url);
        if (found.isValid())
            contents->setCurrentIndex(found);
    }
}

void CHelpWindow::ShowTab(Tab tab)
{
    m_tabs->setCurrentIndex(int(tab));
}
