#include "CThemeManager.h"

#include "ThemePalette.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "framework/CommandIds.h"
#include "framework/ThemeColours.h"
#include "properties/ViewRefresh.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "syntax/SyntaxApplier.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QStyleHints>
#include <QWidget>

namespace {

const QString kSection = QStringLiteral("Theme");
const QString kValue = QStringLiteral("Theme");
const QString kThemeMenu = QStringLiteral("View.Theme");

QString Tr(const char* text)
{
    return QCoreApplication::translate("Theme", text);
}

} // namespace

CThemeManager::CThemeManager(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
    , m_desktopPalette(QApplication::palette())
    , m_desktopStyle(QApplication::style() ? QApplication::style()->name() : QString())
{
    setObjectName(QStringLiteral("ThemeManager"));
    const int stored = CRegistryStore().GetProfileInt(kSection, kValue, Desktop);
    m_mode = stored >= Light && stored <= Desktop ? Mode(stored) : Desktop;
    connect(&shell.Events(), &CShellEvents::saveSettings, this,
            [this] { CRegistryStore().WriteProfileInt(kSection, kValue, int(m_mode)); });
    // A view made later reads the theme when it is set up; the open ones are redone here.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this, [this] {
        if (m_mode == Desktop)
            Apply();
    });
#endif
    qApp->installEventFilter(this);
    Apply();
}

CThemeManager* CThemeManager::Of(IShell& shell)
{
    return shell.Window()->findChild<CThemeManager*>(QStringLiteral("ThemeManager"), Qt::FindDirectChildrenOnly);
}

void CThemeManager::SetMode(Mode mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    Apply();
}

bool CThemeManager::DesktopIsDark() const
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    switch (QGuiApplication::styleHints()->colorScheme()) {
    case Qt::ColorScheme::Dark:
        return true;
    case Qt::ColorScheme::Light:
        return false;
    default:
        break;
    }
#endif
    // Without a colour-scheme hint, the desktop's palette tells.
    return ThemePalette::IsDark(m_desktopPalette);
}

void CThemeManager::Apply()
{
    const bool dark = m_mode == Dark || (m_mode == Desktop && DesktopIsDark());
    m_applying = true;
    // The desktop's own look where it already is what was asked for; Fusion with our
    // palette where it is not.
    const bool useDesktop = ThemePalette::IsDark(m_desktopPalette) == dark;
    const QString style = useDesktop ? m_desktopStyle : QStringLiteral("Fusion");
    if (!style.isEmpty() && QApplication::style() && QApplication::style()->name().compare(style, Qt::CaseInsensitive))
        QApplication::setStyle(style);
    QApplication::setPalette(useDesktop ? m_desktopPalette : dark ? ThemePalette::Dark() : ThemePalette::Light());
    m_applying = false;
    const bool changed = dark != m_dark;
    m_dark = dark;
    if (changed)
        RefreshViews();
    m_shell.RequestCommandUpdate();
}

void CThemeManager::RefreshViews()
{
    // Text views take their colours again through their settings and parser; hex and
    // compare views, and every other window, repaint from the new palette themselves.
    const ThemeColours theme = ThemeColours::Current();
    for (CChildFrame* child : m_shell.ChildFrames()) {
        // A view without a definition keeps the control's plain styles: only the page
        // and the control's own parts change.
        auto* frame = qobject_cast<CScrivelFrame*>(child);
        if (!frame || frame->GetParserIndex() >= 0 || !frame->GetView())
            continue;
        QsciScintillaBase& control = *frame->GetView()->GetEditor();
        control.SendScintilla(QsciScintillaBase::SCI_STYLESETFORE, QsciScintillaBase::STYLE_DEFAULT, long(theme.Text()));
        control.SendScintilla(QsciScintillaBase::SCI_STYLESETBACK, QsciScintillaBase::STYLE_DEFAULT,
                              long(theme.Background()));
        control.SendScintilla(QsciScintillaBase::SCI_STYLECLEARALL);
        SyntaxApplier::ApplyTheme(control, theme);
    }
    ViewRefresh::ApplySettings(m_shell);
}

bool CThemeManager::eventFilter(QObject* watched, QEvent* event)
{
    // A desktop that changes its palette while we follow it (Qt before 6.5 has no
    // colour-scheme signal): take its new palette and bring the views along.
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && !m_applying && m_mode == Desktop) {
        m_desktopPalette = QApplication::palette();
        const bool dark = DesktopIsDark();
        if (dark != m_dark) {
            m_dark = dark;
            RefreshViews();
        }
    }
    return QObject::eventFilter(watched, event);
}

void InstallTheme(IShell& shell)
{
    auto* manager = CThemeManager::Of(shell);
    if (!manager)
        manager = new CThemeManager(shell);
    shell.Menus().DeclareMenu(kThemeMenu, Tr("&Theme"), {QString::fromLatin1(MenuGroup::Default)},
                              QString::fromLatin1(MenuId::View), QString::fromLatin1(MenuGroup::ViewFont));
    struct Command
    {
        int id;
        const char* text;
        CThemeManager::Mode mode;
    };
    const Command commands[] = {
        {Cmd::ViewThemeLight, QT_TRANSLATE_NOOP("Theme", "&Light"), CThemeManager::Light},
        {Cmd::ViewThemeDark, QT_TRANSLATE_NOOP("Theme", "&Dark"), CThemeManager::Dark},
        {Cmd::ViewThemeDesktop, QT_TRANSLATE_NOOP("Theme", "&Follow the Desktop"), CThemeManager::Desktop},
    };
    // One of the three is always chosen: they show as radio items.
    auto* group = new QActionGroup(manager);
    group->setExclusive(true);
    for (const Command& command : commands) {
        CommandInfo info;
        info.id = command.id;
        info.text = Tr(command.text);
        info.category = Tr("View");
        info.checkable = true;
        const CThemeManager::Mode mode = command.mode;
        info.run = [manager, mode] { manager->SetMode(mode); };
        info.update = [manager, mode](CCmdUI& ui) {
            ui.handled = true;
            ui.checked = manager->GetMode() == mode;
        };
        if (QAction* action = shell.Commands().Register(info))
            group->addAction(action);
        shell.Menus().AddCommand(kThemeMenu, QString::fromLatin1(MenuGroup::Default), command.id);
    }
}
