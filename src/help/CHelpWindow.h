#pragma once

#include <QTextBrowser>
#include <QWidget>

class QHelpEngine;
class QTabWidget;

// Shows pages of the help collection.
class CHelpBrowser : public QTextBrowser
{
    Q_OBJECT
public:
    CHelpBrowser(QHelpEngine* engine, QWidget* parent);
    QVariant loadResource(int type, const QUrl& name) override;

private:
    QHelpEngine* m_engine;
};

// Morvane's own help: contents, index and full-text search beside the page.
class CHelpWindow : public QWidget
{
    Q_OBJECT
public:
    enum Tab { Contents, Index, Search };

    // `collection` is a .qhc file; the window says so when it can't be read.
    explicit CHelpWindow(const QString& collection, QWidget* parent = nullptr);

    bool IsValid() const { return m_valid; }
    void ShowPage(const QString& page);
    void ShowTab(Tab tab);
    QHelpEngine* Engine() const { return m_engine; }
    CHelpBrowser* Browser() const { return m_browser; }

private:
    QHelpEngine* m_engine;
    CHelpBrowser* m_browser;
    QTabWidget* m_tabs;
    bool m_valid = false;
};
