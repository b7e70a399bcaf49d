#pragma once

#include "CRecoveryStore.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <memory>

class CDocument;
class CMFCScintilla;
class CScrivelDoc;
class CTextSnapshot;
class IShell;
class QTimer;

// Keeps a copy of every modified text document in the recovery folder: one second after
// typing pauses and at least every ten seconds while it goes on. The text is copied on
// the interface thread a slice at a time between events, and written on the store's
// worker thread.
class CRecoveryManager : public QObject
{
    Q_OBJECT
public:
    CRecoveryManager(IShell& shell, const QString& root, QObject* parent = nullptr);
    ~CRecoveryManager() override;

    CRecoveryStore& Store() { return m_store; }
    // The pause after typing and the longest time between copies while typing goes on.
    void SetDelays(int idleMs, int maxMs);

    // Starts watching a document; done for every document the shell announces.
    void Watch(CDocument* document);
    // Copies a document now (or removes its copy when it has no unsaved changes).
    void SnapshotNow(CScrivelDoc* document);
    // Starts copying a document between events; a short text is copied at once.
    void BeginSnapshot(CScrivelDoc* document);
    // Bytes copied per step of a copy between events.
    void SetSliceBytes(qsizetype bytes) { m_sliceBytes = bytes; }
    // Reopens an entry as a modified document; null when it cannot be read.
    CDocument* Recover(const RecoveryEntry& entry);
    // Shows what an unclean end left, if anything.
    void OfferRecovery();
    // The clean end: every copy of this instance goes.
    void ReleaseClean();

    // The control's text as UTF-8, copied from its buffer in one piece.
    static QByteArray SnapshotText(CMFCScintilla& editor);

private:
    struct Tracker
    {
        QPointer<CScrivelDoc> document;
        QPointer<CMFCScintilla> editor;
        QString id;
        QTimer* idle = nullptr;
        QTimer* longest = nullptr;
        CTextSnapshot* snapshot = nullptr;
        bool written = false;
    };

    Tracker* TrackerOf(CDocument* document);
    void AttachEditor(Tracker& tracker);
    void OnTextChanged(Tracker& tracker);
    void Forget(CDocument* document, bool removeFiles);
    void StopCopying(Tracker& tracker);
    void WriteEntry(Tracker& tracker, QByteArray text);

    IShell& m_shell;
    CRecoveryStore m_store;
    QHash<CDocument*, std::shared_ptr<Tracker>> m_trackers;
    int m_idleMs = 1000;
    int m_maxMs = 10000;
    int m_nextId = 1;
    qsizetype m_sliceBytes = qsizetype(4) << 20;
};
