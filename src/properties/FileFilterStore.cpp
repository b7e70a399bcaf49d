#include "FileFilterStore.h"

#include "settings/CRegistryStore.h"

#include <QCoreApplication>
#include <QMap>
#include <QVariant>

#include <algorithm>

namespace FileFilterStore {

namespace {
const QString kSection = QStringLiteral("FileFilter");
// Machine filters the user deleted: ordinary users cannot remove them from the machine
// scope, so they are hidden for this user instead.
const QString kHidden = QStringLiteral("FileFilterHidden");

void ReadInto(const CRegistryStore& store, QMap<QString, QString>& filters)
{
    QMap<QString, int> names;
    store.EnumValues(kSection, names);
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        filters.insert(it.key(), store.GetProfileString(kSection, it.key()));
}
} // namespace

QList<Filter> Defaults()
{
    return {
        {QStringLiteral("C/C++ Files"), QStringLiteral("*.c;*.cpp;*.cc;*.cxx;*.h;*.hpp;*.hxx")},
        {QStringLiteral("C# Files"), QStringLiteral("*.cs")},
        {QStringLiteral("Java Files"), QStringLiteral("*.java")},
        {QStringLiteral("Python Files"), QStringLiteral("*.py;*.pyw")},
        {QStringLiteral("Web Files"), QStringLiteral("*.html;*.htm;*.css;*.js;*.ts")},
        {QStringLiteral("XML Files"), QStringLiteral("*.xml;*.xsl;*.config")},
        {QStringLiteral("Shell Scripts"), QStringLiteral("*.sh;*.bash")},
        {QStringLiteral("SQL Files"), QStringLiteral("*.sql")},
        {QStringLiteral("Text Files"), QStringLiteral("*.txt;*.log;*.md")},
    };
}

QList<Filter> Load()
{
    QMap<QString, QString> byPattern;
    const CRegistryStore machine(CRegistryStore::LocalMachine);
    ReadInto(machine, byPattern);
    CRegistryStore user;
    const int before = int(byPattern.size());
    QMap<QString, QString> own;
    ReadInto(user, own);
    // Seeded once: a user who deletes every filter keeps an empty list.
    if (before == 0 && own.isEmpty()
        && !user.GetProfileInt(QStringLiteral("Settings"), QStringLiteral("FileFiltersSeeded"), 0)) {
        Save(Defaults());
        user.WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("FileFiltersSeeded"), 1);
        ReadInto(user, own);
    }
    QMap<QString, int> hidden;
    user.EnumValues(kHidden, hidden);
    for (auto it = hidden.cbegin(); it != hidden.cend(); ++it)
        byPattern.remove(it.key());
    for (auto it = own.cbegin(); it != own.cend(); ++it)
        byPattern.insert(it.key(), it.value());
    QList<Filter> filters;
    for (auto it = byPattern.cbegin(); it != byPattern.cend(); ++it)
        filters.append({it.value(), it.key()});
    return filters;
}

bool Save(const QList<Filter>& filters)
{
    QList<QPair<QString, QVariant>> values;
    for (const Filter& filter : filters)
        values.append({filter.extension, filter.label});
    QMap<QString, QString> machine;
    ReadInto(CRegistryStore(CRegistryStore::LocalMachine), machine);
    QList<QPair<QString, QVariant>> hidden;
    for (auto it = machine.cbegin(); it != machine.cend(); ++it) {
        if (std::none_of(filters.cbegin(), filters.cend(),
                         [&](const Filter& filter) { return filter.extension == it.key(); }))
            hidden.append({it.key(), 1});
    }
    CRegistryStore user;
    return user.ReplaceSection(kSection, values) && user.ReplaceSection(kHidden, hidden);
}

QString FilterString(const QList<Filter>& filters)
{
    QString text;
    for (const Filter& filter : filters)
        text = QStringLiteral("%1%2 (%3)|%3|").arg(text, filter.label, filter.extension);
    return QStringLiteral("%1All Files (*.*)|*.*||").arg(text);
}

QStringList DialogFilters(const QList<Filter>& filters)
{
    QStringList list;
    for (const Filter& filter : filters) {
        QString patterns = filter.extension;
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        list << QStringLiteral("%1 (%2)").arg(filter.label.isEmpty() ? patterns : filter.label, patterns);
    }
    list << QCoreApplication::translate("FileFilterStore", "All Files (*)");
    return list;
}

} // namespace FileFilterStore
