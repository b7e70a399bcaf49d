#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "syntax/CSyntaxParser.h"

#include <QDir>
#include <QFile>
#include <QStringEncoder>

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using SyntaxTestFiles::Write;

namespace {

// A definition with comments, odd spacing, single quotes, CRLF line ends, attributes in
// unusual order, unrelated attributes and a '>' inside a value. %1..%8 are the colour
// values under test.
const char* const kTemplate =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<!-- A hand-written file: keep me. -->\r\n"
    "<SYNTAX version='2'>\r\n"
    "  <PROPERTIES>\r\n"
    "    <MENU>Sample</MENU>   <!-- trailing comment -->\r\n"
    "    <COLOURS>\r\n"
    "      <COLOUR   EOLFILLED = 'False'  HEXBACK=\"%2\" NOTE='1 > 0' STYLE=\"0\" XHEXFORE=\"#111111\"\r\n"
    "              HEXFORE=\"%1\">Default</COLOUR>\r\n"
    "      <!-- <COLOUR STYLE=\"9\" HEXFORE=\"#000000\">Comment</COLOUR> -->\r\n"
    "      <COLOUR STYLE=\"1\" HEXFORE='%3'%4>  Comment  </COLOUR>\r\n"
    "      <COLOUR STYLE=\"2\" HEXFORE=\"#ABCDEF\" HEXBACK=\"#FEDCBA\">Not in the parser</COLOUR>\r\n"
    "      <COLOUR STYLE=\"3\" HEXFORE=\"%5\" HEXBACK=\"%6\" EOLFILLED=\"%7\"/>\r\n"
    "      <COLOUR HEXFORE=\"%8\">Skipped on reading</COLOUR>\r\n"
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

class SaveColours : public ::testing::Test
{
protected:
    void SetUp() override { folder = TestSupport::MakeTempDir(); }

    CSyntaxParser ReadBack(const QString& path)
    {
        CSyntaxParser parser;
        EXPECT_TRUE(CSyntaxParser::ReadFile(path, parser));
        return parser;
    }

    QString folder;
};

TEST_F(SaveColours, RewritesOnlyTheThreeColourAttributes)
{
    const QByteArray original = Fill({"#000000", "#FFFFFF", "#008000", "", "#010203", "#040506", "True", "#999999"});
    const QString path = Write(folder, QStringLiteral("sample.config"), original);
    CSyntaxParser parser = ReadBack(path);
    ASSERT_EQ(parser.colourCount, 4);
    ASSERT_EQ(parser.colours[1].name, QStringLiteral("Comment"));
    ASSERT_EQ(parser.colours[3].name, QString()); // an element without text has an empty name
    // A colour the file no longer names: its element must not be touched.
    parser.colours[2].name = QStringLiteral("Renamed");
    parser.colours[2].fore = 0x0000FF;

    parser.colours[0].fore = 0x0000FF;           // "#FF0000"
    parser.colours[0].back = 0xE0E0E0;
    parser.colours[0].eolFilled = true;
    parser.colours[1].fore = 0x563412;           // "#123456"
    parser.colours[1].back = 0xFFFFFF;
    parser.colours[1].eolFilled = false;
    parser.colours[3].fore = 0xCCBBAA;
    parser.colours[3].back = 0x112233;
    parser.colours[3].eolFilled = false;
    ASSERT_TRUE(parser.SaveColours());

    // The Comment element had no HEXBACK or EOLFILLED: both are added after its last attribute.
    QByteArray expected = Fill({"#FF0000", "#E0E0E0", "#123456", " HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\"",
                                "#AABBCC", "#332211", "False", "#999999"});
    expected.replace("EOLFILLED = 'False'", "EOLFILLED = 'True'");
    EXPECT_EQ(TestSupport::ReadFile(path), expected);

    const CSyntaxParser reread = ReadBack(path);
    for (int i : {0, 1, 3}) {
        EXPECT_EQ(reread.colours[size_t(i)].fore, parser.colours[size_t(i)].fore) << i;
        EXPECT_EQ(reread.colours[size_t(i)].back, parser.colours[size_t(i)].back) << i;
        EXPECT_EQ(reread.colours[size_t(i)].eolFilled, parser.colours[size_t(i)].eolFilled) << i;
    }
}

TEST_F(SaveColours, UnchangedColoursLeaveTheFileByteForByte)
{
    const QByteArray original = Fill({"#000000", "#FFFFFF", "#008000", " HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\"",
                                      "#010203", "#040506", "True", "#999999"});
    const QString path = Write(folder, QStringLiteral("same.config"), original);
    CSyntaxParser parser = ReadBack(path);
    ASSERT_EQ(parser.colours[2].name, QStringLiteral("Not in the parser"));
    parser.colours[2].name = QStringLiteral("Renamed"); // that element lacks EOLFILLED
    ASSERT_TRUE(parser.SaveColours());
    EXPECT_EQ(TestSupport::ReadFile(path), original);
}

TEST_F(SaveColours, NamesMatchExactlyAndTheFirstColourOfANameWins)
{
    const QByteArray original = SyntaxTestFiles::Definition(
        "<COLOURS>\n"
        "<COLOUR STYLE=\"1\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">Word</COLOUR>\n"
        "<COLOUR STYLE=\"2\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">Word</COLOUR>\n"
        "<COLOUR STYLE=\"3\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">word</COLOUR>\n"
        "</COLOURS>");
    const QString path = Write(folder, QStringLiteral("names.config"), original);
    CSyntaxParser parser = ReadBack(path);
    ASSERT_EQ(parser.colourCount, 3);
    parser.colours[0].fore = 0x0000FF;
    parser.colours[1].fore = 0x00FF00; // shadowed by the first "Word"
    parser.colours[2].name = QStringLiteral("WORD"); // no element of that name any more
    parser.colours[2].fore = 0xFF0000;
    ASSERT_TRUE(parser.SaveColours());
    const CSyntaxParser reread = ReadBack(path);
    EXPECT_EQ(reread.colours[0].fore, 0x0000FFu);
    EXPECT_EQ(reread.colours[1].fore, 0x0000FFu);
    EXPECT_EQ(reread.colours[2].fore, 0x000000u);
}

TEST_F(SaveColours, KeepsAUtf8Mark)
{
    const QByteArray original = "\xEF\xBB\xBF" + SyntaxTestFiles::Simple("Marked", ".m");
    const QString path = Write(folder, QStringLiteral("bom.config"), original);
    CSyntaxParser parser = ReadBack(path);
    parser.colours[0].fore = 0x00FF00;
    ASSERT_TRUE(parser.SaveColours());
    QByteArray expected = original;
    expected.replace("HEXFORE=\"#000000\"", "HEXFORE=\"#00FF00\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\"");
    EXPECT_EQ(TestSupport::ReadFile(path), expected);
}

TEST_F(SaveColours, KeepsUtf16AndItsMark)
{
    const QString text = QString::fromUtf8(SyntaxTestFiles::Definition(
        "<MENU>Wïde</MENU><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" "
        "EOLFILLED=\"False\">Défault</COLOUR></COLOURS>")).replace(QStringLiteral("UTF-8"), QStringLiteral("UTF-16"));
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QString path = Write(folder, QStringLiteral("wide.config"), encoder.encode(text));
    CSyntaxParser parser = ReadBack(path);
    ASSERT_EQ(parser.colours[0].name, QStringLiteral("Défault"));
    parser.colours[0].fore = 0x0000FF;
    ASSERT_TRUE(parser.SaveColours());

    QString expectedText = text;
    expectedText.replace(QStringLiteral("HEXFORE=\"#000000\""), QStringLiteral("HEXFORE=\"#FF0000\""));
    QStringEncoder expectedEncoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray(expectedEncoder.encode(expectedText)));
    EXPECT_EQ(ReadBack(path).colours[0].fore, 0x0000FFu);
}

TEST_F(SaveColours, WritesNothingWithoutAUsableFile)
{
    CSyntaxParser noPath;
    noPath.colourCount = 1;
    EXPECT_FALSE(noPath.SaveColours());

    const QString path = Write(folder, QStringLiteral("vanishing.config"), SyntaxTestFiles::Simple("V", ".v"));
    CSyntaxParser parser = ReadBack(path);
    ASSERT_TRUE(QFile::remove(path));
    parser.colours[0].fore = 0x0000FF;
    EXPECT_FALSE(parser.SaveColours());
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(SaveColours, LeavesAFileThatTurnedMalformedAlone)
{
    const QString path = Write(folder, QStringLiteral("spoilt.config"), SyntaxTestFiles::Simple("S", ".s"));
    CSyntaxParser parser = ReadBack(path);
    const QByteArray spoilt = "<SYNTAX><PROPERTIES><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\">Default";
    TestSupport::WriteFile(path, spoilt);
    parser.colours[0].fore = 0x0000FF;
    EXPECT_FALSE(parser.SaveColours());
    EXPECT_EQ(TestSupport::ReadFile(path), spoilt);
}

#ifdef Q_OS_UNIX
TEST_F(SaveColours, LeavesAReadOnlyFolderAlone)
{
    const QString path = Write(folder, QStringLiteral("locked.config"), SyntaxTestFiles::Simple("L", ".l"));
    const QByteArray before = TestSupport::ReadFile(path);
    CSyntaxParser parser = ReadBack(path);
    parser.colours[0].fore = 0x0000FF;
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const bool saved = parser.SaveColours();
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (getuid() == 0)
        GTEST_SKIP() << "root writes anywhere";
    EXPECT_FALSE(saved);
    EXPECT_EQ(TestSupport::ReadFile(path), before);
}
#endif

} // namespace
