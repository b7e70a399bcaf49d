#include "TextSaver.h"

#include "CMFCScintilla.h"
#include "EncodingWriter.h"
#include "TextFile.h"

TextSaver::Result TextSaver::Save(const CMFCScintilla& editor, const QString& path, int encoding,
                                  bool writeMark, const AnsiCodePage* codePage)
{
    Result result;
    const long length = editor.GetLength();
    TextFile file;
    if (!file.OpenWrite(path, length)) {
        result.error = file.ErrorString();
        return result;
    }
    EncodingWriter writer(encoding, writeMark, codePage);
    const auto [before, after] = editor.TextPieces();
    bool ok = true;
    for (const std::string_view piece : {before, after}) {
        for (std::size_t offset = 0; ok && offset < piece.size();) {
            const std::size_t size = std::min<std::size_t>(piece.size() - offset, TextFile::ChunkSize);
            const std::string_view bytes = writer.Encode(piece.data() + offset, size);
            if (writer.Unencodable())
                ok = false;
            else if (!bytes.empty() && !file.Write(bytes.data(), static_cast<qint64>(bytes.size())))
                ok = false;
            offset += size;
        }
    }
    if (ok) {
        const std::string_view rest = writer.Finish();
        if (writer.Unencodable())
            ok = false;
        else if (!rest.empty())
            ok = file.Write(rest.data(), static_cast<qint64>(rest.size()));
    }
    if (writer.Unencodable()) {
        // Leave the old file as it was rather than write a character it cannot hold.
        file.Close();
        result.unencodable = true;
        result.error = QObject::tr("The text holds characters the code page cannot hold");
        return result;
    }
    if (ok)
        ok = file.Commit();
    if (!ok)
        result.error = file.ErrorString();
    result.ok = ok;
    return result;
}
