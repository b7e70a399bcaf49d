#include "CHexDocument.h"

#include "framework/CDocTemplate.h"
#include "framework/IStatusSink.h"
#include "framework/OpenOptions.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {
const QString kReadOnlyMark = QStringLiteral(" [Read Only]");
}

CHexDocument::CHexDocument(QObject* parent)
    : CDocument(parent)
{
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
    SetModifiedFlag(false);
    Q_EMIT contentChanged(-1);
    Q_EMIT loaded(path);
    return true;
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

QString CHexDocument::AskSaveAsPath()
{
    const QString start = m_strPathName.isEmpty() ? GetTitle().remove(QLatin1Char('*'))
                                                  : m_strPathName;
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), tr("Save As"), start,
                                        tr("All Files (*)"));
}
