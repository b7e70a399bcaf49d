#pragma once

#include "backup/BackupEntry.h"

#include <QString>
#include <functional>
#include <list>

struct MainFrameSettings;

// The saved versions of one document's file. Every version is a plain byte copy in a
// folder of its own for each source file, "<root>/<id>/<n>", with sequence numbers that
// count up and are never reused. Which folder belongs to which file, and the next number
// of each folder, are kept in the settings section "BackupFolders".
//
// The store reads the backup settings from the main frame's copy, never from the store
// of settings, so that a change applied in the Backup Manager reaches every document.
class CBackupStore
{
public:
    static const QString FoldersSection;  // "BackupFolders"
    static const QString SettingsSection; // "BackupSettings"

    explicit CBackupStore(const MainFrameSettings& settings);

    // Binds the store to a source file and reads its versions; nothing happens while
    // backups are off. Entries already in the list stay (a Save As keeps the old file's
    // versions in the count).
    void Attach(const QString& path);
    // Puts the file on disk at the source path aside before it is overwritten. False
    // when the copy failed; the failure has been reported and the list is unchanged.
    bool SaveVersion();

    bool IsActive() const;
    QString GetSourcePath() const { return m_source; }
    int GetCount() const { return int(m_entries.size()); }
    // The entry at `index`, counted from the oldest; index below GetCount().
    BackupEntry GetEntry(int index) const;
    QString GetFolder() const { return m_folder; }
    int GetFolderId() const { return m_folderId; }

    // Drops the oldest versions beyond the limit; with backups off, detaches.
    void ApplySettings();
    // Empties the list and detaches; the source path stays.
    void Reset();
    // Deletes this file's versions and its folder when the user asked for that at exit.
    void OnDocumentClose();
    // Deletes the versions of every file and forgets every folder.
    void DeleteAll();

    // Where a failed copy is reported; without one the failure is silent.
    using FailureHandler = std::function<void(const QString& message)>;
    void SetFailureHandler(FailureHandler handler) { m_onFailure = std::move(handler); }
    // "failed with error <code>: <the system's text>"
    static QString FailureMessage(int error, const QString& systemText);

    // "<parent>/<number>": the form of both folder and version names.
    static QString NumberedPath(const QString& parent, int number);
    // The time a version was made: its birth time where the file system keeps one,
    // else its modification time. -1 when the file can't be examined.
    static qint64 VersionTime(const QString& path);

private:
    void Load();

    const MainFrameSettings& m_settings;
    std::list<BackupEntry> m_entries;
    QString m_folder;
    QString m_source;
    int m_folderId = -1;
    FailureHandler m_onFailure;
};
