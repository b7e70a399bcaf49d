#include "usertools/CToolBarCustomiser.h"

#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>
#include <QToolBar>

namespace {
const QString kSection = QStringLiteral("ToolBars");
const QString kTitlePrefix = QStringLiteral("Title.");
const QString kLayoutPrefix = QStringLiteral("Layout.");
const QString kUserPrefix = QStringLiteral("User");
} // namespace

CToolBarCustomiser::CToolBarCustomiser(IShell& shell, QObject* parent)
    : QObject(parent)
    , m_shell(shell)
{
    CRegistryStore store;
    m_showToolTips = store.GetProfileInt(kSection, QStringLiteral("ShowToolTips"), 1) != 0;
    m_keysInToolTips = store.GetProfileInt(kSection, QStringLiteral("ShowKeysInToolTips"), 1) != 0;
    CCommandRegistry& commands = m_shell.Commands();
    connect(&commands, &CCommandRegistry::shortcutChanged, this, &CToolBarCustomiser::UpdateToolTips);
    connect(&commands, &CCommandRegistry::commandRegistered, this, &CToolBarCustomiser::UpdateToolTips);
    // Tooltips go to the buttons, which toolbars make themselves: watch them all here.
    if (QCoreApplication* app = QCoreApplication::instance())
        app->installEventFilter(this);
}

CToolBarCustomiser::~CToolBarCustomiser() = default;

QString CToolBarCustomiser::LayoutText(const QList<int>& ids)
{
    QStringList words;
    for (const int id : ids)
        words << QString::number(id);
    return words.join(QLatin1Char(','));
}

QList<int> CToolBarCustomiser::ParseLayout(const QString& text)
{
    QList<int> ids;
    const auto words = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& word : words) {
        bool ok = false;
        const int id = word.trimmed().toInt(&ok);
        if (ok && id >= 0)
            ids << id;
    }
    return ids;
}

void CToolBarCustomiser::CreateUserToolBars()
{
    const QMap<QString, QVariant> values = CRegistryStore().ReadSection(kSection);
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!it.key().startsWith(kTitlePrefix))
            continue;
        const QString id = it.key().mid(kTitlePrefix.size());
        if (!id.startsWith(kUserPrefix) || m_shell.Menus().ToolBar(id))
            continue;
        m_shell.Menus().DeclareToolBar(id, it.value().toString(), {MenuGroup::Default});
        m_userToolBars << id;
    }
    ApplyPresentation();
}

void CToolBarCustomiser::ApplyStoredLayouts()
{
    const QMap<QString, QVariant> values = CRegistryStore().ReadSection(kSection);
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (!it.key().startsWith(kLayoutPrefix))
            continue;
        const QString id = it.key().mid(kLayoutPrefix.size());
        if (m_shell.Menus().ToolBar(id))
            m_shell.Menus().SetToolBarCommands(id, ParseLayout(it.value().toString()));
    }
    ApplyPresentation();
    UpdateToolTips();
}

void CToolBarCustomiser::Save() const
{
    CRegistryStore::Values values;
    values.append({QStringLiteral("ShowToolTips"), m_showToolTips ? 1 : 0});
    values.append({QStringLiteral("ShowKeysInToolTips"), m_keysInToolTips ? 1 : 0});
    const CMenuPlaces& menus = m_shell.Menus();
    for (const QString& id : m_userToolBars) {
        if (const QToolBar* bar = menus.ToolBar(id))
            values.append({kTitlePrefix + id, bar->windowTitle()});
    }
    for (const QString& id : menus.ToolBarIds()) {
        if (menus.IsToolBarCustomised(id))
            values.append({kLayoutPrefix + id, LayoutText(menus.ToolBarCommands(id))});
    }
    CRegistryStore().ReplaceSection(kSection, values);
}

QString CToolBarCustomiser::CreateToolBar(const QString& title)
{
    int number = 1;
    while (m_shell.Menus().ToolBar(kUserPrefix + QString::number(number)))
        ++number;
    const QString id = kUserPrefix + QString::number(number);
    QToolBar* bar = m_shell.Menus().DeclareToolBar(id, title, {MenuGroup::Default});
    m_userToolBars << id;
    // An empty layout, so that it is stored even before it gets a button.
    m_shell.Menus().SetToolBarCommands(id, {});
    ApplyPresentation(bar);
    bar->show();
    return id;
}

void CToolBarCustomiser::DeleteToolBar(const QString& toolBarId)
{
    if (!IsUserToolBar(toolBarId))
        return;
    m_shell.Menus().RemoveToolBar(toolBarId);
    m_userToolBars.removeAll(toolBarId);
}

void CToolBarCustomiser::RenameToolBar(const QString& toolBarId, const QString& title)
{
    if (QToolBar* bar = m_shell.Menus().ToolBar(toolBarId); bar && IsUserToolBar(toolBarId)
        && !title.trimmed().isEmpty())
        bar->setWindowTitle(title.trimmed());
}

void CToolBarCustomiser::SetCommands(const QString& toolBarId, const QList<int>& ids)
{
    m_shell.Menus().SetToolBarCommands(toolBarId, ids);
}

void CToolBarCustomiser::ResetToolBar(const QString& toolBarId)
{
    if (IsUserToolBar(toolBarId))
        m_shell.Menus().SetToolBarCommands(toolBarId, {});
    else
        m_shell.Menus().ResetToolBar(toolBarId);
}

void CToolBarCustomiser::ResetAll()
{
    for (const QString& id : QStringList(m_userToolBars))
        DeleteToolBar(id);
    for (const QString& id : m_shell.Menus().ToolBarIds())
        m_shell.Menus().ResetToolBar(id);
    m_showToolTips = m_keysInToolTips = true;
    SetLargeIcons(true);
    UpdateToolTips();
}

bool CToolBarCustomiser::LargeIcons() const
{
    return m_shell.Settings().view.LargeTBIcons != 0;
}

void CToolBarCustomiser::SetLargeIcons(bool large)
{
    m_shell.Settings().view.LargeTBIcons = large ? 1 : 0;
    ApplyPresentation();
}

void CToolBarCustomiser::SetShowToolTips(bool show)
{
    m_showToolTips = show;
}

void CToolBarCustomiser::SetShowKeysInToolTips(bool show)
{
    m_keysInToolTips = show;
    UpdateToolTips();
}

void CToolBarCustomiser::ApplyPresentation()
{
    for (const QString& id : m_shell.Menus().ToolBarIds())
        ApplyPresentation(m_shell.Menus().ToolBar(id));
}

void CToolBarCustomiser::ApplyPresentation(QToolBar* bar)
{
    if (!bar)
        return;
    // Large is a little under the themes' 22 pixels, so that the standard bar fits 1000 pixels.
    const int size = LargeIcons() ? 20 : 16;
    bar->setIconSize(QSize(size, size));
}

void CToolBarCustomiser::UpdateToolTips()
{
    CCommandRegistry& commands = m_shell.Commands();
    for (const int id : commands.Ids()) {
        QAction* action = commands.Action(id);
        const CommandInfo* cmd = commands.Info(id);
        if (!action || !cmd)
            continue;
        QString tip = cmd->toolTip.isEmpty() ? commands.PlainText(id) : cmd->toolTip;
        if (tip.endsWith(QStringLiteral("...")))
            tip.chop(3);
        const QKeySequence key = action->shortcut();
        if (m_keysInToolTips && !key.isEmpty())
            tip += QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText));
        action->setToolTip(tip);
    }
}

bool CToolBarCustomiser::eventFilter(QObject* watched, QEvent* event)
{
    // Tooltips off: the toolbars' buttons keep them to themselves.
    if (event->type() == QEvent::ToolTip && !m_showToolTips && watched->parent()
        && qobject_cast<QToolBar*>(watched->parent()))
        return true;
    return QObject::eventFilter(watched, event);
}
