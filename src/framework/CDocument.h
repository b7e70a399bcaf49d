#pragma once

#include <QList>
#include <QObject>
#include <QString>

class CChildFrame;
class CDocTemplate;

// Base of every kind of document: path, title, modified flag, the frames that show it,
// and the save and close protocol. Subclasses move bytes between disk and their view.
class CDocument : public QObject
{
    Q_OBJECT
public:
    explicit CDocument(QObject* parent = nullptr);
    ~CDocument() override;

    QString GetPathName() const { return m_strPathName; }
    virtual void SetPathName(const QString& path, bool addToRecent = true);

    // The title as shown on the tab, modified mark included.
    QString GetTitle() const { return m_strTitle; }
    // The title without the tab's marks ("*" for modified, " [Read Only]"): the name to
    // offer for a file made from the document, or to print.
    QString PlainTitle() const;
    virtual void SetTitle(const QString& title);

    bool IsModified() const { return m_bModified; }
    virtual void SetModifiedFlag(bool modified = true);

    virtual bool OnNewDocument();
    virtual bool OnOpenDocument(const QString& path);
    virtual void OnCloseDocument();

    // Writes the document to `path`; an empty path asks for one (Save As).
    // Returns true on success.
    virtual bool DoSave(const QString& path, bool replace = true);
    // The Save command: Save As when there is no path yet.
    bool DoFileSave();
    // Asks about unsaved changes; true when the document may close.
    virtual bool SaveModified();

    CDocTemplate* GetDocTemplate() const { return m_pTemplate; }
    void SetDocTemplate(CDocTemplate* docTemplate) { m_pTemplate = docTemplate; }

    void AddFrame(CChildFrame* frame);
    void RemoveFrame(CChildFrame* frame);
    const QList<CChildFrame*>& GetFrames() const { return m_frames; }

Q_SIGNALS:
    void titleChanged(const QString& title);
    void modifiedChanged(bool modified);
    void pathNameChanged(const QString& path, bool addToRecent);
    void closing();
    // A save is about to write `path`: the target is settled and nothing is written yet,
    // so a listener may still copy the old file away.
    void aboutToSave(const QString& path);
    // `path` now holds the document.
    void saved(const QString& path);
    // The document was read from `path`.
    void loaded(const QString& path);

protected:
    QString m_strPathName;
    QString m_strTitle;
    bool m_bModified = false;

private:
    CDocTemplate* m_pTemplate = nullptr;
    QList<CChildFrame*> m_frames;
};
