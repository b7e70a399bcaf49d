#pragma once

#include <QByteArray>
#include <QString>

class CSyntaxParser;

// Small builders for definition files used across the syntax tests.
namespace SyntaxTestFiles {

// <SYNTAX><PROPERTIES>body</PROPERTIES></SYNTAX> with an XML declaration.
QByteArray Definition(const QByteArray& propertiesBody);

// A definition with a menu name, extensions, a lexer and one valid colour.
QByteArray Simple(const QByteArray& menu, const QByteArray& extensions, const QByteArray& lexer = "cpp");

// <COLOURS> holding one COLOUR per call of the builder below.
QByteArray Colour(int style, const QByteArray& fore, const QByteArray& name, const QByteArray& extra = {});

// Writes `bytes` as `name` into `folder` and returns the full path.
QString Write(const QString& folder, const QString& name, const QByteArray& bytes);

// Writes the bytes to a fresh folder and reads them; `ok` tells whether ReadFile succeeded.
CSyntaxParser Read(const QByteArray& bytes, bool* ok = nullptr);

// The folder holding the definitions we ship.
QString ShippedSyntaxFolder();

} // namespace SyntaxTestFiles
