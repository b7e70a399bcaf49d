#pragma once

#include "framework/CDocument.h"
#include "editor/FileStamp.h"
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

    // Asks what to do when another program changed or removed the file since it was read:
    // run when the program becomes active again.
    void CheckDiskChange();
    // Reads the file again; the edits are dropped.
    bool Reload();

Q_SIGNALS:
    // The bytes changed; `offset` is where the change starts (-1: anywhere).
    void contentChanged(qint64 offset);

protected:
    // Seams for tests: the message boxes and the Save As dialog.
    virtual void ShowMessage(QMessageBox::Icon icon, const QString& text);
    virtual QString AskSaveAsPath();
    virtual QMessageBox::StandardButton Ask(QMessageBox::Icon icon, const QString& text,
                                            QMessageBox::StandardButtons buttons,
                                            QMessageBox::StandardButton byDefault);

private:
    void AfterEdit(qint64 offset);
    // False when the file was changed by another program since it was read and the
    // user would rather not overwrite it.
    bool MayOverwrite(const QString& path);

    CPieceTable m_table;
    bool m_readOnly = false;
    FileStamp m_diskStamp;     // the file as last read or written
    FileStamp m_declinedStamp; // a change the user chose not to reload
    bool m_checkingDisk = false;
};
