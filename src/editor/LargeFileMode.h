#pragma once

#include <QtGlobal>

class AnsiCodePage;
class QString;

// When a document is too big, or has lines too long, to colour and fold: the control
// then spends its time on the text alone. Also which storage the control's document
// needs for text of a given size.
namespace LargeFileMode {

// Defaults of the settings EditSettings/LargeFileSize (in megabytes) and
// EditSettings/LongLineLength (in bytes).
constexpr qint64 DefaultLargeFileMegabytes = 64;
constexpr qint64 DefaultLongLineLength = 100000;

// The control's document options (SC_DOCUMENTOPTION_ bits).
constexpr int StylesNone = 0x0001;
constexpr int TextLarge = 0x0100;

// Megabytes as set, in bytes; zero or less means "never large".
qint64 ThresholdBytes(qint64 megabytes);
// A file of `fileSize` bytes is opened in large-file mode.
bool IsLarge(qint64 fileSize, qint64 thresholdBytes);
// The most bytes of UTF-8 that `fileSize` bytes in `encoding` (a TextEncoding code) can
// become.
qint64 MaxTextBytes(qint64 fileSize, int encoding);
// The exact number of bytes of UTF-8 that the "Ansi" file at `path` becomes in
// `codePage`: its size, plus one or two for each byte of the code page's upper half.
// -1 when the file cannot be read to its end.
qint64 Utf8SizeOfAnsiFile(const QString& path, const AnsiCodePage& codePage);
// What the control is sized for when it reads the file at `path` (of `fileSize` bytes, in
// `encoding`): the bound above, or where that bound alone would ask for large storage
// for "Ansi" text, the exact size, so that most "Ansi" files over 700 MB do not land in the
// control's slower large storage.
qint64 TextBytesOfFile(const QString& path, qint64 fileSize, int encoding, const AnsiCodePage& codePage);
// The options of a document that is to hold `textBytes` bytes of text: large text
// storage when its positions would pass 31 bits, no style bytes when it is not coloured.
int DocumentOptions(qint64 textBytes, bool coloured);
// The storage to give the control for text of `textBytes` bytes read from a file: a little
// more than the text, since storage that is filled exactly is copied whole at the next
// key; for text past 8 MB up to a sixth more (at most 64 MB), so that typing does not grow
// it by copying it either.
qint64 StorageFor(qint64 textBytes);
// Whether any line of the text is longer than `limit` bytes (line ends not counted).
// A limit of zero or less never finds one.
bool HasLineLongerThan(const char* text, qint64 length, qint64 limit);

} // namespace LargeFileMode
