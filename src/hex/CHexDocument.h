#pragma once

#include "framework/CDocument.h"
#include "hex/CPieceTable.h"

#include <QMessageBox>

// A binary file open in the hex editor. The bytes live in a piece table over the
// memory-mapped file, so files of any size open at once; edits go through this class,
// which keeps the modified flag and the title in step and tells the views.
class CHexDocument : public CDocument
{
    Q_OBJECT
public:
    explicit CHexDocument(QObject* parent = nullptr);
    ~CHexDocument() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    bool DoSave(const QString& path, bool replace = true) override;
    void SetTitle(const QString& title) override;
    void SetModifiedFlag(bool modified = true) override;

    bool IsReadOnly() const { return m_readOnly; }
    // Fixed when the document opens; settable for documents made without a template.
    void SetReadOnly(bool readOnly);

    const CPieceTable& Bytes() const { return m_table; }
    qint64 Size() const { return m_table.Size(); }

    // Edits; each refuses (returns false) on a read-only document or a bad range.
    bool Insert(qint64 offset, const QByteArray& bytes, bool merge = false);
    bool Overwrite(qint64 offset, const QByteArray& bytes, bool merge = false);
    bool Replace(qint64 offset, qint64 removeLength, const QByteArray& bytes, bool merge = false);
    bool Remove(qint64 offset, qint64 length);
    bool CanUndo() const { return !m_readOnly && m_table.CanUndo(); }
    bool CanRedo() const { return !m_readOnly && m_table.CanRedo(); }
    bool Undo(qint64* where = nullptr);
    bool Redo(qint64* where = nullptr);

Q_SIGNALS:
    // The bytes changed; `offset` is where the change starts (-1: anywhere).
    void contentChanged(qint64 offset);

protected:
    // Seams for tests: the message boxes and the Save As dialog.
    virtual void ShowMessage(QMessageBox::Icon icon, const QString& text);
    virtual QString AskSaveAsPath();

private:
    void AfterEdit(qint64 offset);

    CPieceTable m_table;
    bool m_readOnly = false;
};
