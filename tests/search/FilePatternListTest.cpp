#include "search/FilePatternList.h"

#include <gtest/gtest.h>

namespace {

struct PatternCase
{
    const char* patterns;
    const char* name;
    bool expected;
};

class FilePatternListMatch : public ::testing::TestWithParam<PatternCase> {};

TEST_P(FilePatternListMatch, DecidesByNameAlone)
{
    const PatternCase& c = GetParam();
    const FilePatternList list(QString::fromUtf8(c.patterns));
    EXPECT_EQ(list.Matches(QString::fromUtf8(c.name)), c.expected)
        << "patterns \"" << c.patterns << "\" name \"" << c.name << "\"";
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, FilePatternListMatch,
    ::testing::Values(
        // Every file
        PatternCase{"", "anything", true},
        PatternCase{"*.*", "Makefile", true}, // no dot, still taken
        // Separators: semicolons, spaces, both
        PatternCase{"*.cpp;*.h", "main.h", true},
        PatternCase{"*.cpp *.h", "main.h", true},
        PatternCase{"*.cpp;*.h", "main.hpp", false},
        PatternCase{"*.cpp;*.h", "main.cpp.orig", false},
        // Letter case is ignored
        PatternCase{"*.cpp", "MAIN.CPP", true},
        // "?" is one character, also a multi-byte one
        PatternCase{"?.txt", "ab.txt", false},
        PatternCase{"?.txt", "\xC3\xA9.txt", true},
        // Several stars need backtracking
        PatternCase{"*test*.c*", "my_test_file.cc", true},
        PatternCase{"*test*.c*", "my_tes_file.cc", false},
        // A name without wildcards is exact
        PatternCase{"Makefile", "Makefile", true},
        PatternCase{"Makefile", "Makefile.am", false}));

} // namespace
