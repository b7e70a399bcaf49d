#pragma once

#include <QObject>
#include <QPalette>
#include <QString>

class IShell;

// View > Theme: light, dark, or whatever the desktop shows. The choice is kept in the
// settings and applied at once to the window, every dialog and every open view.
class CThemeManager : public QObject
{
    Q_OBJECT
public:
    enum Mode { Light = 0, Dark = 1, Desktop = 2 };

    explicit CThemeManager(IShell& shell);

    Mode GetMode() const { return m_mode; }
    void SetMode(Mode mode);
    // Whether the theme shown now is the dark one.
    bool IsDark() const { return m_dark; }

    static CThemeManager* Of(IShell& shell);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool DesktopIsDark() const;
    void Apply();
    void RefreshViews();

    IShell& m_shell;
    Mode m_mode = Desktop;
    bool m_dark = false;
    bool m_applying = false;
    // What the desktop gave the program before any theme was applied.
    QPalette m_desktopPalette;
    QString m_desktopStyle;
};

// Registers the theme commands and applies the remembered theme.
void InstallTheme(IShell& shell);
