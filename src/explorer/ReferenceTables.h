#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// The three fixed lists of the List Explorer: HTML tags, HTML entities and character
// codes. Texts are Windows-1252 bytes; the list decodes them for display and the
// editor converts them to the document's code page on insert.
namespace ReferenceTables {

enum Table { HtmlTags = 0, HtmlEntities = 1, AsciiCodes = 2 };
inline constexpr int TableCount = 3;

// Where the editor's selection goes in an insert text.
inline constexpr char ReplaceMarker[] = "<%REPLACE%>";

struct Row
{
    QByteArray display; // the list row
    QByteArray insert;  // what a double click puts into the editor
};

QList<Row> Rows(Table table);
// The chooser's entry: "HTML Tags", "HTML Entities", "Ascii Codes".
QString TableName(Table table);

} // namespace ReferenceTables
