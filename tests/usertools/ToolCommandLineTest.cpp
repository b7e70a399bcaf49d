#include "TestSupport.h"
#include "usertools/ToolCommandLine.h"

#include <gtest/gtest.h>

namespace {

ToolContext Document(const QString& path, const QString& selection = {})
{
    ToolContext context;
    context.filePath = path;
    context.line = 12;
    context.column = 5;
    context.selection = selection;
    context.appDir = QStringLiteral("/work dir");
    return context;
}

struct SplitCase
{
    const char* name;
    QString arguments;
    ToolContext context;
    QStringList expected;
};

using SplitArgumentsTest = ::testing::TestWithParam<SplitCase>;

TEST_P(SplitArgumentsTest, GivesTheWordsAShellWouldWithoutRunningOne)
{
    const SplitCase& c = GetParam();
    EXPECT_EQ(ToolCommandLine::SplitArguments(c.arguments, c.context), c.expected);
}

const QString kSpaced = QStringLiteral("/home/me/My Files/it's \"x\".c");

INSTANTIATE_TEST_SUITE_P(
    Cases, SplitArgumentsTest,
    ::testing::Values(
        SplitCase{"PlainWords", QStringLiteral("-c  -Wall\t-o out"), {},
                  {"-c", "-Wall", "-o", "out"}},
        SplitCase{"PathWithSpacesAndQuotesIsOneArgument", QStringLiteral("-c $FileName -o x"),
                  Document(kSpaced), {"-c", kSpaced, "-o", "x"}},
        SplitCase{"VariableInsideAWordKeepsTheWord", QStringLiteral("--file=$FileName"),
                  Document(kSpaced), {QStringLiteral("--file=") + kSpaced}},
        SplitCase{"DoubleQuotesGroupAndExpand", QStringLiteral("\"$FileTitle at $Line:$Column\""),
                  Document(QStringLiteral("/a/b/main.test.cpp")), {"main.test at 12:5"}},
        SplitCase{"SingleQuotesKeepVariablesLiteral", QStringLiteral("'$FileName' \"a\\\"b\""),
                  Document(QStringLiteral("/a.c")), {"$FileName", "a\"b"}},
        SplitCase{"SelectionWithVariableTextIsNotExpandedAgain", QStringLiteral("$Selection"),
                  Document(QStringLiteral("/a.c"), QStringLiteral("$FileName; rm -rf x")),
                  {"$FileName; rm -rf x"}},
        SplitCase{"EmptySelectionDropsTheBareWord", QStringLiteral("grep $Selection $FileName"),
                  Document(QStringLiteral("/a.c")), {"grep", "/a.c"}},
        SplitCase{"EmptySelectionInQuotesStaysAnEmptyArgument", QStringLiteral("grep \"$Selection\" x"),
                  Document(QStringLiteral("/a.c")), {"grep", "", "x"}},
        SplitCase{"NoDocumentLeavesFileVariablesEmpty", QStringLiteral("$FileName $FileDir $Line -v"),
                  ToolContext{}, {"-v"}},
        SplitCase{"WindowsPathsKeepTheirBackslashes", QStringLiteral("C:\\tools\\bin \\\\server\\share"),
                  {}, {"C:\\tools\\bin", "\\\\server\\share"}},
        SplitCase{"EscapedBlankJoinsWords", QStringLiteral("a\\ b c"), {}, {"a b", "c"}},
        SplitCase{"UnclosedQuoteRunsToTheEnd", QStringLiteral("x \"a b"), {}, {"x", "a b"}},
        SplitCase{"NamesMatchWithoutCaseAndUnknownStays", QStringLiteral("$filedir $Home"),
                  Document(QStringLiteral("/src/x/a.c")), {"/src/x", "$Home"}},
        SplitCase{"AppDirIsOneWord", QStringLiteral("$AppDir/bin"), Document(QString()),
                  {"/work dir/bin"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ToolCommandLine, ExpandTextReplacesEveryVariableOnce)
{
    const ToolContext context = Document(QStringLiteral("/p/q/file.tar.gz"), QStringLiteral("$Line"));
    EXPECT_EQ(ToolCommandLine::ExpandText(QStringLiteral("$FileDir|$FileTitle|$Selection|$AppDir|$$"), context),
              QStringLiteral("/p/q|file.tar|$Line|/work dir|$$"));
}

TEST(ToolCommandLine, DescribeQuotesWordsThatNeedIt)
{
    EXPECT_EQ(ToolCommandLine::Describe(QStringLiteral("gcc"), {QStringLiteral("-c"), QStringLiteral("a b.c"), QString()}),
              QStringLiteral("gcc -c \"a b.c\" \"\""));
}

} // namespace
