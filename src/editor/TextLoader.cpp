#include "TextLoader.h"

#include "LargeFileMode.h"

#include "CMFCScintilla.h"
#include "EncodingReader.h"
#include "LongOperation.h"
#include "TextEncoding.h"
#include "TextFile.h"
#include "framework/IStatusSink.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopeGuard>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
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
        m_editor.ForgetColumns();
    }

private:
    CMFCScintilla& m_editor;
    long m_mask;
};

// Decoded text handed from the reading thread to the interface thread in steps of a few
// megabytes; at most a few steps wait, so memory stays close to the text's own size.
class DecodedSteps
{
public:
    struct Step
    {
        std::string text;
        qint64 fileOffset = 0; // bytes of the file consumed up to the end of this step
    };

    // The reading thread: false once the reader should stop.
    bool Push(Step step)
    {
        std::unique_lock lock(m_mutex);
        m_space.wait(lock, [this] { return m_stop || m_steps.size() < kMaxWaiting; });
        if (m_stop)
            return false;
        m_steps.push_back(std::move(step));
        m_ready.notify_one();
        return true;
    }
    void Finish(const QString& error, std::size_t lost)
    {
        std::lock_guard lock(m_mutex);
        m_error = error;
        m_lost = lost;
        m_finished = true;
        m_ready.notify_one();
    }

    // The interface thread: waits a moment for the next step; false when none came.
    bool Take(Step& step, int waitMs)
    {
        std::unique_lock lock(m_mutex);
        m_ready.wait_for(lock, std::chrono::milliseconds(waitMs),
                         [this] { return !m_steps.empty() || m_finished; });
        if (m_steps.empty())
            return false;
        step = std::move(m_steps.front());
        m_steps.pop_front();
        m_space.notify_one();
        return true;
    }
    bool Drained() const
    {
        std::lock_guard lock(m_mutex);
        return m_finished && m_steps.empty();
    }
    void Stop()
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
        m_steps.clear();
        m_space.notify_all();
    }
    QString Error() const
    {
        std::lock_guard lock(m_mutex);
        return m_error;
    }
    std::size_t Lost() const
    {
        std::lock_guard lock(m_mutex);
        return m_lost;
    }

private:
    static constexpr std::size_t kMaxWaiting = 3;
    mutable std::mutex m_mutex;
    std::condition_variable m_ready;
    std::condition_variable m_space;
    std::deque<Step> m_steps;
    bool m_finished = false;
    bool m_stop = false;
    QString m_error;
    std::size_t m_lost = 0;
};

// The control is fed in steps this large: few calls, each short enough to keep the
// interface answering between them.
constexpr std::size_t kStep = 16 * 1024 * 1024;

void ReadAndDecode(const QString& path, int encoding, int bomLength, const AnsiCodePage* codePage,
                   DecodedSteps& steps)
{
    TextFile file;
    if (!file.OpenRead(path)) {
        steps.Finish(file.ErrorString(), 0);
        return;
    }
    EncodingReader reader(encoding, bomLength, codePage);
    std::vector<char> buffer(static_cast<std::size_t>(kWindow) + 1);
    DecodedSteps::Step step;
    step.text.reserve(kStep + kWindow);
    qint64 done = 0;
    for (;;) {
        const qint64 n = file.ReadChunk(buffer.data(), kWindow);
        if (n <= 0)
            break;
        step.text.append(reader.Feed(buffer.data(), static_cast<std::size_t>(n)));
        done += n;
        if (step.text.size() >= kStep) {
            step.fileOffset = done;
            if (!steps.Push(std::move(step)))
                return;
            step = DecodedSteps::Step();
            step.text.reserve(kStep + kWindow);
        }
    }
    step.text.append(reader.Finish());
    step.fileOffset = done;
    if (!step.text.empty() && !steps.Push(std::move(step)))
        return;
    const QString error = file.ErrorString();
    steps.Finish(error.isEmpty() || done >= file.Size() ? QString() : error, reader.LostBytes());
}

} // namespace

TextLoader::Result TextLoader::LoadInSteps(CMFCScintilla& editor, const QString& path, int encoding,
                                           int bomLength, IProgressSink& progress,
                                           const AnsiCodePage* codePage)
{
    Result result;
    {
        // A file that cannot be read is told at once, before anything is cleared.
        TextFile probe;
        if (!probe.OpenRead(path)) {
            result.error = probe.ErrorString();
            return result;
        }
    }
    const qint64 size = QFileInfo(path).size();
    const bool wasReadOnly = editor.GetReadOnly();
    editor.SetReadOnly(false);
    {
        LongOperation operation(&progress, size, 0);
        QuietLoad quiet(editor);
        editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
        editor.ClearAll();
        // The progress shows, and the empty control paints, before the storage is sized:
        // for a large file that alone takes a moment (the control fills it with zeros).
        operation.Step(0);
        // Then the control waits for the whole text: painting it between steps, while it
        // grows by millions of lines, took most of the load's time.
        const bool updates = editor.updatesEnabled();
        editor.setUpdatesEnabled(false);
        const auto restoreUpdates = qScopeGuard([&editor, updates] { editor.setUpdatesEnabled(updates); });
        // Sized once, with room to spare.
        editor.Allocate(static_cast<long>(LargeFileMode::StorageFor(size)));

        DecodedSteps steps;
        std::thread reader(ReadAndDecode, path, encoding, bomLength, codePage, std::ref(steps));
        DecodedSteps::Step step;
        while (!steps.Drained()) {
            if (steps.Take(step, 20)) {
                editor.AddText(step.text.data(), static_cast<long>(step.text.size()));
                result.bytesRead = step.fileOffset;
                std::string().swap(step.text);
            }
            if (!operation.Step(result.bytesRead)) {
                result.cancelled = true;
                steps.Stop();
                break;
            }
        }
        reader.join();
        if (!result.cancelled) {
            progress.SetProgress(result.bytesRead);
            result.error = steps.Error();
            result.lostBytes = steps.Lost();
        }
    }
    // A cancelled load leaves its partial text for the caller to drop with the document:
    // clearing it here would take the control seconds, line by line, for nothing.
    editor.EmptyUndoBuffer();
    editor.SetSavePoint();
    editor.SetReadOnly(wasReadOnly);
    result.ok = result.error.isEmpty() && !result.cancelled;
    return result;
}

TextLoader::Result TextLoader::Load(CMFCScintilla& editor, const QString& path, int encoding,
                                    int bomLength, IProgressSink* progress,
                                    const AnsiCodePage* codePage)
{
    // Small files are read at once: a thread would only cost time.
    if (progress && QFileInfo(path).size() > 4 * kWindow)
        return LoadInSteps(editor, path, encoding, bomLength, *progress, codePage);
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
        editor.Allocate(static_cast<long>(LargeFileMode::StorageFor(size)));
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
