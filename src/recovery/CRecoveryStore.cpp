#include "CRecoveryStore.h"

#include "editor/DiskSync.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QUuid>

#include <atomic>
#include <chrono>

namespace {

const QString kLockName = QStringLiteral("instance.lock");
const QString kMetaSuffix = QStringLiteral(".meta");

QString Tr(const char* text)
{
    return QCoreApplication::translate("CRecoveryStore", text);
}

// Only a dead owner makes a lock stale: a long edit session must never look abandoned.
constexpr std::chrono::hours kNeverStaleByAge{24 * 365};

QString FreshTextName(const QString& id)
{
    static std::atomic<quint64> counter{0};
    return QStringLiteral("%1.%2-%3.txt")
        .arg(id)
        .arg(QDateTime::currentMSecsSinceEpoch())
        .arg(counter.fetch_add(1));
}

QJsonObject ToJson(const RecoveryEntry& entry, const QString& textName)
{
    QJsonObject o;
    o[QStringLiteral("path")] = entry.path;
    o[QStringLiteral("title")] = entry.title;
    o[QStringLiteral("encoding")] = entry.encoding;
    o[QStringLiteral("mark")] = entry.writeMark;
    o[QStringLiteral("lineEnding")] = entry.lineEnding;
    o[QStringLiteral("parser")] = entry.parser;
    o[QStringLiteral("time")] = entry.time.toUTC().toString(Qt::ISODateWithMs);
    o[QStringLiteral("bytes")] = QString::number(entry.bytes);
    o[QStringLiteral("text")] = textName;
    return o;
}

bool SaveBytes(const QString& fileName, const QByteArray& bytes, QString* error)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    // A copy the disk never received must not replace the one it did.
    return CommitToDisk(file, error);
}

QString TextNameIn(const QString& metaFile)
{
    QFile file(metaFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("text")).toString();
}

} // namespace

CRecoveryStore::CRecoveryStore(const QString& root) : m_root(root)
{
    m_pool.setMaxThreadCount(1);
    m_pool.setExpiryTimeout(-1);
}

CRecoveryStore::~CRecoveryStore()
{
    m_pool.waitForDone();
}

bool CRecoveryStore::Claim()
{
    if (m_lock)
        return true;
    const QString folder = QDir(m_root).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces));
    if (!QDir().mkpath(folder))
        return false;
    auto lock = std::make_unique<QLockFile>(QDir(folder).filePath(kLockName));
    lock->setStaleLockTime(std::chrono::duration_cast<std::chrono::milliseconds>(kNeverStaleByAge));
    if (!lock->tryLock(0))
        return false;
    m_folder = folder;
    m_lock = std::move(lock);
    return true;
}

void CRecoveryStore::Write(const RecoveryEntry& entry, QByteArray utf8)
{
    if (m_folder.isEmpty())
        return;
    const QString folder = m_folder;
    m_pool.start([folder, entry, utf8 = std::move(utf8)] { WriteNow(folder, entry, utf8); });
}

void CRecoveryStore::Remove(const QString& id)
{
    if (m_folder.isEmpty())
        return;
    const QString folder = m_folder;
    m_pool.start([folder, id] { RemoveNow(folder, id); });
}

void CRecoveryStore::Flush()
{
    m_pool.waitForDone();
}

void CRecoveryStore::ReleaseClean()
{
    Flush();
    if (m_folder.isEmpty())
        return;
    m_lock->unlock();
    m_lock.reset();
    QDir(m_folder).removeRecursively();
    m_folder.clear();
}

bool CRecoveryStore::WriteNow(const QString& folder, const RecoveryEntry& entry,
                              const QByteArray& utf8, QString* error)
{
    const QDir dir(folder);
    const QString metaFile = dir.filePath(entry.id + kMetaSuffix);
    const QString oldText = TextNameIn(metaFile);
    const QString textName = FreshTextName(entry.id);
    if (!SaveBytes(dir.filePath(textName), utf8, error))
        return false;
    RecoveryEntry described = entry;
    described.bytes = utf8.size();
    if (!SaveBytes(metaFile, QJsonDocument(ToJson(described, textName)).toJson(), error)) {
        QFile::remove(dir.filePath(textName));
        return false;
    }
    if (!oldText.isEmpty() && oldText != textName)
        QFile::remove(dir.filePath(oldText));
    // Texts of this document that no description names any more: the old description
    // may have been unreadable, or an earlier run stopped between its steps.
    const QStringList texts = dir.entryList({entry.id + QStringLiteral(".*.txt")}, QDir::Files);
    for (const QString& stale : texts) {
        if (stale != textName)
            QFile::remove(dir.filePath(stale));
    }
    return true;
}

void CRecoveryStore::RemoveNow(const QString& folder, const QString& id)
{
    const QDir dir(folder);
    const QString metaFile = dir.filePath(id + kMetaSuffix);
    const QString text = TextNameIn(metaFile);
    QFile::remove(metaFile);
    if (!text.isEmpty())
        QFile::remove(dir.filePath(text));
}

QList<RecoveryEntry> CRecoveryStore::ReadFolder(const QString& folder, QStringList* notes)
{
    QList<RecoveryEntry> entries;
    const QDir dir(folder);
    const QStringList metas = dir.entryList({QStringLiteral("*") + kMetaSuffix}, QDir::Files, QDir::Name);
    for (const QString& metaName : metas) {
        const auto note = [&](const QString& why) {
            if (notes)
                notes->append(Tr("Skipped recovery entry %1: %2").arg(dir.filePath(metaName), why));
        };
        QFile file(dir.filePath(metaName));
        if (!file.open(QIODevice::ReadOnly)) {
            note(file.errorString());
            continue;
        }
        QJsonParseError parseError;
        const QJsonDocument json = QJsonDocument::fromJson(file.read(1 << 20), &parseError);
        if (!json.isObject()) {
            note(Tr("the description cannot be read (%1)").arg(parseError.errorString()));
            continue;
        }
        const QJsonObject o = json.object();
        RecoveryEntry entry;
        entry.id = metaName.chopped(kMetaSuffix.size());
        entry.path = o.value(QStringLiteral("path")).toString();
        entry.title = o.value(QStringLiteral("title")).toString();
        entry.encoding = o.value(QStringLiteral("encoding")).toInt();
        entry.writeMark = o.value(QStringLiteral("mark")).toBool();
        entry.lineEnding = o.value(QStringLiteral("lineEnding")).toInt();
        entry.parser = o.value(QStringLiteral("parser")).toInt(-1);
        entry.time = QDateTime::fromString(o.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
        bool sizeOk = false;
        entry.bytes = o.value(QStringLiteral("bytes")).toString().toLongLong(&sizeOk);
        entry.folder = folder;
        const QString textName = o.value(QStringLiteral("text")).toString();
        // The text must be a plain name inside this folder: never follow a path out of it.
        if (textName.isEmpty() || textName.contains(QLatin1Char('/')) || !sizeOk || entry.bytes < 0
            || !entry.time.isValid()) {
            note(Tr("the description is incomplete"));
            continue;
        }
        entry.textFile = dir.filePath(textName);
        const QFileInfo text(entry.textFile);
        if (!text.isFile()) {
            note(Tr("its text is missing"));
            continue;
        }
        if (text.size() != entry.bytes) {
            note(Tr("its text is %1 bytes, %2 expected").arg(text.size()).arg(entry.bytes));
            continue;
        }
        entries.append(entry);
    }
    return entries;
}

QList<RecoveryEntry> CRecoveryStore::ListOrphans(QStringList* notes) const
{
    QList<RecoveryEntry> entries;
    const QDir root(m_root);
    for (const QString& name : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString folder = root.filePath(name);
        if (QDir::cleanPath(folder) == QDir::cleanPath(m_folder))
            continue;
        QLockFile lock(QDir(folder).filePath(kLockName));
        lock.setStaleLockTime(std::chrono::duration_cast<std::chrono::milliseconds>(kNeverStaleByAge));
        // A folder still locked belongs to a running instance.
        if (!lock.tryLock(0))
            continue;
        lock.unlock();
        entries += ReadFolder(folder, notes);
    }
    return entries;
}

void CRecoveryStore::Discard(const RecoveryEntry& entry)
{
    RemoveNow(entry.folder, entry.id);
    const QDir dir(entry.folder);
    if (dir.entryList({QStringLiteral("*") + kMetaSuffix}, QDir::Files).isEmpty())
        QDir(entry.folder).removeRecursively();
}
