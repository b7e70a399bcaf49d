#include "TextLoader.h"

#include "CMFCScintilla.h"
#include "EncodingReader.h"
#include "TextEncoding.h"
#include "TextFile.h"
#include "framework/IStatusSink.h"

#include <vector>

namespace {

// Pieces of a few megabytes keep calls into the control few while the buffer stays
// small beside the text.
constexpr qint64 kWindow = 4 * 1024 * 1024;

// Restores the control's notification mask and undo collection however the load ends.
class QuietLoad
{
public:
    explicit QuietLoad(CMFCScintilla& editor)
        : m_editor(editor)
        , m_mask(editor.SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK))
    {
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL);
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 0UL);
    }
    ~QuietLoad()
    {
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, 1UL);
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, static_cast<unsigned long>(m_mask));
    }

private:
    CMFCScintilla& m_editor;
    long m_mask;
};

} // namespace

TextLoader::Result TextLoader::Load(CMFCScintilla& editor, const QString& path, int encoding,
                                    int bomLength, IProgressSink* progress,
                                    const AnsiCodePage* codePage)
{
    Result result;
    TextFile file;
    if (!file.OpenRead(path)) {
        result.error = file.ErrorString();
        return result;
    }
    const qint64 size = file.Size();
    EncodingReader reader(encoding, bomLength, codePage);

    const bool wasReadOnly = editor.GetReadOnly();
    editor.SetReadOnly(false);
    if (progress)
        progress->StartProgress(size);
    {
        QuietLoad quiet(editor);
        // Every encoding, "Ansi" too, reaches the control as UTF-8.
        editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
        // The file's size is a fair guess for decoded text too: 16-bit text shrinks when
        // it is mostly ASCII and grows when it isn't; the control grows as needed.
        editor.Allocate(static_cast<long>(size + 1000));
        editor.ClearAll();

        std::vector<char> buffer(static_cast<std::size_t>(kWindow) + 1);
        qint64 done = 0;
        for (;;) {
            const qint64 n = file.ReadChunk(buffer.data(), kWindow);
            if (n <= 0)
                break;
            const std::string_view text = reader.Feed(buffer.data(), static_cast<std::size_t>(n));
            if (!text.empty())
                editor.AddText(text.data(), static_cast<long>(text.size()));
            done += n;
            if (progress)
                progress->SetProgress(done);
        }
        const std::string_view rest = reader.Finish();
        if (!rest.empty())
            editor.AddText(rest.data(), static_cast<long>(rest.size()));
        result.bytesRead = done;
        result.lostBytes = reader.LostBytes();
        if (!file.ErrorString().isEmpty() && done < size) {
            result.error = file.ErrorString();
        }
    }
    file.Close();
    if (progress)
        progress->StopProgress();

    editor.EmptyUndoBuffer();
    editor.SetSavePoint();
    editor.SetReadOnly(wasReadOnly);
    result.ok = result.error.isEmpty();
    return result;
}
