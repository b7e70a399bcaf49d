#pragma once

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

// The one way definition files are parsed. pugixml never fetches a DTD or an external
// entity: a DOCTYPE is skipped and an undeclared entity reference stays literal text.
namespace SyntaxXml {

// Files above this size are not definition files; reading them is refused.
constexpr qint64 MaxFileSize = 16 * 1024 * 1024;

// Reads the file's bytes. False when it is missing, unreadable or too large.
bool ReadBytes(const QString& path, QByteArray& bytes);

// Parses `bytes`, detecting the encoding from the mark or the first characters.
bool Parse(const QByteArray& bytes, pugi::xml_document& document);

// The first PROPERTIES element anywhere in the document, or a null node.
pugi::xml_node FindProperties(const pugi::xml_document& document);

// All the text below `node`, character data included, in document order.
QString InnerText(pugi::xml_node node);

} // namespace SyntaxXml
