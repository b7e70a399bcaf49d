#pragma once

#include "TestSupport.h"
#include "settings/AppPaths.h"
#include "syntax/CSyntaxParser.h"

#include <QDir>

// Small builders for definition files used across the syntax tests.
namespace SyntaxTestFiles {

inline QByteArray Definition(const QByteArray& propertiesBody)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<SYNTAX>\n<PROPERTIES>\n" + propertiesBody
           + "\n</PROPERTIES>\n</SYNTAX>\n";
}

inline QByteArray Colour(int style, const QByteArray& fore, const QByteArray& name, const QByteArray& extra = {})
{
    return "<COLOUR STYLE=\"" + QByteArray::number(style) + "\" HEXFORE=\"" + fore + "\"" + extra + ">" + name
           + "</COLOUR>\n";
}

// A definition with a menu name, extensions, a lexer and one valid colour.
inline QByteArray Simple(const QByteArray& menu, const QByteArray& extensions, const QByteArray& lexer = "cpp")
{
    return Definition("<MENU>" + menu + "</MENU><EXTENSION>" + extensions + "</EXTENSION><LEXER>" + lexer
                      + "</LEXER><COLOURS>" + Colour(0, "#000000", "Default") + "</COLOURS>");
}

inline QString Write(const QString& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = QDir(folder).filePath(name);
    TestSupport::WriteFile(path, bytes);
    return path;
}

// Writes the bytes to a fresh folder and reads them; `ok` tells whether ReadFile succeeded.
inline CSyntaxParser Read(const QByteArray& bytes, bool* ok)
{
    CSyntaxParser parser;
    *ok = CSyntaxParser::ReadFile(Write(TestSupport::MakeTempDir(), QStringLiteral("test.config"), bytes), parser);
    return parser;
}

inline QString ShippedSyntaxFolder()
{
    return QDir(AppPaths::ShippedDataFolder()).filePath(QStringLiteral("syntax"));
}

} // namespace SyntaxTestFiles
