#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QVariant>
#include <QString>
#include <QtGlobal>

// The one door to the settings store. Made on the stack for one operation, over the
// user's or the machine's settings of "Brackwyn/Morvane". A section is a group; the
// section "" is the application's own level. Reads that fail give the default, writes
// that fail are reported by the return value only.
class CRegistryStore
{
public:
    enum Root { CurrentUser, LocalMachine };

    explicit CRegistryStore(Root root = CurrentUser);

    int GetProfileInt(const QString& section, const QString& name, int defaultValue) const;
    QString GetProfileString(const QString& section, const QString& name,
                             const QString& defaultValue = QString()) const;
    bool WriteProfileInt(const QString& section, const QString& name, int value);
    // A null name deletes the whole section, a null value deletes the value.
    bool WriteProfileString(const QString& section, const QString& name, const QString& value);

    // Colours are 0x00BBGGRR. The read says whether a value was there, so that the caller
    // can supply its default.
    bool GetProfileColor(const QString& section, const QString& name, quint32& colour) const;
    bool WriteProfileColor(const QString& section, const QString& name, quint32 colour);

    // Value name to kind (0 number, 1 text), in name order. Returns the number of values.
    int EnumValues(const QString& section, QMap<QString, int>& values) const;
    bool HasValue(const QString& section, const QString& name) const;
    // Every value of a section (names unescaped) in one read.
    QMap<QString, QVariant> ReadSection(const QString& section) const;

    // Makes the section hold exactly `values` (name, number or text) in one write.
    bool ReplaceSection(const QString& section, const QList<QPair<QString, QVariant>>& values);
    // The same with numbered or named subsections ("Tools\\1", "Tools\\2"), also in one
    // write, for lists of records that would be slow to write one section at a time.
    using Values = QList<QPair<QString, QVariant>>;
    bool ReplaceSection(const QString& section, const Values& values,
                        const QList<QPair<QString, Values>>& subsections);

    bool DeleteKey(const QString& section, const QString& subkey);
    bool DeleteValue(const QString& section, const QString& name);

    // Where the store keeps its data; for messages and tests.
    QString FileName() const;

    // Names may hold "/" and "\" (folder paths are names in some sections); the store
    // escapes them so that they stay one name.
    static QString EscapeName(const QString& name);
    static QString UnescapeName(const QString& name);

private:
    QString Key(const QString& section, const QString& name) const;
    Root m_root;
};
