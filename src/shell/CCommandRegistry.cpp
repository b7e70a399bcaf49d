#include "CCommandRegistry.h"

#include "settings/CRegistryStore.h"

#include <QAction>
#include <QTimer>
#include <QWidget>

namespace {
const QString kShortcutsSection = QStringLiteral("Shortcuts");
}

CCommandRegistry::CCommandRegistry(QWidget* actionParent)
    : QObject(actionParent)
    , m_actionParent(actionParent)
{
}

CCommandRegistry::~CCommandRegistry() = default;

QAction* CCommandRegistry::Register(const CommandInfo& cmd)
{
    if (const auto it = m_commands.find(cmd.id); it != m_commands.end() && it->cmd.placeholder)
        return TakeOverPlaceholder(*it, cmd);
    if (cmd.id == 0 || m_commands.contains(cmd.id)) {
        qWarning("Command %d is registered twice", cmd.id);
        return nullptr;
    }
    auto* action = new QAction(cmd.text, m_actionParent);
    action->setData(cmd.id);
    ApplyLook(action, cmd);
    // Shortcuts must work wherever focus is inside the window, so the action lives on it.
    if (m_actionParent)
        m_actionParent->addAction(action);
    const int id = cmd.id;
    connect(action, &QAction::triggered, this, [this, id] { Execute(id); });
    m_commands.insert(id, Entry{cmd, action});
    m_order << id;
    Q_EMIT commandRegistered(id);
    RequestUpdate();
    return action;
}

void CCommandRegistry::ApplyLook(QAction* action, const CommandInfo& cmd)
{
    action->setCheckable(cmd.checkable);
    if (!cmd.toolTip.isEmpty())
        action->setToolTip(cmd.toolTip);
    QIcon icon = cmd.icon;
    if (icon.isNull() && !cmd.iconName.isEmpty())
        icon = QIcon::fromTheme(cmd.iconName);
    if (!icon.isNull())
        action->setIcon(icon);
    action->setShortcut(cmd.shortcut);
}

QAction* CCommandRegistry::TakeOverPlaceholder(Entry& entry, const CommandInfo& cmd)
{
    // The action stays, so that it keeps its places in the menus and toolbars.
    QAction* action = entry.action.data();
    entry.cmd = cmd;
    if (action) {
        action->setText(cmd.text);
        ApplyLook(action, cmd);
    }
    Q_EMIT commandRegistered(cmd.id);
    RequestUpdate();
    return action;
}

void CCommandRegistry::Unregister(int id)
{
    const auto it = m_commands.find(id);
    if (it == m_commands.end())
        return;
    delete it->action.data();
    m_commands.erase(it);
    m_order.removeAll(id);
    Q_EMIT commandUnregistered(id);
}

QAction* CCommandRegistry::Action(int id) const
{
    const auto it = m_commands.constFind(id);
    return it == m_commands.cend() ? nullptr : it->action.data();
}

const CommandInfo* CCommandRegistry::Info(int id) const
{
    const auto it = m_commands.constFind(id);
    return it == m_commands.cend() ? nullptr : &it->cmd;
}

QString CCommandRegistry::PlainText(int id) const
{
    const CommandInfo* cmd = Info(id);
    if (!cmd)
        return {};
    QString text = cmd->text.section(QLatin1Char('\t'), 0, 0);
    // "&&" is a literal ampersand; a single one marks the mnemonic.
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QStringLiteral("\x01"), QStringLiteral("&"));
    return text;
}

QKeySequence CCommandRegistry::DefaultShortcut(int id) const
{
    const CommandInfo* cmd = Info(id);
    return cmd ? cmd->shortcut : QKeySequence();
}

QKeySequence CCommandRegistry::Shortcut(int id) const
{
    const QAction* action = Action(id);
    return action ? action->shortcut() : QKeySequence();
}

void CCommandRegistry::SetShortcut(int id, const QKeySequence& shortcut)
{
    QAction* action = Action(id);
    if (!action || action->shortcut() == shortcut)
        return;
    action->setShortcut(shortcut);
    Q_EMIT shortcutChanged(id);
}

void CCommandRegistry::ResetShortcut(int id)
{
    SetShortcut(id, DefaultShortcut(id));
}

int CCommandRegistry::CommandForShortcut(const QKeySequence& shortcut) const
{
    if (shortcut.isEmpty())
        return 0;
    for (const int id : m_order) {
        if (const QAction* action = Action(id); action && action->shortcut() == shortcut)
            return id;
    }
    return 0;
}

void CCommandRegistry::LoadShortcuts()
{
    CRegistryStore store;
    for (const int id : std::as_const(m_order)) {
        const QString key = QString::number(id);
        if (!store.HasValue(kShortcutsSection, key))
            continue;
        SetShortcut(id, QKeySequence::fromString(store.GetProfileString(kShortcutsSection, key),
                                                 QKeySequence::PortableText));
    }
}

void CCommandRegistry::SaveShortcuts() const
{
    QList<QPair<QString, QVariant>> values;
    for (const int id : m_order) {
        const QKeySequence current = Shortcut(id);
        if (current != DefaultShortcut(id))
            values.append({QString::number(id), current.toString(QKeySequence::PortableText)});
    }
    CRegistryStore().ReplaceSection(kShortcutsSection, values);
}

void CCommandRegistry::SetActiveChildProvider(std::function<CChildFrame*()> provider)
{
    m_activeChild = std::move(provider);
}

void CCommandRegistry::Execute(int id)
{
    const auto it = m_commands.constFind(id);
    if (it == m_commands.cend())
        return;
    CChildFrame* child = m_activeChild ? m_activeChild() : nullptr;
    if (!(child && child->OnCmdMsg(id))) {
        // Copy: the handler may unregister its own command.
        if (const auto run = it->cmd.run)
            run();
    }
    Q_EMIT executed(id);
    RequestUpdate();
}

CCmdUI CCommandRegistry::State(int id) const
{
    CCmdUI ui;
    const auto it = m_commands.constFind(id);
    if (it == m_commands.cend()) {
        ui.enabled = false;
        return ui;
    }
    if (CChildFrame* child = m_activeChild ? m_activeChild() : nullptr)
        child->OnUpdateCmdUI(id, ui);
    if (!ui.handled) {
        if (it->cmd.update)
            it->cmd.update(ui);
        else if (!it->cmd.run)
            ui.enabled = false; // nobody carries it out now
    }
    return ui;
}

void CCommandRegistry::UpdateAll()
{
    m_updatePending = false;
    for (const int id : std::as_const(m_order)) {
        QAction* action = Action(id);
        if (!action)
            continue;
        const CCmdUI ui = State(id);
        action->setEnabled(ui.enabled);
        if (action->isCheckable())
            action->setChecked(ui.checked);
    }
}

void CCommandRegistry::RequestUpdate()
{
    if (m_updatePending)
        return;
    m_updatePending = true;
    QTimer::singleShot(0, this, &CCommandRegistry::UpdateAll);
}
