#pragma once

#include <QObject>
#include <QStringList>

class IShell;
class QToolBar;

// The user's side of the toolbars: toolbars of their own, each toolbar's buttons as a
// list of command ids, and how buttons present themselves (large icons, tooltips,
// keys in tooltips). Kept in the settings section "ToolBars"; the bars' places are in
// "Control Bar State" with the rest of the window.
class CToolBarCustomiser : public QObject
{
    Q_OBJECT
public:
    explicit CToolBarCustomiser(IShell& shell, QObject* parent = nullptr);
    ~CToolBarCustomiser() override;

    // Makes the user's own toolbars (empty), early, so the window can put them back in
    // their places; their buttons and every stored layout come with Apply.
    void CreateUserToolBars();
    // Applies the stored layouts (once every subsystem has added its buttons).
    void ApplyStoredLayouts();
    void Save() const;

    // A new empty toolbar of the user's; returns its id.
    QString CreateToolBar(const QString& title);
    bool IsUserToolBar(const QString& toolBarId) const { return m_userToolBars.contains(toolBarId); }
    void DeleteToolBar(const QString& toolBarId);
    void RenameToolBar(const QString& toolBarId, const QString& title);
    void SetCommands(const QString& toolBarId, const QList<int>& ids);
    // Declared toolbars get their subsystems' buttons back; a user's toolbar is emptied.
    void ResetToolBar(const QString& toolBarId);
    void ResetAll();

    bool LargeIcons() const;
    void SetLargeIcons(bool large);
    bool ShowToolTips() const { return m_showToolTips; }
    void SetShowToolTips(bool show);
    bool ShowKeysInToolTips() const { return m_keysInToolTips; }
    void SetShowKeysInToolTips(bool show);

    // Stored text of a layout ("57600,57601,0,57603") and back; unknown words are skipped.
    static QString LayoutText(const QList<int>& ids);
    static QList<int> ParseLayout(const QString& text);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void ApplyPresentation();
    void ApplyPresentation(QToolBar* bar);
    void UpdateToolTips();

    IShell& m_shell;
    QStringList m_userToolBars;
    bool m_showToolTips = true;
    bool m_keysInToolTips = true;
};
