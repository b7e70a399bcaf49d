#pragma once

#include "framework/CDocument.h"
#include "FileStamp.h"
#include "TextEncoding.h"

class CMFCScintilla;
class CScrivelView;

// The document of a text file. It holds no text itself: the text lives in the control
// of its first view, and the document moves bytes between the disk and that control.
class CScrivelDoc : public CDocument
{
    Q_OBJECT
public:
    explicit CScrivelDoc(QObject* parent = nullptr);
    ~CScrivelDoc() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    void OnCloseDocument() override;
    bool DoSave(const QString& path, bool replace = true) override;
    void SetModifiedFlag(bool modified = true) override;
    void SetPathName(const QString& path, bool addToRecent = true) override;

    // A view's control joins the document: the first one's text becomes the document's,
    // later ones share it. Returns 1 when the text was shared, 0 for the first view.
    int AttachView(CMFCScintilla* editor);
    void DetachView(CMFCScintilla* editor);
    CMFCScintilla* GetEditor() const;
    CScrivelView* GetFirstView() const;

    // Moves the caret to a line (from 1) and column and shows it.
    void GoToLineColumn(long line, long column);
    // Chooses colouring by the file's extension (".txt", ".*" for new documents).
    void ApplyParserForExtension(const QString& extension);

    int LineEnding = 0;
    int Encoding = TextEncoding::Auto;
    int BomLength = 0;
    bool ReadOnly = false;
    // Whether a save writes the encoding's mark: kept from the file as it was read, or
    // set by an explicit choice in Save As.
    bool WriteMark = false;
    // The file can only be written through Save As: a form we don't write, or bytes
    // that could not be read as text.
    bool NeedsSaveAs = false;

    // Save As with the choices of the dialog already made: converts the line ends to
    // `lineEnding`, writes the text to `path` in `encoding` (with its mark when that is
    // another encoding than the document's) and takes the new name.
    bool SaveAs(const QString& path, int encoding, int lineEnding);
    // Turns every line end of the text into `lineEnding` (an SC_EOL_ mode) as one undo
    // step, and makes it the mode of lines typed from now on.
    void ConvertLineEndings(int lineEnding);
    // Reads the file again as `encoding` (a TextEncoding code). A modified document asks
    // first, since the changes are dropped. False when nothing was reloaded.
    bool ReopenWithEncoding(int encoding);

    // Looks whether another program changed or removed the file since it was read or
    // saved, and asks the user what to do: reload a changed file, keep a removed one
    // open. Runs when the program becomes active again; asks once per change.
    void CheckDiskChange();

    // Why colouring and folding are off for this document, if they are: it passed the
    // large-file size, or a line passed the long-line length.
    enum class PlainReason { None, LargeFile, LongLine };
    PlainReason ColouringOffReason() const { return m_plain; }
    bool ColouringOff() const { return m_plain != PlainReason::None; }
    // Colours the document again (View As does this). Text kept without style bytes is
    // moved into storage that has them; undo history and bookmarks do not survive that.
    void TurnColouringOn();

Q_SIGNALS:
    // The encoding or line-end mode changed (a load, a save, a conversion).
    void formatChanged();
    // The file was too large for text and the user chose the hex view instead.
    void hexViewRequested(const QString& path);
    // The user wants to see this text beside the file on disk before deciding whether to
    // reload it; offered only while something listens.
    void compareWithDiskRequested();

private:
    void UpdateTitle();
    void ShowError(const QString& text) const;
    bool WriteFile(const QString& path, bool replace, bool isSaveAs);

    // Whether a save may go over the file on disk: true when it is as we last saw it or
    // the user agreed to overwrite another program's changes.
    bool MayOverwrite(const QString& path);
    bool Reload();
    // Gives every view a new, empty control document with these options.
    bool ReplaceControlDocument(qint64 bytes, int options);

    FileStamp m_diskStamp;     // the file as last read or written
    FileStamp m_declinedStamp; // a change the user chose not to reload
    bool m_checkingDisk = false;
    void* m_sharedDocument = nullptr;
    QList<CMFCScintilla*> m_editors;
    PlainReason m_plain = PlainReason::None;
    bool m_deferredNotices = false;
};
