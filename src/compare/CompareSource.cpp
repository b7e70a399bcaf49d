#include "compare/CompareSource.h"

#include "editor/EncodingReader.h"
#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"

#include <QFile>

CompareSource CompareSource::Read(const QString& path, const AnsiCodePage* codePage)
{
    CompareSource source;
    source.path = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        source.error = file.errorString();
        return source;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        source.error = file.errorString();
        return source;
    }
    TextFileDetector detector;
    detector.ExamineBuffer(bytes.constData(),
                           std::size_t(std::min<qsizetype>(bytes.size(), TextFileDetector::SampleSize)));
    source.binary = detector.IsBinary();
    source.encoding = detector.Encoding();
    source.bomLength = detector.BomLength();
    source.writeMark = source.bomLength > 0;
    if (source.binary) {
        source.text = std::move(bytes);
        return source;
    }
    if (source.encoding == TextEncoding::Utf8) {
        // The control holds UTF-8 as it is: only the mark goes.
        if (source.bomLength > 0)
            bytes.remove(0, source.bomLength);
        source.text = std::move(bytes);
        return source;
    }
    EncodingReader reader(source.encoding, source.bomLength, codePage);
    const std::string_view text = reader.Feed(bytes.constData(), std::size_t(bytes.size()));
    source.text = QByteArray(text.data(), qsizetype(text.size()));
    const std::string_view rest = reader.Finish();
    source.text.append(rest.data(), qsizetype(rest.size()));
    source.lostBytes = qint64(reader.LostBytes());
    return source;
}
