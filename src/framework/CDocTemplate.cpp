#include "framework/CDocTemplate.h"

#include "framework/CChildFrame.h"
#include "framework/CDocument.h"

#include <QMdiArea>

CDocTemplate::CDocTemplate(const QString& untitledName, DocumentFactory makeDocument,
                           FrameFactory makeFrame, QObject* parent)
    : QObject(parent)
    , m_untitledName(untitledName)
    , m_makeDocument(std::move(makeDocument))
    , m_makeFrame(std::move(makeFrame))
{
}

CDocTemplate::~CDocTemplate() = default;

CChildFrame* CDocTemplate::CreateNewFrame(CDocument* document)
{
    CChildFrame* frame = m_makeFrame(document);
    if (!frame)
        return nullptr;
    if (m_mdiArea)
        m_mdiArea->addSubWindow(frame);
    Q_EMIT frameCreated(frame);
    return frame;
}

CDocument* CDocTemplate::OpenDocumentFile(const QString& path, bool makeVisible)
{
    CDocument* document = m_makeDocument();
    if (!document)
        return nullptr;
    document->SetDocTemplate(this);
    Q_EMIT documentCreated(document);
    CChildFrame* frame = CreateNewFrame(document);
    if (!frame) {
        delete document;
        return nullptr;
    }

    bool ok;
    if (path.isEmpty()) {
        ++m_untitledCount;
        document->SetTitle(m_untitledName + QString::number(m_untitledCount));
        ok = document->OnNewDocument();
    } else {
        ok = document->OnOpenDocument(path);
        if (ok)
            document->SetPathName(path, true);
    }
    if (!ok) {
        // Nothing of a failed open stays on screen.
        document->RemoveFrame(frame);
        if (m_mdiArea)
            m_mdiArea->removeSubWindow(frame);
        delete frame;
        delete document;
        return nullptr;
    }

    m_documents.append(document);
    connect(document, &CDocument::closing, this, [this, document] { RemoveDocument(document); });
    if (makeVisible) {
        frame->show();
        if (m_mdiArea)
            m_mdiArea->setActiveSubWindow(frame);
    }
    frame->OnInitialUpdate();
    Q_EMIT documentOpened(document);
    return document;
}

void CDocTemplate::RemoveDocument(CDocument* document)
{
    m_documents.removeAll(document);
    document->deleteLater();
}

QList<CDocument*> CDocTemplate::GetDocuments() const
{
    return m_documents;
}

bool CDocTemplate::SaveAllModified()
{
    const auto documents = m_documents;
    for (CDocument* document : documents) {
        if (document->IsModified() && !document->DoFileSave())
            return false;
    }
    return true;
}

bool CDocTemplate::CanCloseAll()
{
    const auto documents = m_documents;
    for (CDocument* document : documents) {
        if (!document->SaveModified())
            return false;
    }
    return true;
}
