#include "CHexDocument.h"

#include "framework/CChildFrame.h"
#include "framework/CDocTemplate.h"
#include "framework/IStatusSink.h"
#include "framework/OpenOptions.h"

#include <QApplication>
#include <QGuiApplication>
#include <QTimer>
#include <utility>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {
const QString kReadOnlyMark = QStringLiteral(" [Read Only]");
}

CHexDocument::CHexDocument(QObject* parent)
    : CDocument(parent)
{
    // Another program's changes show when the user comes back from it.
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(app, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                QTimer::singleShot(0, this, &CHexDocument::CheckDiskChange);
        });
    }
}

CHexDocument::~CHexDocument() = default;

void CHexDocument::SetReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
    if (!m_strTitle.isEmpty())
        SetTitle(m_strTitle);
}

bool CHexDocument::OnNewDocument()
{
    m_table.Reset();
    if (!CDocument::OnNewDocument())
        return false;
    Q_EMIT contentChanged(-1);
    return true;
}

bool CHexDocument::OnOpenDocument(const QString& path)
{
    if (const CDocTemplate* docTemplate = GetDocTemplate()) {
        if (const OpenOptions* options = docTemplate->GetOpenOptions())
            m_readOnly = options->readOnly;
    }
    QString error;
    if (!m_table.Open(path, &error)) {
        ShowMessage(QMessageBox::Warning,
                    tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(path), error));
        return false;
    }
    m_diskStamp = FileStamp::Of(path);
    m_declinedStamp = FileStamp();
    SetModifiedFlag(false);
    Q_EMIT contentChanged(-1);
    Q_EMIT loaded(path);
    return true;
}

bool CHexDocument::Reload()
{
    if (m_strPathName.isEmpty())
        return false;
    QString error;
    if (!m_table.Open(m_strPathName, &error)) {
        ShowMessage(QMessageBox::Warning,
                    tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(m_strPathName), error));
        return false;
    }
    m_diskStamp = FileStamp::Of(m_strPathName);
    m_declinedStamp = FileStamp();
    SetModifiedFlag(false);
    Q_EMIT contentChanged(-1);
    return true;
}

void CHexDocument::CheckDiskChange()
{
    if (m_checkingDisk || m_strPathName.isEmpty() || !m_diskStamp.IsValid())
        return;
    FileStamp now;
    const FileStamp::Change change = m_diskStamp.Unasked(m_strPathName, m_declinedStamp, now);
    if (change == FileStamp::Change::None)
        return;
    // A question box activates the program again when it closes: ask once.
    m_checkingDisk = true;
    const QString name = QDir::toNativeSeparators(m_strPathName);
    if (change == FileStamp::Change::Deleted) {
        const bool keep = Ask(QMessageBox::Warning,
                              tr("\"%1\" has been deleted by another program. Keep it open in the editor?").arg(name),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes)
                          == QMessageBox::Yes;
        m_checkingDisk = false;
        if (keep) {
            // The bytes we hold are now the only copy: closing asks to save them.
            m_diskStamp = FileStamp();
            if (!m_readOnly)
                SetModifiedFlag(true);
        } else {
            SetModifiedFlag(false);
            const auto frames = GetFrames();
            for (CChildFrame* frame : frames)
                frame->close();
        }
        return;
    }
    // Reloading would throw away edits of our own: then No is the safe default.
    const bool reload = Ask(QMessageBox::Question,
                            tr("\"%1\" has been changed by another program. Reload it?").arg(name),
                            QMessageBox::Yes | QMessageBox::No, IsModified() ? QMessageBox::No : QMessageBox::Yes)
                        == QMessageBox::Yes;
    m_checkingDisk = false;
    if (reload)
        Reload();
    else
        m_declinedStamp = now; // asked again only at the next change; a save still asks
}

bool CHexDocument::MayOverwrite(const QString& path)
{
    if (path != m_strPathName || m_diskStamp.Compare(path) != FileStamp::Change::Modified)
        return true;
    const bool wasChecking = std::exchange(m_checkingDisk, true);
    const bool overwrite =
        Ask(QMessageBox::Warning,
            tr("\"%1\" has been changed by another program since it was read. "
               "Overwrite it with this document?")
                .arg(QDir::toNativeSeparators(path)),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
    m_checkingDisk = wasChecking;
    return overwrite;
}

void CHexDocument::SetTitle(const QString& title)
{
    QString text = title;
    if (m_readOnly) {
        // The modified mark never shows on a read-only document.
        if (!text.contains(QLatin1String("[Read Only]")))
            text += kReadOnlyMark;
    } else {
        if (text.endsWith(QLatin1Char('*')))
            text.chop(1);
        if (text.endsWith(kReadOnlyMark))
            text.chop(kReadOnlyMark.size());
        if (IsModified())
            text += QLatin1Char('*');
    }
    CDocument::SetTitle(text);
}

void CHexDocument::SetModifiedFlag(bool modified)
{
    CDocument::SetModifiedFlag(modified);
    SetTitle(m_strTitle);
}

void CHexDocument::AfterEdit(qint64 offset)
{
    SetModifiedFlag(m_table.IsModified());
    Q_EMIT contentChanged(offset);
}

bool CHexDocument::Insert(qint64 offset, const QByteArray& bytes, bool merge)
{
    return Replace(offset, 0, bytes, merge);
}

bool CHexDocument::Overwrite(qint64 offset, const QByteArray& bytes, bool merge)
{
    if (m_readOnly || !m_table.Overwrite(offset, bytes, merge))
        return false;
    AfterEdit(offset);
    return true;
}

bool CHexDocument::Replace(qint64 offset, qint64 removeLength, const QByteArray& bytes, bool merge)
{
    if (m_readOnly || !m_table.Replace(offset, removeLength, bytes, merge))
        return false;
    AfterEdit(offset);
    return true;
}

bool CHexDocument::Remove(qint64 offset, qint64 length)
{
    return Replace(offset, length, QByteArray());
}

bool CHexDocument::Undo(qint64* where)
{
    qint64 at = -1;
    if (m_readOnly || !m_table.Undo(&at))
        return false;
    if (where)
        *where = at;
    AfterEdit(at);
    return true;
}

bool CHexDocument::Redo(qint64* where)
{
    qint64 at = -1;
    if (m_readOnly || !m_table.Redo(&at))
        return false;
    if (where)
        *where = at;
    AfterEdit(at);
    return true;
}

bool CHexDocument::DoSave(const QString& path, bool replace)
{
    QString target = path;
    const bool saveAs = target.isEmpty();
    if (saveAs) {
        target = AskSaveAsPath();
        if (target.isEmpty())
            return false;
    }
    // A read-only document is never changed, so the file it shows already holds it;
    // it is written elsewhere only by Save As.
    if (m_readOnly && !saveAs && replace)
        return true;
    if (!MayOverwrite(target))
        return false;
    Q_EMIT aboutToSave(target);
    IProgressSink* sink = GetDocTemplate() ? GetDocTemplate()->GetProgressSink() : nullptr;
    CPieceTable::Progress progress;
    if (sink) {
        sink->StartProgress(m_table.Size());
        progress = [sink](qint64 written) { sink->SetProgress(written); };
    }
    QString error;
    const bool written = m_table.Save(target, replace || saveAs, &error, progress);
    if (sink)
        sink->StopProgress();
    if (!written) {
        ShowMessage(QMessageBox::Warning,
                    tr("Failed to create a new file when saving the current document"));
        return false;
    }
    if (replace || saveAs)
        SetPathName(target, true);
    if (target == m_strPathName) {
        m_diskStamp = FileStamp::Of(target);
        m_declinedStamp = FileStamp();
    }
    SetModifiedFlag(false);
    Q_EMIT contentChanged(-1);
    Q_EMIT saved(target);
    return true;
}

void CHexDocument::ShowMessage(QMessageBox::Icon icon, const QString& text)
{
    QMessageBox box(icon, QApplication::applicationDisplayName(), text, QMessageBox::Ok,
                    QApplication::activeWindow());
    box.exec();
}

QMessageBox::StandardButton CHexDocument::Ask(QMessageBox::Icon icon, const QString& text,
                                              QMessageBox::StandardButtons buttons,
                                              QMessageBox::StandardButton byDefault)
{
    QMessageBox box(icon, QApplication::applicationDisplayName(), text, buttons, QApplication::activeWindow());
    box.setDefaultButton(byDefault);
    return QMessageBox::StandardButton(box.exec());
}

QString CHexDocument::AskSaveAsPath()
{
    const QString start = m_strPathName.isEmpty() ? PlainTitle()
                                                  : m_strPathName;
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), tr("Save As"), start,
                                        tr("All Files (*)"));
}
