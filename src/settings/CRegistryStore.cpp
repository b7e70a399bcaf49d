#include "settings/CRegistryStore.h"

#include <QSettings>

#include <memory>

namespace {

QSettings::Scope ScopeOf(CRegistryStore::Root root)
{
    return root == CRegistryStore::LocalMachine ? QSettings::SystemScope : QSettings::UserScope;
}

std::unique_ptr<QSettings> Open(CRegistryStore::Root root)
{
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, ScopeOf(root),
                                                QStringLiteral("Brackwyn"), QStringLiteral("Morvane"));
    // The user's store never shows the machine's values as its own.
    settings->setFallbacksEnabled(false);
    return settings;
}

QString SectionGroup(const QString& section)
{
    QString group;
    const auto parts = section.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (!group.isEmpty())
            group += QLatin1Char('/');
        group += CRegistryStore::EscapeName(part);
    }
    return group;
}

} // namespace

CRegistryStore::CRegistryStore(Root root)
    : m_root(root)
{
}

QString CRegistryStore::EscapeName(const QString& name)
{
    QString out;
    out.reserve(name.size());
    for (const QChar c : name) {
        switch (c.unicode()) {
        case '%': out += QStringLiteral("%25"); break;
        case '/': out += QStringLiteral("%2F"); break;
        case '\\': out += QStringLiteral("%5C"); break;
        default: out += c;
        }
    }
    return out;
}

QString CRegistryStore::UnescapeName(const QString& name)
{
    QString out;
    out.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i] == QLatin1Char('%') && i + 2 < name.size()) {
            const QStringView code = QStringView(name).mid(i + 1, 2);
            if (code == u"25") { out += QLatin1Char('%'); i += 2; continue; }
            if (code.compare(u"2F", Qt::CaseInsensitive) == 0) { out += QLatin1Char('/'); i += 2; continue; }
            if (code.compare(u"5C", Qt::CaseInsensitive) == 0) { out += QLatin1Char('\\'); i += 2; continue; }
        }
        out += name[i];
    }
    return out;
}

QString CRegistryStore::Key(const QString& section, const QString& name) const
{
    const QString group = SectionGroup(section);
    const QString value = EscapeName(name);
    if (group.isEmpty())
        return value;
    return group + QLatin1Char('/') + value;
}

int CRegistryStore::GetProfileInt(const QString& section, const QString& name,
                                  int defaultValue) const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    const QVariant value = settings.value(Key(section, name));
    if (!value.isValid())
        return defaultValue;
    bool ok = false;
    // Numbers are 32-bit; a colour such as 0xEED2C1 is stored as its unsigned value.
    const qlonglong number = value.toLongLong(&ok);
    if (!ok)
        return defaultValue;
    return static_cast<int>(static_cast<quint32>(number));
}

QString CRegistryStore::GetProfileString(const QString& section, const QString& name,
                                         const QString& defaultValue) const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    const QVariant value = settings.value(Key(section, name));
    if (!value.isValid())
        return defaultValue;
    return value.toString();
}

bool CRegistryStore::WriteProfileInt(const QString& section, const QString& name, int value)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    settings.setValue(Key(section, name), value);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool CRegistryStore::WriteProfileString(const QString& section, const QString& name,
                                        const QString& value)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    if (name.isNull())
        settings.remove(SectionGroup(section));
    else if (value.isNull())
        settings.remove(Key(section, name));
    else
        settings.setValue(Key(section, name), value);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool CRegistryStore::GetProfileColor(const QString& section, const QString& name,
                                     quint32& colour) const
{
    if (!HasValue(section, name))
        return false;
    colour = static_cast<quint32>(GetProfileInt(section, name, 0));
    return true;
}

bool CRegistryStore::WriteProfileColor(const QString& section, const QString& name,
                                       quint32 colour)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    settings.setValue(Key(section, name), static_cast<qulonglong>(colour));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

int CRegistryStore::EnumValues(const QString& section, QMap<QString, int>& values) const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    const QString group = SectionGroup(section);
    if (!group.isEmpty())
        settings.beginGroup(group);
    int count = 0;
    const auto keys = settings.childKeys();
    for (const QString& key : keys) {
        const QVariant value = settings.value(key);
        bool isNumber = false;
        value.toLongLong(&isNumber);
        values.insert(UnescapeName(key), isNumber ? 0 : 1);
        ++count;
    }
    return count;
}

QMap<QString, QVariant> CRegistryStore::ReadSection(const QString& section) const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    const QString group = SectionGroup(section);
    if (!group.isEmpty())
        settings.beginGroup(group);
    QMap<QString, QVariant> values;
    const auto keys = settings.childKeys();
    for (const QString& key : keys)
        values.insert(UnescapeName(key), settings.value(key));
    return values;
}

bool CRegistryStore::HasValue(const QString& section, const QString& name) const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    return settings.contains(Key(section, name));
}

bool CRegistryStore::ReplaceSection(const QString& section,
                                    const QList<QPair<QString, QVariant>>& values)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    const QString group = SectionGroup(section);
    if (group.isEmpty())
        return false; // never the whole application's settings
    settings.remove(group);
    for (const auto& [name, value] : values)
        settings.setValue(Key(section, name), value);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool CRegistryStore::ReplaceSection(const QString& section, const Values& values,
                                    const QList<QPair<QString, Values>>& subsections)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    const QString group = SectionGroup(section);
    if (group.isEmpty())
        return false;
    settings.remove(group);
    for (const auto& [name, value] : values)
        settings.setValue(Key(section, name), value);
    for (const auto& [subsection, subValues] : subsections) {
        const QString path = section + QLatin1Char('\\') + subsection;
        for (const auto& [name, value] : subValues)
            settings.setValue(Key(path, name), value);
    }
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool CRegistryStore::DeleteKey(const QString& section, const QString& subkey)
{
    QString path = section;
    if (!subkey.isEmpty())
        path = section.isEmpty() ? subkey : section + QLatin1Char('\\') + subkey;
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    settings.remove(SectionGroup(path));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

bool CRegistryStore::DeleteValue(const QString& section, const QString& name)
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    if (!settings.isWritable())
        return false;
    settings.remove(Key(section, name));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

QString CRegistryStore::FileName() const
{
    const auto store = Open(m_root);
    QSettings& settings = *store;
    return settings.fileName();
}
