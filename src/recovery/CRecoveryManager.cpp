#include "CRecoveryManager.h"

#include <cstring>

#include "CRecoveryDialog.h"
#include "CTextSnapshot.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "framework/OpenOptions.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <Qsci/qsciscintillabase.h>
#include <QFile>
#include <QFileInfo>
#include <QMainWindow>
#include <QTimer>
#include <cstring>

CRecoveryManager::CRecoveryManager(IShell& shell, const QString& root, QObject* parent)
    : QObject(parent), m_shell(shell), m_store(root)
{
    m_store.Claim();
}

CRecoveryManager::~CRecoveryManager() = default;

void CRecoveryManager::SetDelays(int idleMs, int maxMs)
{
    m_idleMs = idleMs;
    m_maxMs = maxMs;
    for (const auto& tracker : std::as_const(m_trackers)) {
        tracker->idle->setInterval(idleMs);
        tracker->longest->setInterval(maxMs);
    }
}

QByteArray CRecoveryManager::SnapshotText(CMFCScintilla& editor)
{
    // Copied from where the text lies, either side of the control's gap: closing the gap
    // first would move everything behind it, now and again at the next key.
    const auto [before, after] = editor.TextPieces();
    QByteArray text(qsizetype(before.size() + after.size()), Qt::Uninitialized);
    if (!before.empty())
        std::memcpy(text.data(), before.data(), before.size());
    if (!after.empty())
        std::memcpy(text.data() + before.size(), after.data(), after.size());
    return text;
}

CRecoveryManager::Tracker* CRecoveryManager::TrackerOf(CDocument* document)
{
    const auto it = m_trackers.constFind(document);
    return it == m_trackers.constEnd() ? nullptr : it->get();
}

void CRecoveryManager::Watch(CDocument* document)
{
    auto* text = qobject_cast<CScrivelDoc*>(document);
    if (!text)
        return;
    if (Tracker* known = TrackerOf(document)) {
        AttachEditor(*known);
        return;
    }
    auto tracker = std::make_shared<Tracker>();
    tracker->document = text;
    tracker->id = QStringLiteral("doc%1").arg(m_nextId++);
    tracker->idle = new QTimer(this);
    tracker->idle->setSingleShot(true);
    tracker->idle->setInterval(m_idleMs);
    tracker->longest = new QTimer(this);
    tracker->longest->setSingleShot(true);
    tracker->longest->setInterval(m_maxMs);
    for (QTimer* timer : {tracker->idle, tracker->longest})
        connect(timer, &QTimer::timeout, this, [this, text] { BeginSnapshot(text); });
    connect(text, &CDocument::saved, this, [this, text] {
        if (Tracker* t = TrackerOf(text)) {
            StopCopying(*t);
            if (t->written)
                m_store.Remove(t->id);
            t->written = false;
        }
    });
    // Undo back to the saved text drops the copy too.
    connect(text, &CDocument::modifiedChanged, this, [this, text](bool modified) {
        if (Tracker* t = TrackerOf(text); t && !modified && t->written) {
            StopCopying(*t);
            m_store.Remove(t->id);
            t->written = false;
        }
    });
    connect(text, &CDocument::closing, this, [this, text] { Forget(text, true); });
    connect(text, &QObject::destroyed, this, [this, document] { Forget(document, true); });
    m_trackers.insert(document, tracker);
    AttachEditor(*tracker);
}

void CRecoveryManager::AttachEditor(Tracker& tracker)
{
    if (tracker.editor || !tracker.document)
        return;
    CMFCScintilla* editor = tracker.document->GetEditor();
    if (!editor)
        return;
    tracker.editor = editor;
    CScrivelDoc* document = tracker.document;
    connect(editor, &QsciScintillaBase::SCN_MODIFIED, this, [this, document](int, int type) {
        if (!(type & (QsciScintillaBase::SC_MOD_INSERTTEXT | QsciScintillaBase::SC_MOD_DELETETEXT)))
            return;
        if (Tracker* t = TrackerOf(document))
            OnTextChanged(*t);
    });
}

void CRecoveryManager::OnTextChanged(Tracker& tracker)
{
    tracker.idle->start();
    if (!tracker.longest->isActive())
        tracker.longest->start();
}

void CRecoveryManager::StopCopying(Tracker& tracker)
{
    tracker.idle->stop();
    tracker.longest->stop();
    if (tracker.snapshot)
        tracker.snapshot->Cancel();
}

void CRecoveryManager::SnapshotNow(CScrivelDoc* document)
{
    Tracker* tracker = TrackerOf(document);
    if (!tracker)
        return;
    StopCopying(*tracker);
    CMFCScintilla* editor = document->GetEditor();
    if (!document->IsModified() || !editor) {
        if (tracker->written)
            m_store.Remove(tracker->id);
        tracker->written = false;
        return;
    }
    WriteEntry(*tracker, SnapshotText(*editor));
}

void CRecoveryManager::BeginSnapshot(CScrivelDoc* document)
{
    Tracker* tracker = TrackerOf(document);
    CMFCScintilla* editor = document ? document->GetEditor() : nullptr;
    if (!tracker || !editor || !document->IsModified()
        || editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH) <= m_sliceBytes) {
        SnapshotNow(document);
        return;
    }
    tracker->idle->stop();
    tracker->longest->stop();
    if (!tracker->snapshot) {
        tracker->snapshot = new CTextSnapshot(*editor, this);
        connect(tracker->snapshot, &CTextSnapshot::finished, this, [this, document](const QByteArray& text) {
            Tracker* t = TrackerOf(document);
            if (t && document->IsModified())
                WriteEntry(*t, text);
        });
    }
    tracker->snapshot->SetSliceBytes(m_sliceBytes);
    tracker->snapshot->Start();
}

void CRecoveryManager::WriteEntry(Tracker& tracker, QByteArray text)
{
    CScrivelDoc* document = tracker.document;
    CMFCScintilla* editor = document ? document->GetEditor() : nullptr;
    if (!editor)
        return;
    RecoveryEntry entry;
    entry.id = tracker.id;
    entry.path = document->GetPathName();
    entry.title = document->GetTitle();
    if (entry.title.endsWith(QLatin1Char('*')))
        entry.title.chop(1);
    entry.encoding = document->Encoding;
    entry.writeMark = document->WriteMark;
    entry.lineEnding = editor->GetEOLMode();
    if (!document->GetFrames().isEmpty())
        if (auto* frame = qobject_cast<CScrivelFrame*>(document->GetFrames().first()))
            entry.parser = frame->GetParserIndex();
    entry.time = QDateTime::currentDateTimeUtc();
    entry.bytes = text.size();
    m_store.Write(entry, std::move(text));
    tracker.written = true;
}

void CRecoveryManager::Forget(CDocument* document, bool removeFiles)
{
    const auto it = m_trackers.find(document);
    if (it == m_trackers.end())
        return;
    const std::shared_ptr<Tracker> tracker = *it;
    m_trackers.erase(it);
    delete tracker->idle;
    delete tracker->longest;
    delete tracker->snapshot;
    if (removeFiles && tracker->written)
        m_store.Remove(tracker->id);
}

CDocument* CRecoveryManager::Recover(const RecoveryEntry& entry)
{
    QFile file(entry.textFile);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const QByteArray text = file.readAll();
    if (text.size() != entry.bytes)
        return nullptr;
    auto* document = qobject_cast<CScrivelDoc*>(m_shell.NewDocument(OpenOptions::Text));
    CMFCScintilla* editor = document ? document->GetEditor() : nullptr;
    if (!editor)
        return nullptr;
    editor->SendScintilla(QsciScintillaBase::SCI_CLEARALL);
    editor->SendScintilla(QsciScintillaBase::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()),
                          text.constData());
    editor->EmptyUndoBuffer();
    editor->SetEOLMode(entry.lineEnding);
    editor->GotoPos(0);
    document->LineEnding = entry.lineEnding;
    document->Encoding = entry.encoding;
    document->WriteMark = entry.writeMark;
    if (!entry.path.isEmpty()) {
        document->SetPathName(entry.path, false);
        if (entry.parser < 0)
            document->ApplyParserForExtension(QLatin1Char('.') + QFileInfo(entry.path).suffix());
    }
    if (entry.parser >= 0 && !document->GetFrames().isEmpty())
        if (auto* frame = qobject_cast<CScrivelFrame*>(document->GetFrames().first()))
            frame->SelectParser(entry.parser);
    document->SetModifiedFlag(true);
    Watch(document);
    // The recovered text is this instance's to keep safe from now on.
    SnapshotNow(document);
    CRecoveryStore::Discard(entry);
    return document;
}

void CRecoveryManager::OfferRecovery()
{
    QStringList notes;
    const QList<RecoveryEntry> entries = m_store.ListOrphans(&notes);
    for (const QString& note : notes)
        qWarning("%s", qPrintable(note));
    if (entries.isEmpty())
        return;
    CRecoveryDialog dialog(entries, m_shell.Window());
    dialog.SetRecover([this](const RecoveryEntry& entry) { return Recover(entry) != nullptr; });
    dialog.SetDiscard([](const RecoveryEntry& entry) { CRecoveryStore::Discard(entry); });
    dialog.exec();
}

void CRecoveryManager::ReleaseClean()
{
    for (const auto& tracker : std::as_const(m_trackers))
        StopCopying(*tracker);
    m_store.ReleaseClean();
}
