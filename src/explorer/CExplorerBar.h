#pragma once

#include <QDockWidget>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QWidget>

class IExplorerPage;
class IShell;

class QMenu;
class QTabWidget;
class QToolBar;
class QVBoxLayout;

// The docked explorer bar: the explorer pages as tabs, above them the active page's tool
// strip. Pages come from the shell (IShell::AddExplorerPage) whenever their subsystem
// installs itself, before or after the bar exists. Each page kind (ExplorerPageKind) has
// a flag; the pages shown, their order and the active one are kept in the settings
// section "ExplorerBar". A page turned on comes first; with every page off the bar hides.
class CExplorerBar : public QWidget
{
    Q_OBJECT
public:
    // Makes the bar and its dock, adds the pages the shell already holds and listens for
    // more. Reads the "ExplorerBar" section.
    explicit CExplorerBar(IShell& shell, QWidget* parent = nullptr);
    ~CExplorerBar() override;

    QDockWidget* Dock() const { return m_dock; }

    void AddPage(IExplorerPage* page);
    IExplorerPage* Page(int kind) const { return m_pages.value(kind); }
    // Lays in the pages whose flag is on, in the kept order, and activates the kept page.
    void BuildPages();
    // The active page's kind; CodeLibrary's kind for no page or an unknown one.
    int PageKind() const;
    IExplorerPage* ActivePage() const;
    // Shows the active page's tools (or none, with no room kept for them) and the caption.
    void UpdatePageTools();

    bool IsPageOn(int kind) const { return m_flags.value(kind, false); }
    // The page toggles: on puts the page first and activates it; off removes it.
    void SetPageOn(int kind, bool on);
    void TogglePage(int kind) { SetPageOn(kind, !(IsPageOn(kind) && IsBarVisible())); }
    // Brings the page forward, turning it on when it is off.
    void ShowPage(int kind);
    // The bar as a whole: showing turns every page on, hiding turns them all off.
    void SetBarVisible(bool visible);
    bool IsBarVisible() const;
    // Kinds of the pages shown, in tab order.
    QList<int> PageOrder() const { return m_order; }

    void LoadSettings();
    void SaveSettings() const;

    // The bar's context menu: the four page toggles.
    QMenu* ContextMenu();
    QToolBar* ToolStrip(int kind) const { return m_strips.value(kind); }

Q_SIGNALS:
    void activePageChanged(int kind);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QToolBar* StripFor(IExplorerPage* page);
    void UpdateVisibility();
    void OnCurrentTabChanged(int index);

    IShell& m_shell;
    QPointer<QDockWidget> m_dock;
    QVBoxLayout* m_layout;
    QTabWidget* m_tabs;
    QMenu* m_contextMenu = nullptr;
    QHash<int, IExplorerPage*> m_pages;
    QHash<int, QToolBar*> m_strips;
    QHash<int, bool> m_flags;
    QList<int> m_order;
    int m_activeKind = -1;
    bool m_building = false;
};
