#include "SyntaxTestFiles.h"

#include "TestSupport.h"
#include "app/AppPaths.h"
#include "syntax/CSyntaxParser.h"

#include <QDir>

namespace SyntaxTestFiles {

QByteArray Definition(const QByteArray& propertiesBody)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<SYNTAX>\n<PROPERTIES>\n" + propertiesBody
           + "\n</PROPERTIES>\n</SYNTAX>\n";
}

QByteArray Simple(const QByteArray& menu, const QByteArray& extensions, const QByteArray& lexer)
{
    return Definition("<MENU>" + menu + "</MENU><EXTENSION>" + extensions + "</EXTENSION><LEXER>" + lexer
                      + "</LEXER><COLOURS>" + Colour(0, "#000000", "Default") + "</COLOURS>");
}

QByteArray Colour(int style, const QByteArray& fore, const QByteArray& name, const QByteArray& extra)
{
    return "<COLOUR STYLE=\"" + QByteArray::number(style) + "\" HEXFORE=\"" + fore + "\"" + extra + ">" + name
           + "</COLOUR>\n";
}

QString Write(const QString& folder, const QString& name, const QByteArray& bytes)
{
    const QString path = QDir(folder).filePath(name);
    TestSupport::WriteFile(path, bytes);
    return path;
}

CSyntaxParser Read(const QByteArray& bytes, bool* ok)
{
    const QString path = Write(TestSupport::MakeTempDir(), QStringLiteral("test.config"), bytes);
    CSyntaxParser parser;
    const bool read = CSyntaxParser::ReadFile(path, parser);
    if (ok)
        *ok = read;
    return parser;
}

QString ShippedSyntaxFolder()
{
    return QDir(AppPaths::ShippedDataFolder()).filePath(QStringLiteral("syntax"));
}

} // namespace SyntaxTestFiles
