#include "FindReplaceSettings.h"

#include "settings/CRegistryStore.h"

#include <QByteArray>
#include <QString>
#include <QWidget>

namespace {

const QString Section = QStringLiteral("FindReplace");

bool ReadFlag(const CRegistryStore& store, const QString& name)
{
    return store.GetProfileInt(Section, name, 0) != 0;
}

void WriteFlag(CRegistryStore& store, const QString& name, bool value)
{
    store.WriteProfileInt(Section, name, value ? 1 : 0);
}

} // namespace

FindReplaceSettings FindReplaceSettings::Load()
{
    const CRegistryStore store;
    FindReplaceSettings settings;
    settings.matchCase = ReadFlag(store, QStringLiteral("MatchCase"));
    settings.matchWord = ReadFlag(store, QStringLiteral("MatchWord"));
    settings.regExp = ReadFlag(store, QStringLiteral("RegExp"));
    settings.searchUp = ReadFlag(store, QStringLiteral("SearchUp"));
    settings.wrapAround = ReadFlag(store, QStringLiteral("WrapAround"));
    settings.selection = ReadFlag(store, QStringLiteral("Selection"));
    return settings;
}

void FindReplaceSettings::SaveFind() const
{
    CRegistryStore store;
    WriteFlag(store, QStringLiteral("MatchCase"), matchCase);
    WriteFlag(store, QStringLiteral("MatchWord"), matchWord);
    WriteFlag(store, QStringLiteral("RegExp"), regExp);
    WriteFlag(store, QStringLiteral("SearchUp"), searchUp);
    WriteFlag(store, QStringLiteral("WrapAround"), wrapAround);
}

void FindReplaceSettings::SaveReplace() const
{
    CRegistryStore store;
    WriteFlag(store, QStringLiteral("MatchCase"), matchCase);
    WriteFlag(store, QStringLiteral("MatchWord"), matchWord);
    WriteFlag(store, QStringLiteral("RegExp"), regExp);
    WriteFlag(store, QStringLiteral("Selection"), selection);
}

namespace DialogPlacement {

void Restore(QWidget* dialog, const QString& name)
{
    const QString value = CRegistryStore().GetProfileString(name, QStringLiteral("Placement"));
    if (!value.isEmpty())
        dialog->restoreGeometry(QByteArray::fromBase64(value.toLatin1()));
}

void Save(const QWidget* dialog, const QString& name)
{
    CRegistryStore().WriteProfileString(name, QStringLiteral("Placement"),
                                        QString::fromLatin1(dialog->saveGeometry().toBase64()));
}

} // namespace DialogPlacement
