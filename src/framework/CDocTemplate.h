#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class CChildFrame;
class CDocument;
class IProgressSink;
#include <QMdiArea>
struct OpenOptions;

// Makes documents of one kind with their frames, and keeps the list of them.
class CDocTemplate : public QObject
{
    Q_OBJECT
public:
    using DocumentFactory = std::function<CDocument*()>;
    using FrameFactory = std::function<CChildFrame*(CDocument*)>;

    // `untitledName` is the base of new documents' titles ("Untitled").
    CDocTemplate(const QString& untitledName, DocumentFactory makeDocument,
                 FrameFactory makeFrame, QObject* parent = nullptr);
    ~CDocTemplate() override;

    void SetMdiArea(QMdiArea* area) { m_mdiArea = area; }
    QMdiArea* GetMdiArea() const { return m_mdiArea; }
    void SetOpenOptions(const OpenOptions* options) { m_openOptions = options; }
    const OpenOptions* GetOpenOptions() const { return m_openOptions; }
    void SetProgressSink(IProgressSink* sink) { m_progress = sink; }
    IProgressSink* GetProgressSink() const { return m_progress; }

    // Opens `path`, or makes a new empty document when it is empty. Returns null when
    // the document could not be opened; nothing is left behind then.
    CDocument* OpenDocumentFile(const QString& path, bool makeVisible = true);
    // A further frame (view) on an open document.
    CChildFrame* CreateNewFrame(CDocument* document);

    QList<CDocument*> GetDocuments() const;
    // Saves every modified document of this kind, asking for each; false on cancel.
    bool SaveAllModified();
    // Every document of this kind may be closed (each asked in turn).
    bool CanCloseAll();

Q_SIGNALS:
    // A document was made, before its frame and before its file is read.
    void documentCreated(CDocument* document);
    void documentOpened(CDocument* document);
    void frameCreated(CChildFrame* frame);

private:
    void RemoveDocument(CDocument* document);

    QString m_untitledName;
    int m_untitledCount = 0;
    DocumentFactory m_makeDocument;
    FrameFactory m_makeFrame;
    QPointer<QMdiArea> m_mdiArea;
    const OpenOptions* m_openOptions = nullptr;
    IProgressSink* m_progress = nullptr;
    QList<CDocument*> m_documents;
};
