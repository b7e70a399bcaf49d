#include "CScrivelDoc.h"
#include "TextFileDetector.h"

#include "AnsiCodePage.h"
#include "CFileDialogEx.h"
#include "CMFCScintilla.h"
#include "CScrivelFrame.h"
#include "CScrivelView.h"
#include "LargeFileMode.h"
#include "MemoryGuard.h"
#include "TextLoader.h"
#include "TextSaver.h"
#include "CEditorCommands.h"
#include "framework/CChildFrame.h"
#include "framework/CDocTemplate.h"
#include "framework/OpenOptions.h"
#include "settings/MainFrameSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "settings/CRegistryStore.h"

#include <QApplication>
#include <QFile>
#include <QTimer>

#include <utility>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QMetaMethod>
#include <QPushButton>
#include <algorithm>

namespace {

// The line end of the first line that has one, as the control's eol mode; -1 if none.
int DetectLineEnding(const CMFCScintilla& editor)
{
    if (editor.GetLineCount() < 2)
        return -1;
    const long end = editor.GetLineEndPosition(0);
    const QByteArray tail = editor.GetTextRange(end, std::min(end + 2, editor.GetLength()));
    if (tail.startsWith("\r\n"))
        return CMFCScintilla::SC_EOL_CRLF;
    if (tail.startsWith('\r'))
        return CMFCScintilla::SC_EOL_CR;
    return CMFCScintilla::SC_EOL_LF;
}

// The code page "Ansi" text is read and written in, as the user set it.
AnsiCodePage ConfiguredCodePage()
{
    return AnsiCodePage(CRegistryStore().GetProfileString(
        QStringLiteral("EditSettings"), QStringLiteral("AnsiCodePage"),
        QString::fromLatin1(AnsiCodePage::DefaultName)));
}

constexpr long kDeferredNoticeBytes = 8L << 20;

qint64 EditSetting(const QString& name, qint64 fallback)
{
    bool ok = false;
    const qint64 value = CRegistryStore()
                             .GetProfileString(QStringLiteral("EditSettings"), name, QString::number(fallback))
                             .toLongLong(&ok);
    return ok ? value : fallback;
}

QString ExtensionOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    return suffix.isEmpty() ? QString() : QLatin1Char('.') + suffix;
}

} // namespace

CScrivelDoc::CScrivelDoc(QObject* parent)
    : CDocument(parent)
{
    // Coming back from another program is when its changes to our files show. Asked
    // after the activation has settled, so that the question gets the focus.
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(app, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                QTimer::singleShot(0, this, &CScrivelDoc::CheckDiskChange);
        });
    }
}

CScrivelDoc::~CScrivelDoc()
{
    // A view that outlives its document no longer reaches it to detach, so the reference
    // taken for the text is given back here, through a view that is still there.
    if (m_sharedDocument && !m_editors.isEmpty())
        m_editors.first()->SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, m_sharedDocument);
}

int CScrivelDoc::AttachView(CMFCScintilla* editor)
{
    m_editors.append(editor);
    if (m_sharedDocument) {
        editor->SetDocPointer(m_sharedDocument);
        editor->SetDeferredChangeNotices(m_deferredNotices);
        return 1;
    }
    m_sharedDocument = editor->GetDocPointer();
    // Keep the text alive for as long as the document, whichever view goes first.
    editor->SendScintilla(QsciScintillaBase::SCI_ADDREFDOCUMENT, 0UL, m_sharedDocument);
    return 0;
}

void CScrivelDoc::DetachView(CMFCScintilla* editor)
{
    m_editors.removeAll(editor);
    if (m_editors.isEmpty() && m_sharedDocument) {
        editor->SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, m_sharedDocument);
        m_sharedDocument = nullptr;
    }
}

CMFCScintilla* CScrivelDoc::GetEditor() const
{
    return m_editors.isEmpty() ? nullptr : m_editors.first();
}

CScrivelView* CScrivelDoc::GetFirstView() const
{
    for (CChildFrame* frame : GetFrames()) {
        if (auto* textFrame = qobject_cast<CScrivelFrame*>(frame))
            return textFrame->GetView();
    }
    return nullptr;
}

void CScrivelDoc::ShowError(const QString& text) const
{
    QMessageBox::warning(QApplication::activeWindow(), QApplication::applicationDisplayName(), text);
}

bool CScrivelDoc::OnNewDocument()
{
    if (!CDocument::OnNewDocument())
        return false;
    if (CMFCScintilla* editor = GetEditor()) {
        editor->SetSavePoint();
        editor->EmptyUndoBuffer();
    }
    ApplyParserForExtension(QStringLiteral(".*"));
    UpdateTitle();
    return true;
}

bool CScrivelDoc::OnOpenDocument(const QString& path)
{
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return false;
    OpenOptions options;
    if (CDocTemplate* docTemplate = GetDocTemplate(); docTemplate && docTemplate->GetOpenOptions())
        options = *docTemplate->GetOpenOptions();
    Encoding = options.encoding;
    BomLength = options.bomLength;
    WriteMark = BomLength > 0;

    // Past the large-file size the text is kept without colours; past 2 GB the control
    // needs its large storage.
    const qint64 fileSize = QFileInfo(path).size();
    const bool large = LargeFileMode::IsLarge(
        fileSize, LargeFileMode::ThresholdBytes(EditSetting(QStringLiteral("LargeFileSize"),
                                                            LargeFileMode::DefaultLargeFileMegabytes)));

    // A file that will not fit is not loaded blindly: the hex view maps it instead.
    if (const qint64 needed = MemoryGuard::EstimateTextLoad(fileSize, Encoding, !large);
        !MemoryGuard::Fits(needed, MemoryGuard::AvailableMemory())) {
        QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                        tr("This file is too large to open as text"), QMessageBox::Open | QMessageBox::Cancel,
                        QApplication::activeWindow());
        box.setInformativeText(QDir::toNativeSeparators(path));
        box.button(QMessageBox::Open)->setText(tr("Open in &Hex View"));
        box.setDefaultButton(QMessageBox::Cancel);
        if (box.exec() == QMessageBox::Open)
            Q_EMIT hexViewRequested(path);
        return false;
    }

    const AnsiCodePage codePage = ConfiguredCodePage();
    const qint64 textBytes = LargeFileMode::TextBytesOfFile(path, fileSize, Encoding, codePage);
    if (const int options = LargeFileMode::DocumentOptions(textBytes, !large); options != 0) {
        // Empty: the loader sizes the storage once. Sized here too, the control would
        // fill it with zeros now and copy it whole when the loader sizes it again.
        if (!ReplaceControlDocument(0, options)) {
            ShowError(tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(path), tr("Not enough memory")));
            return false;
        }
        editor = GetEditor();
    }
    m_plain = large ? PlainReason::LargeFile : PlainReason::None;

    // A long load shows which file it is while it runs.
    SetTitle(QFileInfo(path).fileName());
    IProgressSink* progress = GetDocTemplate() ? GetDocTemplate()->GetProgressSink() : nullptr;
    const TextLoader::Result read = TextLoader::Load(*editor, path, Encoding, BomLength, progress,
                                                     &codePage);
    if (read.cancelled)
        return false;
    if (!read.ok) {
        ShowError(tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(path), read.error));
        return false;
    }

    const QFileInfo info(path);
    NeedsSaveAs = TextEncoding::IsReadOnlyForm(Encoding) || read.lostBytes > 0;
    ReadOnly = options.readOnly || (info.exists() && !info.isWritable()) || NeedsSaveAs;

    const int eol = DetectLineEnding(*editor);
    if (eol >= 0)
        editor->SetEOLMode(eol);
    LineEnding = editor->GetEOLMode();

    editor->SetReadOnly(ReadOnly);
    editor->SetSavePoint();
    editor->EmptyUndoBuffer();
    editor->SendScintilla(QsciScintillaBase::SCI_ENSUREVISIBLEENFORCEPOLICY, 0UL);

    // A line longer than the control lays out quickly is left uncoloured, as large files are.
    if (!large) {
        const char* text = reinterpret_cast<const char*>(
            editor->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER));
        if (LargeFileMode::HasLineLongerThan(text, editor->GetLength(),
                                             EditSetting(QStringLiteral("LongLineLength"),
                                                         LargeFileMode::DefaultLongLineLength)))
            m_plain = PlainReason::LongLine;
    }

    // The control's own change handling counts every character in front of a change:
    // with megabytes in front, each keystroke would wait for it.
    m_deferredNotices = ColouringOff() || editor->GetLength() > kDeferredNoticeBytes;
    for (CMFCScintilla* view : std::as_const(m_editors))
        view->SetDeferredChangeNotices(m_deferredNotices);

    m_diskStamp = FileStamp::Of(path);
    ApplyParserForExtension(ExtensionOf(path));
    if (const CScrivelView* view = GetFirstView(); view && view->Settings().LineNumbers)
        editor->SetLineNumberMargin(true);
    CDocument::OnOpenDocument(path);
    Q_EMIT formatChanged();
    // Only now: placing the caret lays its line out, which a very long line must not
    // meet before its views have styled it.
    editor->GotoLine(0);
    Q_EMIT loaded(path);
    return true;
}

void CScrivelDoc::OnCloseDocument()
{
    CDocument::OnCloseDocument();
}

bool CScrivelDoc::DoSave(const QString& path, bool replace)
{
    if (path.isEmpty() || (NeedsSaveAs && path == m_strPathName)) {
        const QFileInfo current(m_strPathName);
        CFileDialogEx dialog(false, current.fileName().isEmpty() ? PlainTitle()
                                                                 : current.fileName(),
                             QApplication::activeWindow(),
                             m_strPathName.isEmpty() ? QString() : current.absolutePath());
        dialog.SetEncoding(Encoding);
        dialog.SetLineEnding(LineEnding);
        if (dialog.DoModal() != QDialog::Accepted)
            return false;
        const QStringList chosen = dialog.GetPathNames();
        if (chosen.isEmpty())
            return false;
        return SaveAs(chosen.first(), dialog.GetEncoding(), dialog.GetLineEnding());
    }
    return WriteFile(path, replace, false);
}

bool CScrivelDoc::SaveAs(const QString& path, int encoding, int lineEnding)
{
    // Another encoding is written with its mark; the same one keeps the file's choice
    // (a document never saved holds UTF-8 and has none).
    const bool sameForm = encoding == Encoding
        || (Encoding == TextEncoding::Auto && encoding == TextEncoding::Utf8);
    if (!sameForm)
        WriteMark = TextEncoding::MarkLength(encoding) > 0;
    Encoding = encoding;
    NeedsSaveAs = false;
    ConvertLineEndings(lineEnding);
    return WriteFile(path, true, true);
}

void CScrivelDoc::ConvertLineEndings(int lineEnding)
{
    LineEnding = lineEnding;
    if (CMFCScintilla* editor = GetEditor())
        editor->ConvertLineEndings(lineEnding);
    Q_EMIT formatChanged();
}

bool CScrivelDoc::WriteFile(const QString& path, bool replace, bool isSaveAs)
{
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return false;
    if (!MayOverwrite(path))
        return false;
    editor->SetEOLMode(LineEnding);
    const AnsiCodePage codePage = ConfiguredCodePage();
    if (Encoding == TextEncoding::Ansi) {
        const auto [before, after] = editor->TextPieces();
        if (!codePage.CanHold(before.data(), before.size()) || !codePage.CanHold(after.data(), after.size())) {
            // Writing a stand-in for what the code page lacks would lose text for good.
            const auto answer = QMessageBox::question(
                QApplication::activeWindow(), QApplication::applicationDisplayName(),
                tr("\"%1\" holds characters that the code page %2 cannot hold.\n\n"
                   "Do you want to save it as UTF-8 instead?")
                    .arg(QDir::toNativeSeparators(path), codePage.Name()),
                QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
            if (answer != QMessageBox::Yes)
                return false;
            Encoding = TextEncoding::Utf8;
            WriteMark = true;
        }
    }
    Q_EMIT aboutToSave(path);
    const TextSaver::Result result = TextSaver::Save(*editor, path, Encoding, WriteMark, &codePage);
    if (!result.ok) {
        QMessageBox::warning(QApplication::activeWindow(), QApplication::applicationDisplayName(),
                             tr("Failed to create a new file when saving the current document"));
        return false;
    }
    if (replace || isSaveAs) {
        SetPathName(path, true);
        ApplyParserForExtension(ExtensionOf(path));
        if (isSaveAs)
            editor->SetReadOnly(false);
    }
    if (replace || isSaveAs || path == m_strPathName) {
        m_diskStamp = FileStamp::Of(path);
        m_declinedStamp = FileStamp();
    }
    editor->SetSavePoint();
    const CScrivelView* view = GetFirstView();
    const CEditorCommands* host = view ? view->Host() : nullptr;
    if (!host || host->FrameSettings().ResetUndoOnSave)
        editor->EmptyUndoBuffer();
    SetModifiedFlag(false);
    Q_EMIT formatChanged();
    Q_EMIT saved(path);
    return true;
}

void CScrivelDoc::SetModifiedFlag(bool modified)
{
    m_bModified = modified;
    UpdateTitle();
    Q_EMIT modifiedChanged(modified);
}

void CScrivelDoc::SetPathName(const QString& path, bool addToRecent)
{
    CDocument::SetPathName(path, addToRecent);
    UpdateTitle();
}

void CScrivelDoc::UpdateTitle()
{
    QString title = m_strTitle;
    if (!ReadOnly) {
        if (title.endsWith(QLatin1Char('*')))
            title.chop(1);
        if (m_bModified)
            title += QLatin1Char('*');
    } else if (!title.contains(QStringLiteral("[Read Only]"))) {
        title += QStringLiteral(" [Read Only]");
    }
    SetTitle(title);
}

void CScrivelDoc::GoToLineColumn(long line, long column)
{
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return;
    const long position = editor->FindColumn(line - 1, column);
    editor->GotoPos(position);
    editor->ScrollCaret();
    editor->setFocus();
}

void CScrivelDoc::ApplyParserForExtension(const QString& extension)
{
    // The first definition that lists the extension wins; none leaves the colouring alone.
    for (CChildFrame* frame : GetFrames()) {
        auto* text = qobject_cast<CScrivelFrame*>(frame);
        const CSyntaxParserList* parsers = text ? text->ParserList() : nullptr;
        if (!parsers)
            continue;
        if (const int index = parsers->FindByExtension(extension); index >= 0)
            text->SelectParser(index);
    }
}

bool CScrivelDoc::MayOverwrite(const QString& path)
{
    // Only the file we read can have been changed behind our back; a removed one is
    // simply written again.
    if (path != m_strPathName || m_diskStamp.Compare(path) != FileStamp::Change::Modified)
        return true;
    QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                    tr("\"%1\" has been changed by another program since it was read. "
                       "Overwrite it with this document?")
                        .arg(QDir::toNativeSeparators(path)),
                    QMessageBox::Yes | QMessageBox::No, QApplication::activeWindow());
    box.setDefaultButton(QMessageBox::No);
    // This question is about the same change: a check that the program's activation
    // queued must not ask to reload from inside it.
    const bool wasChecking = std::exchange(m_checkingDisk, true);
    const bool overwrite = box.exec() == QMessageBox::Yes;
    m_checkingDisk = wasChecking;
    // Either way this change has been put to the user: the check when the window is
    // active again must not ask about it a second time, even if the save then fails.
    m_declinedStamp = FileStamp::Of(path);
    return overwrite;
}

bool CScrivelDoc::ReopenWithEncoding(int encoding)
{
    if (m_strPathName.isEmpty() || !QFileInfo::exists(m_strPathName) || !GetEditor())
        return false;
    if (IsModified()
        && QMessageBox::question(QApplication::activeWindow(), QApplication::applicationDisplayName(),
                                 tr("Reopening \"%1\" in another encoding discards your changes. Reopen it?")
                                     .arg(QDir::toNativeSeparators(m_strPathName)))
               != QMessageBox::Yes)
        return false;
    // The file's own mark is skipped when it is the mark of the chosen encoding.
    int markCode = TextEncoding::Ansi;
    int markLength = 0;
    QFile file(m_strPathName);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray head = file.read(4);
        TextFileDetector::DetectMark(reinterpret_cast<const unsigned char*>(head.constData()),
                                     std::size_t(head.size()), markCode, markLength);
    }
    const int oldEncoding = Encoding;
    const int oldBom = BomLength;
    Encoding = encoding;
    BomLength = markCode == encoding ? markLength : 0;
    if (!Reload()) {
        Encoding = oldEncoding;
        BomLength = oldBom;
        return false;
    }
    WriteMark = BomLength > 0;
    emit formatChanged();
    return true;
}

bool CScrivelDoc::Reload()
{
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return false;
    // The encoding found when the file was opened still applies; the control is
    // refilled in place, so views and their settings stay.
    const bool readOnly = editor->GetReadOnly();
    editor->SetReadOnly(false);
    const TextLoader::Result loaded = TextLoader::Load(*editor, m_strPathName, Encoding, BomLength);
    editor->SetReadOnly(readOnly);
    if (!loaded.ok) {
        ShowError(tr("Cannot open \"%1\": %2").arg(QDir::toNativeSeparators(m_strPathName), loaded.error));
        return false;
    }
    m_diskStamp = FileStamp::Of(m_strPathName);
    m_declinedStamp = FileStamp();
    SetModifiedFlag(false);
    return true;
}

bool CScrivelDoc::ReplaceControlDocument(qint64 bytes, int options)
{
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return false;
    // The control allocates (and zero-fills) `bytes` of storage at once.
    void* fresh = reinterpret_cast<void*>(editor->SendScintilla(
        QsciScintillaBase::SCI_CREATEDOCUMENT, static_cast<unsigned long>(std::max<qint64>(bytes, 0)),
        static_cast<long>(options)));
    if (!fresh)
        return false;
    void* old = std::exchange(m_sharedDocument, fresh); // the new one's first reference is ours
    for (CMFCScintilla* view : std::as_const(m_editors))
        view->SetDocPointer(fresh);
    if (old)
        editor->SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, old);
    return true;
}

void CScrivelDoc::TurnColouringOn()
{
    if (!ColouringOff())
        return;
    m_plain = PlainReason::None;
    CMFCScintilla* editor = GetEditor();
    if (!editor)
        return;
    const long options = editor->SendScintilla(QsciScintillaBase::SCI_GETDOCUMENTOPTIONS);
    if (!(options & LargeFileMode::StylesNone))
        return;

    // Move the text into a document with style bytes. The old one stays alive (and its
    // text in place) until the copy is done.
    void* old = m_sharedDocument;
    editor->SendScintilla(QsciScintillaBase::SCI_ADDREFDOCUMENT, 0UL, old);
    const long length = editor->GetLength();
    const long caret = editor->GetCurrentPos();
    const int eol = editor->GetEOLMode();
    const bool readOnly = editor->GetReadOnly();
    const bool modified = IsModified();
    const char* text = reinterpret_cast<const char*>(
        editor->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER));
    // With room to spare: storage that the text fills exactly is copied whole into a
    // bigger one by the control.
    if (!ReplaceControlDocument(length + 1000, LargeFileMode::DocumentOptions(length, true))) {
        editor->SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, old);
        m_plain = PlainReason::LargeFile;
        return;
    }
    editor = GetEditor();
    const long mask = editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK);
    editor->SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL);
    editor->SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 0UL);
    editor->SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
    editor->AddText(text, length);
    editor->SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 1UL);
    editor->SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, static_cast<unsigned long>(mask));
    editor->ForgetColumns();
    editor->SendScintilla(QsciScintillaBase::SCI_RELEASEDOCUMENT, 0UL, old);
    editor->EmptyUndoBuffer();
    editor->SetEOLMode(eol);
    if (!modified)
        editor->SetSavePoint();
    editor->SetReadOnly(readOnly);
    editor->GotoPos(caret);
    SetModifiedFlag(modified);
}

void CScrivelDoc::CheckDiskChange()
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
        QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                        tr("\"%1\" has been deleted by another program. Keep it open in the editor?").arg(name),
                        QMessageBox::Yes | QMessageBox::No, QApplication::activeWindow());
        box.setDefaultButton(QMessageBox::Yes);
        const bool keep = box.exec() == QMessageBox::Yes;
        m_checkingDisk = false;
        if (keep) {
            // The text is now the only copy: mark it so that closing asks to save it.
            m_diskStamp = FileStamp();
            SetModifiedFlag(true);
        } else {
            // Closed the way the user closes it; unmodified, nothing is asked.
            SetModifiedFlag(false);
            const auto frames = GetFrames();
            for (CChildFrame* frame : frames)
                frame->close();
        }
        return;
    }
    QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(),
                    tr("\"%1\" has been changed by another program. Reload it?").arg(name),
                    QMessageBox::Yes | QMessageBox::No, QApplication::activeWindow());
    // Reloading would throw away changes of our own: then No is the safe default, and
    // the two texts can be compared first.
    box.setDefaultButton(IsModified() ? QMessageBox::No : QMessageBox::Yes);
    QAbstractButton* compare = nullptr;
    if (IsModified() && isSignalConnected(QMetaMethod::fromSignal(&CScrivelDoc::compareWithDiskRequested))) {
        compare = box.addButton(tr("&Compare"), QMessageBox::ActionRole);
        compare->setObjectName(QStringLiteral("CompareWithDisk"));
    }
    const bool reload = box.exec() == QMessageBox::Yes;
    m_checkingDisk = false;
    if (compare && box.clickedButton() == compare) {
        // Nothing is decided yet: the question comes back when the program is next
        // activated, and a save still asks before overwriting.
        Q_EMIT compareWithDiskRequested();
        return;
    }
    if (reload)
        Reload();
    else
        m_declinedStamp = now; // asked again only at the next change; a save still asks
}
