#include "framework/CDocument.h"

#include "framework/CChildFrame.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>

CDocument::CDocument(QObject* parent)
    : QObject(parent)
{
}

CDocument::~CDocument() = default;

void CDocument::SetPathName(const QString& path, bool addToRecent)
{
    m_strPathName = path;
    SetTitle(QFileInfo(path).fileName());
    Q_EMIT pathNameChanged(path, addToRecent);
}

QString CDocument::PlainTitle() const
{
    QString title = m_strTitle;
    if (title.endsWith(QLatin1Char('*')))
        title.chop(1);
    const QLatin1String readOnly(" [Read Only]");
    if (title.endsWith(readOnly))
        title.chop(readOnly.size());
    return title;
}

void CDocument::SetTitle(const QString& title)
{
    if (m_strTitle == title)
        return;
    m_strTitle = title;
    Q_EMIT titleChanged(m_strTitle);
}

void CDocument::SetModifiedFlag(bool modified)
{
    if (m_bModified == modified)
        return;
    m_bModified = modified;
    Q_EMIT modifiedChanged(modified);
}

bool CDocument::OnNewDocument()
{
    m_strPathName.clear();
    SetModifiedFlag(false);
    return true;
}

bool CDocument::OnOpenDocument(const QString& path)
{
    Q_UNUSED(path);
    SetModifiedFlag(false);
    return true;
}

void CDocument::OnCloseDocument()
{
    Q_EMIT closing();
}

bool CDocument::DoSave(const QString& path, bool replace)
{
    Q_UNUSED(path);
    Q_UNUSED(replace);
    return false;
}

bool CDocument::DoFileSave()
{
    // A file that may not be written goes through Save As, as does a new document.
    if (m_strPathName.isEmpty())
        return DoSave(QString());
    const QFileInfo info(m_strPathName);
    if (info.exists() && !info.isWritable())
        return DoSave(QString());
    return DoSave(m_strPathName);
}

bool CDocument::SaveModified()
{
    if (!IsModified())
        return true;
    QString name = m_strPathName.isEmpty() ? m_strTitle : QFileInfo(m_strPathName).fileName();
    if (name.endsWith(QLatin1Char('*')))
        name.chop(1);
    QWidget* parent = QApplication::activeWindow();
    const auto answer = QMessageBox::question(
        parent, QApplication::applicationDisplayName(),
        tr("Save changes to %1?").arg(name),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes);
    if (answer == QMessageBox::Cancel)
        return false;
    if (answer == QMessageBox::No)
        return true;
    return DoFileSave();
}

void CDocument::AddFrame(CChildFrame* frame)
{
    if (!m_frames.contains(frame))
        m_frames.append(frame);
}

void CDocument::RemoveFrame(CChildFrame* frame)
{
    m_frames.removeAll(frame);
}
