#include "FileReplacer.h"

#include "FileSearcher.h"
#include "TextMatcher.h"
#include "editor/DiskSync.h"
#include "editor/EncodingReader.h"
#include "editor/EncodingWriter.h"
#include "editor/TextEncoding.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

namespace {

QByteArray Encode(const QByteArray& utf8, int encoding, bool mark, const AnsiCodePage& codePage,
                  std::size_t& unencodable)
{
    EncodingWriter writer(encoding, mark, &codePage);
    QByteArray out;
    const std::string_view body = writer.Encode(utf8.constData(), std::size_t(utf8.size()));
    out.append(body.data(), qsizetype(body.size()));
    const std::string_view tail = writer.Finish();
    out.append(tail.data(), qsizetype(tail.size()));
    unencodable = writer.Unencodable();
    return out;
}

} // namespace

FileReplacer::FileReplacer(const SearchQuery& query, const QString& replacement, const AnsiCodePage& codePage)
    : m_query(query)
    , m_replacement(replacement)
    , m_literalReplacement(replacement.toUtf8())
    , m_codePage(codePage)
{
}

QString FileReplacer::Expand(const QString& replacement, const QStringList& groups)
{
    QString out;
    out.reserve(replacement.size());
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        const QChar c = replacement[i];
        if (c != u'\\' || i + 1 == replacement.size()) {
            out += c;
            continue;
        }
        const QChar next = replacement[++i];
        if (next.isDigit() && next.digitValue() <= 9)
            out += groups.value(next.digitValue());
        else if (next == u'n')
            out += u'\n';
        else if (next == u't')
            out += u'\t';
        else if (next == u'\\')
            out += u'\\';
        else
            out += c, out += next; // not a tag: kept as typed
    }
    return out;
}

QByteArray FileReplacer::ReplaceText(const QByteArray& utf8, qint64& count) const
{
    count = 0;
    if (!m_query.IsValid())
        return utf8;
    TextMatcher matcher(m_query);
    const QRegularExpression expression(m_query.Pattern(), m_query.PatternOptions());
    QByteArray out;
    std::size_t copied = 0;
    const std::string_view text(utf8.constData(), std::size_t(utf8.size()));
    matcher.Search(text, 1, [&](const LineHit& hit) {
        out.append(utf8.constData() + copied, qsizetype(hit.matchStart - copied));
        if (m_query.UsesExpression() && m_query.Pattern().size() && expression.isValid()) {
            // The groups come from matching the line again at the same place.
            const QByteArray line = utf8.mid(qsizetype(hit.lineStart), qsizetype(hit.lineEnd - hit.lineStart));
            const QString lineText = QString::fromUtf8(line);
            const qsizetype at = QString::fromUtf8(line.left(qsizetype(hit.matchStart - hit.lineStart))).size();
            const QRegularExpressionMatch match = expression.match(
                lineText, at, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
            out += Expand(m_replacement, match.hasMatch() ? match.capturedTexts() : QStringList()).toUtf8();
        } else {
            out += m_literalReplacement;
        }
        copied = hit.matchStart + hit.matchLength;
        ++count;
        return true;
    });
    if (count == 0)
        return utf8;
    out.append(utf8.constData() + copied, utf8.size() - qsizetype(copied));
    return out;
}

FileReplacer::Result FileReplacer::Replace(const QString& path, const FileStamp& preview) const
{
    Result result;
    if (preview.IsValid() && preview.Compare(path) != FileStamp::Change::None)
        return {Status::Changed, 0, {}};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {Status::Unreadable, 0, file.errorString()};
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {Status::Unreadable, 0, file.errorString()};
    file.close();

    const FileSearcher::Detection detected = FileSearcher::Detect(bytes.constData(), std::size_t(bytes.size()));
    if (detected.binary)
        return {Status::Binary, 0, {}};
    if (TextEncoding::IsReadOnlyForm(detected.encoding))
        return {Status::NotKept, 0, {}};
    EncodingReader reader(detected.encoding, detected.bomLength, &m_codePage);
    QByteArray utf8;
    const std::string_view body = reader.Feed(bytes.constData(), std::size_t(bytes.size()));
    utf8.append(body.data(), qsizetype(body.size()));
    const std::string_view tail = reader.Finish();
    utf8.append(tail.data(), qsizetype(tail.size()));
    std::size_t unencodable = 0;
    // Only a file that comes back byte for byte may be rewritten: whatever the
    // replacement does not touch must stay as it was.
    if (reader.LostBytes() != 0
        || Encode(utf8, detected.encoding, detected.bomLength > 0, m_codePage, unencodable) != bytes
        || unencodable != 0)
        return {Status::NotKept, 0, {}};

    const QByteArray replaced = ReplaceText(utf8, result.count);
    if (result.count == 0)
        return {Status::NoMatch, 0, {}};
    const QByteArray encoded = Encode(replaced, detected.encoding, detected.bomLength > 0, m_codePage, unencodable);
    if (unencodable != 0)
        return {Status::Unencodable, 0, {}};
    // Read-only is the owner's write permission, as the file's properties show it.
    if (!(QFile::permissions(path) & QFileDevice::WriteOwner) || !QFileInfo(path).isWritable())
        return {Status::ReadOnly, 0, {}};
    // The last look before the write: a file changed while we worked is left alone.
    if (preview.IsValid() && preview.Compare(path) != FileStamp::Change::None)
        return {Status::Changed, 0, {}};
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(encoded) != encoded.size()) {
        const QString reason = out.errorString();
        out.cancelWriting();
        return {Status::WriteFailed, 0, reason};
    }
    QString reason;
    if (!CommitToDisk(out, &reason))
        return {Status::WriteFailed, 0, reason};
    result.status = Status::Replaced;
    return result;
}

QString FileReplacer::Describe(const Result& result)
{
    switch (result.status) {
    case Status::Replaced:
        return QObject::tr("%n occurrence(s) replaced", nullptr, int(result.count));
    case Status::NoMatch:
        return QObject::tr("no occurrences left to replace");
    case Status::ReadOnly:
        return QObject::tr("skipped: the file is read-only");
    case Status::Changed:
        return QObject::tr("skipped: the file changed since the preview");
    case Status::Unreadable:
        return QObject::tr("skipped: cannot read the file: %1").arg(result.error);
    case Status::Binary:
        return QObject::tr("skipped: binary file");
    case Status::NotKept:
        return QObject::tr("skipped: its encoding could not be written back unchanged");
    case Status::Unencodable:
        return QObject::tr("skipped: the replacement holds characters its encoding cannot store");
    case Status::WriteFailed:
        return QObject::tr("not replaced: cannot write the file: %1").arg(result.error);
    }
    return QString();
}
