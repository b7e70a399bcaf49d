#include "app/CommandLine.h"

#include <gtest/gtest.h>

namespace {

struct LineCase
{
    const char* name;
    QStringList args;
    QStringList arguments; // what reaches the program
    bool help;
    const char* errorHas; // empty: no error
};

using CommandLineCases = ::testing::TestWithParam<LineCase>;

TEST_P(CommandLineCases, FilesOptionsAndMistakes)
{
    const LineCase& c = GetParam();
    const CommandLine line = CommandLine::Parse(c.args);
    EXPECT_EQ(line.help, c.help);
    if (*c.errorHas) {
        EXPECT_TRUE(line.error.contains(QLatin1String(c.errorHas))) << line.error.toStdString();
    } else {
        EXPECT_TRUE(line.error.isEmpty()) << line.error.toStdString();
        EXPECT_EQ(line.arguments, c.arguments);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CommandLineCases,
    ::testing::Values(
        LineCase{"files", {"a.txt", "dir/b.c"}, {"a.txt", "dir/b.c"}, false, ""},
        LineCase{"nothing", {}, {}, false, ""},
        LineCase{"help", {"--help"}, {}, true, ""},
        LineCase{"short_help", {"a.txt", "-h"}, {"a.txt"}, true, ""},
        // An unknown option must not become a new file of that name.
        LineCase{"unknown_option", {"--reuse", "a.txt"}, {}, false, "--reuse"},
        LineCase{"compare_kept_for_the_compare", {"-d", "l.txt", "r.txt", "x.txt"},
                 {"-d", "l.txt", "r.txt", "x.txt"}, false, ""},
        LineCase{"compare_short_of_files", {"--compare", "l.txt"}, {}, false, "--compare"},
        LineCase{"dash_names_after_double_dash", {"a.txt", "--", "-odd", "--help"},
                 {"a.txt", "./-odd", "./--help"}, false, ""},
        LineCase{"lone_dash_is_a_name", {"-"}, {"-"}, false, ""}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
