#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "syntax/CSyntaxParser.h"

#include <QFile>
#include <QStringEncoder>

#include <gtest/gtest.h>

using SyntaxTestFiles::Write;

namespace {

// A hand-written definition: comments, odd spacing, single quotes, CRLF line ends,
// attributes in unusual order, unrelated attributes and a '>' inside a value. %1..%7
// are the colour values under test.
const char* const kTemplate =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!-- A hand-written file: keep me. -->\r\n"
    "<SYNTAX version='2'>\r\n"
    "  <PROPERTIES>\r\n"
    "    <MENU>Sample</MENU>   <!-- trailing comment -->\r\n"
    "    <COLOURS>\r\n"
    "      <COLOUR   EOLFILLED = '%1'  HEXBACK=\"%2\" NOTE='1 > 0' STYLE=\"0\" XHEXFORE=\"#111111\"\r\n"
    "              HEXFORE=\"%3\">Default</COLOUR>\r\n"
    "      <!-- <COLOUR STYLE=\"9\" HEXFORE=\"#000000\">Comment</COLOUR> -->\r\n"
    "      <COLOUR STYLE=\"1\" HEXFORE='%4'%5>  Comment  </COLOUR>\r\n"
    "      <COLOUR STYLE=\"2\" HEXFORE=\"#ABCDEF\" HEXBACK=\"#FEDCBA\">Not in the parser</COLOUR>\r\n"
    "      <COLOUR STYLE=\"3\" HEXFORE=\"%6\" HEXBACK=\"%7\" EOLFILLED=\"True\"/>\r\n"
    "      <COLOUR HEXFORE=\"#999999\">Skipped on reading</COLOUR>\r\n"
    "    </COLOURS>\r\n"
    "  </PROPERTIES>\r\n"
    "</SYNTAX>\r\n";

QByteArray Fill(const QStringList& values)
{
    QString text = QString::fromLatin1(kTemplate);
    for (int i = values.size(); i >= 1; --i)
        text.replace(QStringLiteral("%") + QString::number(i), values.at(i - 1));
    return text.toUtf8();
}

CSyntaxParser ReadBack(const QString& path)
{
    CSyntaxParser parser;
    EXPECT_TRUE(CSyntaxParser::ReadFile(path, parser));
    return parser;
}

TEST(SaveColours, RewritesOnlyTheThreeColourAttributesByteForByte)
{
    const QByteArray original = Fill({"False", "#FFFFFF", "#000000", "#008000", "", "#010203", "#040506"});
    const QString path = Write(TestSupport::MakeTempDir(), QStringLiteral("sample.config"), original);
    CSyntaxParser parser = ReadBack(path);
    ASSERT_EQ(parser.colourCount, 4);
    ASSERT_EQ(parser.colours[3].name, QString()); // an element without text has an empty name
    // A colour the file no longer names: its element is never touched.
    parser.colours[2].name = QStringLiteral("Renamed");
    parser.colours[2].fore = 0x0000FF;
    // Colours as read: only the Comment element, which lacks two attributes, changes.
    ASSERT_TRUE(parser.SaveColours());
    const QByteArray completed = Fill({"False", "#FFFFFF", "#000000", "#008000",
                                       " HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\"", "#010203", "#040506"});
    EXPECT_EQ(TestSupport::ReadFile(path), completed);
    ASSERT_TRUE(parser.SaveColours());
    EXPECT_EQ(TestSupport::ReadFile(path), completed) << "a second save changes nothing";

    parser.colours[0] = {0x0000FF, 0xE0E0E0, 0, QStringLiteral("Default"), true};
    parser.colours[1].fore = 0x563412;
    parser.colours[3].fore = 0xCCBBAA;
    parser.colours[3].back = 0x112233;
    parser.colours[3].eolFilled = false;
    ASSERT_TRUE(parser.SaveColours());
    EXPECT_EQ(TestSupport::ReadFile(path), Fill({"True", "#E0E0E0", "#FF0000", "#123456",
        " HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\"", "#AABBCC", "#332211"}).replace("EOLFILLED=\"True\"/>", "EOLFILLED=\"False\"/>"));
    const CSyntaxParser reread = ReadBack(path);
    for (int i : {0, 1, 3})
        EXPECT_EQ(reread.colours[size_t(i)], parser.colours[size_t(i)]) << i;
}

// The file keeps its encoding and mark; every element takes the first colour of its name.
TEST(SaveColours, KeepsTheEncodingAndItsMark)
{
    const QString text = QString::fromUtf8(SyntaxTestFiles::Definition(
        "<MENU>Wïde</MENU><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">"
        "Défault</COLOUR><COLOUR STYLE=\"1\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">Défault</COLOUR>"
        "</COLOURS>"));
    const QString changed = QString(text).replace(QStringLiteral("#000000"), QStringLiteral("#FF0000"));
    const auto utf16 = [](const QString& s) {
        QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
        return QByteArray(encoder.encode(QString(s).replace(QStringLiteral("UTF-8"), QStringLiteral("UTF-16"))));
    };
    const QList<std::pair<QByteArray, QByteArray>> cases = {
        {"\xEF\xBB\xBF" + text.toUtf8(), "\xEF\xBB\xBF" + changed.toUtf8()}, {utf16(text), utf16(changed)}};
    for (const auto& [original, expected] : cases) {
        const QString path = Write(TestSupport::MakeTempDir(), QStringLiteral("enc.config"), original);
        CSyntaxParser parser = ReadBack(path);
        ASSERT_EQ(parser.colours[1].name, QStringLiteral("Défault"));
        parser.colours[0].fore = 0x0000FF;
        parser.colours[1].fore = 0x00FF00; // shadowed by the first of that name
        ASSERT_TRUE(parser.SaveColours());
        EXPECT_EQ(TestSupport::ReadFile(path), expected);
    }
}

TEST(SaveColours, LeavesAVanishedOrSpoiltFileAlone)
{
    CSyntaxParser noPath;
    noPath.colourCount = 1;
    EXPECT_FALSE(noPath.SaveColours());

    const QString path = Write(TestSupport::MakeTempDir(), QStringLiteral("s.config"), SyntaxTestFiles::Simple("S", ".s"));
    CSyntaxParser parser = ReadBack(path);
    parser.colours[0].fore = 0x0000FF;
    const QByteArray spoilt = "<SYNTAX><PROPERTIES><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\">Default";
    TestSupport::WriteFile(path, spoilt);
    EXPECT_FALSE(parser.SaveColours());
    EXPECT_EQ(TestSupport::ReadFile(path), spoilt);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(parser.SaveColours());
    EXPECT_FALSE(QFile::exists(path));
}

} // namespace
