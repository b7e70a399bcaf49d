#include "TestSupport.h"
#include "usertools/OutputLink.h"

#include <QDir>
#include <QSet>
#include <gtest/gtest.h>

namespace {

struct LinkCase
{
    const char* name;
    QString text;
    bool isLink;
    OutputLink expected;
};

// Files the parser may take as existing.
const QSet<QString> kExisting = {QStringLiteral("/proj/src/we:ird.c")};

using OutputLinkTest = ::testing::TestWithParam<LinkCase>;

TEST_P(OutputLinkTest, Recognises)
{
    const LinkCase& c = GetParam();
    OutputLink link;
    const bool found = OutputLinkParser::Parse(c.text, QStringLiteral("/proj"), link,
                                               [](const QString& p) { return kExisting.contains(p); });
    ASSERT_EQ(found, c.isLink) << c.text.toStdString();
    if (found) {
        EXPECT_EQ(link, c.expected) << link.path.toStdString() << ":" << link.line << ":" << link.column;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Forms, OutputLinkTest,
    ::testing::Values(
        LinkCase{"GccWithColumn", QStringLiteral("src/main.c:12:7: error: expected ';'"), true,
                 {QStringLiteral("/proj/src/main.c"), 12, 7}},
        LinkCase{"LineWithoutColumn", QStringLiteral("/usr/include/x.h:300: warning: old"), true,
                 {QStringLiteral("/usr/include/x.h"), 300, 0}},
        LinkCase{"GrepStyleLineThenText", QStringLiteral("notes.txt:4:12 apples"), true,
                 {QStringLiteral("/proj/notes.txt"), 4, 12}},
        LinkCase{"BareReferenceAtLineEnd", QStringLiteral("../lib/a.py:9"), true,
                 {QStringLiteral("/lib/a.py"), 9, 0}},
        LinkCase{"MsvcParentheses", QStringLiteral("C:\\src\\app\\main.cpp(42): error C2065"), true,
                 {QStringLiteral("C:\\src\\app\\main.cpp"), 42, 0}},
        LinkCase{"MsvcParenthesesWithColumn", QStringLiteral("widget.cpp(8,15): warning C4100"), true,
                 {QStringLiteral("/proj/widget.cpp"), 8, 15}},
        LinkCase{"WindowsDriveWithColons", QStringLiteral("D:/work/a.c:3:1: note"), true,
                 {QStringLiteral("D:/work/a.c"), 3, 1}},
        LinkCase{"ColonInFileNameWhenTheFileExists", QStringLiteral("src/we:ird.c:10: bad"), true,
                 {QStringLiteral("/proj/src/we:ird.c"), 10, 0}},
        LinkCase{"MakeErrorLineIsNoLink", QStringLiteral("make: *** [Makefile:3: all] Error 1"),
                 false, {}},
        LinkCase{"IndentedLine", QStringLiteral("    lib.rs:5:2: here"), true,
                 {QStringLiteral("/proj/lib.rs"), 5, 2}},
        LinkCase{"TimeOfDayIsNoLink", QStringLiteral("12:30:45 build started"), false, {}},
        LinkCase{"SentenceIsNoLink", QStringLiteral("Compilation finished at 3: ok"), false, {}},
        LinkCase{"LineZeroIsNoLink", QStringLiteral("a.c:0: x"), false, {}},
        LinkCase{"PlainTextIsNoLink", QStringLiteral("All done."), false, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OutputLinkParser, ColonInNameOfAFileOnDiskResolvesAgainstTheToolsFolder)
{
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/sub/a:b.txt"), "x\n");
    OutputLink link;
    ASSERT_TRUE(OutputLinkParser::Parse(QStringLiteral("sub/a:b.txt:1:2: found"), dir, link));
    EXPECT_EQ(link.path, QDir::cleanPath(dir + QStringLiteral("/sub/a:b.txt")));
    EXPECT_EQ(link.line, 1);
    EXPECT_EQ(link.column, 2);
}

} // namespace
