#include "CWorkspace.h"

#include "editor/DiskSync.h"
#include "editor/ReadableFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {
QString Tr(const char* text)
{
    return QCoreApplication::translate("CWorkspace", text);
}

// Reads to the end or to `limit`, in pieces: QIODevice::read(limit) would set aside
// `limit` bytes first, whatever the file holds, and a file may grow while it is read.
QByteArray ReadAtMost(QFile& file, qint64 limit)
{
    QByteArray bytes;
    bytes.reserve(qsizetype(std::clamp<qint64>(file.size(), 0, limit)));
    char piece[64 * 1024];
    while (bytes.size() < limit) {
        const qint64 n = file.read(piece, std::min<qint64>(qint64(sizeof piece), limit - bytes.size()));
        if (n <= 0)
            break;
        bytes.append(piece, qsizetype(n));
    }
    return bytes;
}
} // namespace

CWorkspace::CWorkspace(QObject* parent)
    : QObject(parent)
{
    m_model.SetObserver(this);
}

CWorkspace::~CWorkspace()
{
    m_model.SetObserver(nullptr);
}

QString CWorkspace::NewFolderText()
{
    return Tr("New Folder");
}

void CWorkspace::NewWorkspace(const QString& path)
{
    m_path = path;
    if (m_open)
        CloseWorkspace();
    else
        m_model.Clear();
    m_title.clear();
    AddFolder(nullptr, QStringLiteral("Project"));
    m_open = true;
    SetModified(false);
}

bool CWorkspace::OpenWorkspace(const QString& path)
{
    if (path.isEmpty())
        return false;
    // Everything is read and checked before the open workspace is touched, so that a
    // later save can never overwrite a file that could not be read.
    const QString shown = QDir::toNativeSeparators(path);
    QFile file;
    QByteArray bytes;
    QString reason;
    // A pipe would wait for a writer and a device might never end: only files are read,
    // and none larger than a workspace could sensibly be.
    constexpr qint64 Largest = qint64(256) << 20;
    if (!ReadableFile::Open(file, path, &reason)) {
        if (reason.isEmpty())
            reason = file.errorString();
    } else if (file.size() > Largest) {
        reason = Tr("The file is too large to be a workspace.");
    } else if (bytes = ReadAtMost(file, Largest + 1), file.error() != QFileDevice::NoError) {
        reason = file.errorString();
    } else if (bytes.size() > Largest) {
        reason = Tr("The file is too large to be a workspace.");
    }
    pugi::xml_document document;
    if (reason.isEmpty())
        WorkspaceFile::Parse(bytes, document, reason);
    if (!reason.isEmpty()) {
        if (m_prompts)
            m_prompts->ShowError(Tr("Cannot open workspace \"%1\": %2").arg(shown, reason));
        return false;
    }

    if (m_open)
        CloseWorkspace();
    m_model.Clear();
    m_path = path;
    // Open before the walk, so that files read at the top level do not start a new
    // unnamed workspace of their own.
    m_open = true;
    m_reading = true;
    m_expandAfterRead.clear();
    m_model.BeginBatch();
    WorkspaceFile::Read(document, *this);
    if (m_model.IsEmpty())
        AddFolder(nullptr, QStringLiteral("Project"));
    m_model.EndBatch();
    m_reading = false;
    for (CTreeNode* folder : std::as_const(m_expandAfterRead))
        Q_EMIT expandRequested(folder);
    m_expandAfterRead.clear();
    m_expandedWhileReading.clear();
    Q_EMIT selectRequested(m_selected);
    SetModified(false);
    return true;
}

bool CWorkspace::SaveWorkspace(const QString& path)
{
    if (!m_open)
        return false;
    if (!path.isEmpty())
        m_path = path;
    if (m_path.isEmpty()) {
        const QString chosen = m_prompts ? m_prompts->AskSavePath() : QString();
        if (chosen.isEmpty())
            return false;
        m_path = chosen;
    }
    // The mark goes first, so that the root's label is written without it.
    SetModified(false);
    const QByteArray bytes = WorkspaceFile::Write(m_model);

    QSaveFile file(m_path);
    // Where the folder cannot take a temporary file, write in place rather than not at all.
    file.setDirectWriteFallback(true);
    QString reason;
    bool ok = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    if (!ok) {
        reason = file.errorString();
        file.cancelWriting();
    } else {
        ok = CommitToDisk(file, &reason);
    }
    if (!ok) {
        SetModified(true);
        if (m_prompts)
            m_prompts->ShowError(Tr("Failed to save the workspace \"%1\": %2")
                                     .arg(QDir::toNativeSeparators(m_path), reason));
        return false;
    }
    return true;
}

void CWorkspace::CloseWorkspace()
{
    if (m_modified && m_prompts && m_prompts->AskSaveBeforeClose())
        SaveWorkspace();
    m_model.Clear();
    m_selected = nullptr;
    SetModified(false);
    m_path.clear();
    m_open = false;
    Q_EMIT stateChanged();
}

void CWorkspace::SetModified(bool modified)
{
    m_modified = modified;
    m_title = m_path.isEmpty() ? QStringLiteral("Project")
                               : QStringLiteral("Project [%1]").arg(QFileInfo(m_path).completeBaseName());
    SetItemLabel(Root(), modified ? m_title + QLatin1Char('*') : m_title, true);
    Q_EMIT stateChanged();
}

void CWorkspace::SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord)
{
    if (!item)
        return;
    m_model.SetText(item, text);
    if (updateRecord) {
        TreeItemData record = item->data;
        record.label = text;
        m_model.SetData(item, record);
    }
}

CTreeNode* CWorkspace::FolderFor(CTreeNode* item) const
{
    if (item && !item->IsFolder())
        return item->Parent();
    return item;
}

CTreeNode* CWorkspace::AddFolder(CTreeNode* parent, const QString& name)
{
    if (!parent)
        parent = FolderFor(m_selected);
    return m_model.Insert(parent, CTreeItemModel::Last, name, FolderImage, OpenFolderImage,
                          TreeItemData::Folder(name));
}

CTreeNode* CWorkspace::AddNewFolder()
{
    if (!m_open)
        return nullptr;
    // With nothing selected the new folder goes under the root, never beside it: a second
    // top-level item would not come back the same way from the file.
    CTreeNode* parent = FolderFor(m_selected);
    if (!parent)
        parent = Root();
    CTreeNode* folder = m_model.Insert(parent, CTreeItemModel::Last, NewFolderText(), FolderImage,
                                       OpenFolderImage, TreeItemData::Folder(NewFolderText()));
    Select(parent);
    Q_EMIT expandRequested(parent);
    // A new folder is a change even when its label edit is cancelled.
    SetModified(true);
    Q_EMIT editRequested(folder);
    return folder;
}

CTreeNode* CWorkspace::AddFile(const QString& path, CTreeNode* parent, int type, int encoding)
{
    if (path.isEmpty())
        return nullptr;
    if (!parent) {
        parent = m_selected;
        if (!parent) {
            if (!m_open)
                NewWorkspace();
            parent = Root();
            if (!parent) // an open workspace whose file held no folder
                parent = AddFolder(nullptr, QStringLiteral("Project"));
        }
    }
    parent = FolderFor(parent);

    CTreeNode* item = FindItemByPath(path);
    if (!item) {
        const QString name = QFileInfo(path).fileName();
        const int image = type == 1 ? BinaryFileImage : TextFileImage;
        item = m_model.Insert(parent, CTreeItemModel::Last, name, image, image,
                              TreeItemData::File(name, path, type, encoding));
        SetModified(true);
    }
    Select(parent);
    RequestExpand(parent);
    return item;
}

void CWorkspace::DeleteFolder()
{
    CTreeNode* folder = m_selected;
    if (!folder || !folder->IsFolder())
        return;
    if (folder == Root()) {
        if (m_prompts)
            m_prompts->ShowInformation(Tr("The project folder cannot be deleted."));
        return;
    }
    if (!folder->children.empty() && !(m_prompts && m_prompts->ConfirmDeleteFolder()))
        return;
    m_model.Remove(folder);
    SetModified(true);
}

void CWorkspace::RenameFolder()
{
    CTreeNode* folder = m_selected;
    if (!folder || !folder->IsFolder())
        return;
    Q_EMIT editRequested(folder);
    SetModified(true);
}

void CWorkspace::RemoveSelected()
{
    // The root is the workspace itself; removing it would leave nothing to save into.
    if (!m_selected || m_selected == Root())
        return;
    m_model.Remove(m_selected);
    SetModified(true);
}

CTreeNode* CWorkspace::SearchFrom(const QString& key, CTreeNode* start) const
{
    for (CTreeNode* item = start; item; item = item->NextSibling()) {
        if (item->hasData && Key(item->data.pathname) == key)
            return item;
        if (item->IsFolder() && item->FirstChild())
            if (CTreeNode* hit = SearchFrom(key, item->FirstChild()))
                return hit;
    }
    return nullptr;
}

CTreeNode* CWorkspace::FindItemByPath(const QString& path, CTreeNode* start) const
{
    if (path.isEmpty() || m_model.IsEmpty())
        return nullptr;
    const QString key = Key(path);
    if (!start) {
        const QList<CTreeNode*> hits = m_byPath.values(key);
        if (hits.size() <= 1)
            return hits.value(0);
        start = Root(); // the same path twice for a moment (a drop): first in tree order
    }
    return SearchFrom(key, start);
}

QString CWorkspace::GetItemPath(const CTreeNode* item)
{
    return item && item->hasData ? item->data.pathname : QString();
}

void CWorkspace::Select(CTreeNode* node)
{
    m_selected = node;
    if (!m_reading)
        Q_EMIT selectRequested(node);
}

void CWorkspace::RequestExpand(CTreeNode* node)
{
    if (!m_reading)
        Q_EMIT expandRequested(node);
    else if (node && !m_expandedWhileReading.contains(node)) {
        m_expandedWhileReading.insert(node);
        m_expandAfterRead << node;
    }
}

void CWorkspace::NodeAdded(CTreeNode* node)
{
    if (node->hasData && !node->data.pathname.isEmpty())
        m_byPath.insert(Key(node->data.pathname), node);
}

void CWorkspace::NodeRemoving(CTreeNode* node)
{
    if (node->hasData && !node->data.pathname.isEmpty())
        m_byPath.remove(Key(node->data.pathname), node);
    if (m_selected == node)
        m_selected = nullptr;
}

void CWorkspace::NodeDataChanging(CTreeNode* node, const TreeItemData& newData)
{
    if (node->hasData && !node->data.pathname.isEmpty())
        m_byPath.remove(Key(node->data.pathname), node);
    if (!newData.pathname.isEmpty())
        m_byPath.insert(Key(newData.pathname), node);
}
