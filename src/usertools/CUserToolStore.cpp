#include "usertools/CUserToolStore.h"

#include "settings/CRegistryStore.h"

#include <QVariant>

namespace {
const QString kSection = QStringLiteral("Tools");
const QString kCount = QStringLiteral("Count");

QString GroupOf(int number)
{
    return kSection + QLatin1Char('\\') + QString::number(number);
}
} // namespace

QList<UserTool> CUserToolStore::Load()
{
    CRegistryStore store;
    QList<UserTool> tools;
    const int count = qBound(0, store.GetProfileInt(kSection, kCount, 0), UserTools::MaxTools);
    for (int number = 1; number <= count; ++number) {
        const QMap<QString, QVariant> values = store.ReadSection(GroupOf(number));
        auto text = [&](const char* name) { return values.value(QLatin1String(name)).toString(); };
        UserTool tool;
        tool.name = text("Name");
        tool.command = text("Command");
        // A group lost to a hand edit is skipped rather than shown as an empty tool.
        if (tool.name.isEmpty() && tool.command.isEmpty())
            continue;
        tool.arguments = text("Arguments");
        tool.initialDirectory = text("InitialDirectory");
        bool ok = false;
        tool.kind = values.value(QStringLiteral("Kind")).toInt(&ok);
        if (!ok || tool.kind < UserTool::OutputBar || tool.kind > UserTool::Launch)
            tool.kind = UserTool::OutputBar;
        tool.saveBeforeRun = values.value(QStringLiteral("SaveBeforeRun")).toInt() != 0;
        tool.shortcut = text("Shortcut");
        tools << tool;
    }
    return tools;
}

bool CUserToolStore::Save(const QList<UserTool>& tools)
{
    // One write for the whole list: groups of tools removed since the last save go too.
    const int count = int(qMin<qsizetype>(tools.size(), UserTools::MaxTools));
    QList<QPair<QString, CRegistryStore::Values>> groups;
    for (int i = 0; i < count; ++i) {
        const UserTool& tool = tools.at(i);
        groups.append({QString::number(i + 1),
                       {{QStringLiteral("Name"), tool.name},
                        {QStringLiteral("Command"), tool.command},
                        {QStringLiteral("Arguments"), tool.arguments},
                        {QStringLiteral("InitialDirectory"), tool.initialDirectory},
                        {QStringLiteral("Kind"), tool.kind},
                        {QStringLiteral("SaveBeforeRun"), tool.saveBeforeRun ? 1 : 0},
                        {QStringLiteral("Shortcut"), tool.shortcut}}});
    }
    return CRegistryStore().ReplaceSection(kSection, {{kCount, count}}, groups);
}
