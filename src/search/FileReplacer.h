#pragma once

#include "SearchQuery.h"
#include "editor/AnsiCodePage.h"
#include "editor/FileStamp.h"

#include <QByteArray>
#include <QString>

// Replace in Files for a file that is not open: reads it as the editor would (encoding and
// mark detected, "Ansi" through its code page), replaces every match line by line and
// writes it back in the same encoding, with the same mark and the same line ends, beside
// the old file and renamed over it. A file that cannot come back byte for byte outside
// the matches is not written at all.
class FileReplacer
{
public:
    enum class Status {
        Replaced,
        NoMatch,
        ReadOnly,
        Changed,    // written by someone else since the preview
        Unreadable,
        Binary,
        NotKept,    // its encoding would not survive the round trip
        Unencodable, // the new text holds characters its encoding cannot
        WriteFailed,
    };
    struct Result
    {
        Status status = Status::NoMatch;
        qint64 count = 0;
        QString error;
    };

    // With `regExp` set in the query the replacement's \0..\9 take the match and its
    // groups, and \n, \t and \\ their characters; otherwise it is inserted as it stands.
    FileReplacer(const SearchQuery& query, const QString& replacement,
                 const AnsiCodePage& codePage = AnsiCodePage::Default());

    // Replaces in `path`. `preview` is the file as it was when the matches were shown; a
    // file that differs from it now is left alone.
    Result Replace(const QString& path, const FileStamp& preview) const;

    // Every match of the query in UTF-8 text replaced; `count` gets the number.
    QByteArray ReplaceText(const QByteArray& utf8, qint64& count) const;

    // The replacement for one expression match.
    static QString Expand(const QString& replacement, const QStringList& groups);

    // One line of the report for a result, as the Output bar shows it.
    static QString Describe(const Result& result);

private:
    SearchQuery m_query;
    QString m_replacement;
    QByteArray m_literalReplacement;
    AnsiCodePage m_codePage;
};
