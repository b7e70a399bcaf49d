#include "SyntaxTestFiles.h"
#include "framework/ThemeColours.h"
#include "settings/ViewSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <Qsci/qsciscintillabase.h>

#include <QDir>
#include <QSet>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

namespace {

using Sci = QsciScintillaBase;

struct Language
{
    const char* menu;
    const char* extension; // one the language claims
    const char* sample;
};

void PrintTo(const Language& language, std::ostream* os)
{
    *os << language.menu;
}

const Language kLanguages[] = {
    {"Text", ".txt", "Just some words.\n"},
    {"C", ".c", "#include <stdio.h>\n/* entry */\nint main(void) {\n    printf(\"%d\\n\", 42); // done\n    return 'x';\n}\n"},
    {"C++", ".cpp", "#pragma once\nnamespace app {\ntemplate <typename T> class Box { T v = 0x1F; };\n// note\nauto s = std::string(\"hi\");\n}\n"},
    {"C#", ".cs", "using System;\n/// <summary>Doc</summary>\npublic class P { static void Main() { var s = @\"raw\"; int n = 3; } }\n"},
    {"Java", ".java", "package a.b;\n/** Doc @param x */\npublic final class A { int f(int x) { return x + 1; } // end\n}\n"},
    {"JavaScript", ".js", "// greet\nconst re = /ab+c/g;\nfunction hi(name) { return `Hello ${name}` + 'x' + 10; }\n"},
    {"TypeScript", ".ts", "interface P { name: string; age?: number }\nexport const p: P = { name: \"x\", age: 3 }; /* c */\n"},
    {"JSON", ".json", "{\n  \"name\": \"morvane\",\n  \"version\": 2,\n  \"ok\": true,\n  \"list\": [1, 2.5, null]\n}\n"},
    {"Python", ".py", "import os\n# comment\n@decorator\ndef f(x):\n    \"\"\"Doc.\"\"\"\n    return len(x) + 1.5\nclass C: pass\n"},
    {"Ruby", ".rb", "# comment\nclass Foo\n  def bar(x)\n    @v = :sym\n    puts \"hi #{x}\" if x > 1\n  end\nend\n"},
    {"Perl", ".pl", "use strict;\n# comment\nmy $x = 10;\nmy @a = (1, 2);\nprint \"x=$x\\n\" if $x =~ /\\d+/;\n"},
    {"PHP", ".php", "<?php\n// comment\n$name = \"World\";\necho 'Hello ' . $name . 42;\nfunction f($a) { return $a; }\n?>\n<p>done</p>\n"},
    {"HTML", ".html", "<!DOCTYPE html>\n<html lang=\"en\">\n<!-- comment -->\n<body class='x'>&amp; text<script>var x = 1; // c\n</script></body>\n</html>\n"},
    {"XML", ".xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE root>\n<!-- comment -->\n<root a=\"1\" b='two'>text &amp; <![CDATA[raw]]><child/></root>\n"},
    {"CSS", ".css", "/* comment */\nbody > p.note, #id:hover {\n  color: #FF0000;\n  margin: 0 auto !important;\n}\n@media print { a { display: none; } }\n"},
    {"Markdown", ".md", "# Title\n\nSome *emphasis* and **strong** text with `code`.\n\n- item\n1. first\n\n> quote\n\n[link](http://example.com)\n"},
    {"YAML", ".yml", "---\n# comment\nname: morvane\nversion: 2\nenabled: true\nlist:\n  - one\n  - &anchor two\n"},
    {"Makefile", ".mk", "# comment\nCC := gcc\nall: main.o\n\t$(CC) -o app main.o\n\nifeq ($(DEBUG),1)\nendif\n"},
    {"CMake", ".cmake", "# comment\ncmake_minimum_required(VERSION 3.25)\nset(NAME \"app\")\nif(WIN32)\n  message(STATUS \"${NAME} 42\")\nendif()\n"},
    {"Lua", ".lua", "-- comment\nlocal t = { 1, 2, 3 }\nfunction f(x)\n  return string.format(\"%d\", x) .. [[long]]\nend\nprint(#t)\n"},
    {"Go", ".go", "package main\n\nimport \"fmt\"\n\n// main prints\nfunc main() {\n\tvar n int = 42\n\tfmt.Println(\"hi\", n)\n}\n"},
    {"Rust", ".rs", "// comment\nfn main() {\n    let s: &'static str = \"hi\";\n    let n: u32 = 42;\n    println!(\"{} {}\", s, n);\n}\n"},
    {"Pascal", ".pas", "program Hello;\n{ comment }\nvar i: Integer;\nbegin\n  i := $FF;\n  WriteLn('Hello ', i); // done\nend.\n"},
    {"Fortran", ".f90", "program hello\n  ! comment\n  implicit none\n  integer :: n = 42\n  print *, 'Hello', sqrt(2.0)\nend program hello\n"},
    {"Diff", ".diff", "diff --git a/x b/x\n--- a/x\n+++ b/x\n@@ -1,2 +1,2 @@\n-old line\n+new line\n context\n"},
    {"INI", ".ini", "; comment\n[section]\nkey=value\nother = 42\n"},
    {"Properties", ".properties", "# comment\n[group]\nname=morvane\npath : /usr/share\n"},
    {"LaTeX", ".tex", "% comment\n\\documentclass{article}\n\\begin{document}\nHello $x^2$ world.\n\\end{document}\n"},
    {"Shell", ".sh", "#!/bin/sh\n# comment\nname=\"world\"\nif [ -n \"$name\" ]; then\n  echo 'hi' $name 42\nfi\n"},
    {"Batch", ".bat", "@echo off\nREM comment\nset NAME=world\n:label\nif \"%NAME%\"==\"world\" echo hi & goto label\n"},
    {"PowerShell", ".ps1", "# comment\n$name = \"world\"\nfunction Say-Hi { param($n) Write-Host \"Hi $n\" 42 }\nGet-ChildItem | Where-Object { $_.Length -gt 0 }\n"},
    {"SQL", ".sql", "-- comment\nSELECT id, name FROM users WHERE age > 18 AND name = 'x';\n/* block */\nCREATE TABLE t (id INT PRIMARY KEY);\n"},
};

const CSyntaxParserList& Shipped()
{
    static CSyntaxParserList list = [] {
        CSyntaxParserList loaded(SyntaxTestFiles::ShippedSyntaxFolder());
        loaded.Load();
        return loaded;
    }();
    return list;
}

class ShippedLanguage : public ::testing::TestWithParam<Language> {};

// Each definition loads, claims its extension, names a lexer the control knows, and
// colours a real sample with more than one style, each of which it defines.
TEST_P(ShippedLanguage, ColoursItsSample)
{
    const Language& language = GetParam();
    const int index = int(Shipped().MenuNames().indexOf(QString::fromUtf8(language.menu)));
    ASSERT_GE(index, 0);
    EXPECT_EQ(Shipped().FindByExtension(QString::fromUtf8(language.extension)), index);
    const CSyntaxParser parser = Shipped().GetParser(index);
    EXPECT_TRUE(parser.fromFile);

    Sci control;
    SyntaxApplier::Apply(control, parser, ViewSettings());
    QByteArray lexer(64, '\0');
    control.SendScintilla(Sci::SCI_GETLEXERLANGUAGE, 0UL, static_cast<void*>(lexer.data()));
    EXPECT_EQ(QString::fromLatin1(lexer.constData()), parser.lexer);
    control.SendScintilla(Sci::SCI_SETTEXT, uintptr_t(0), language.sample);
    control.SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    std::set<int> styles;
    for (int i = 0; language.sample[i]; ++i)
        styles.insert(int(control.SendScintilla(Sci::SCI_GETSTYLEAT, (unsigned long)i)));
    if (parser.lexer == QStringLiteral("null")) {
        EXPECT_EQ(styles, std::set<int>{0});
        return;
    }
    EXPECT_NE(control.SendScintilla(Sci::SCI_GETLEXER), 1L) << "SCLEX_NULL";
    EXPECT_GT(styles.size(), 2u);
    QSet<int> defined;
    for (int c = 0; c < parser.colourCount; ++c)
        defined.insert(parser.colours[size_t(c)].style);
    for (int style : styles)
        EXPECT_TRUE(defined.contains(style)) << "no colour for style " << style;
}

// What a reader tells apart: the main kinds of text of one language differ in hue,
// lightness or background, not only in shade (maroon tags beside red attributes read as
// one colour).
struct Lab
{
    double l, a, b;
};

double Linear(quint32 channel)
{
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double Luminance(quint32 bgr)
{
    return 0.2126 * Linear(bgr & 0xFF) + 0.7152 * Linear((bgr >> 8) & 0xFF) + 0.0722 * Linear((bgr >> 16) & 0xFF);
}

double Contrast(quint32 fore, quint32 back)
{
    const double a = Luminance(fore) + 0.05;
    const double b = Luminance(back) + 0.05;
    return a > b ? a / b : b / a;
}

Lab ToLab(quint32 bgr)
{
    const double r = Linear(bgr & 0xFF), g = Linear((bgr >> 8) & 0xFF), b = Linear((bgr >> 16) & 0xFF);
    const double x = (0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047;
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    const double z = (0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883;
    auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116.0; };
    return {116 * f(y) - 16, 500 * (f(x) - f(y)), 200 * (f(y) - f(z))};
}

bool TellApart(const SyntaxColour& one, const SyntaxColour& other)
{
    if (one.back != other.back)
        return true;
    const Lab a = ToLab(one.fore), b = ToLab(other.fore);
    if (std::abs(a.l - b.l) >= 25)
        return true;
    const double chromaA = std::hypot(a.a, a.b), chromaB = std::hypot(b.a, b.b);
    if ((chromaA < 15) != (chromaB < 15))
        return true;
    if (chromaA < 15)
        return false;
    double hue = std::abs(std::atan2(a.b, a.a) - std::atan2(b.b, b.a)) * 180 / M_PI;
    if (hue > 180)
        hue = 360 - hue;
    return hue >= 20;
}

// The kinds of text, each by the style names that stand for it in our definitions.
const std::vector<std::pair<const char*, std::vector<const char*>>> kKinds = {
    {"keyword", {"Keyword", "Command"}},
    {"type", {"Secondary Keyword", "Built-in Type", "Type", "Class Name", "Global Class"}},
    {"string", {"String", "Double-quoted String", "Value"}},
    {"number", {"Number"}},
    {"comment", {"Comment", "Line Comment", "Block Comment"}},
    {"preprocessor", {"Preprocessor", "Directive", "Macro"}},
    {"tag", {"Tag"}},
    {"attribute", {"Attribute", "Key", "Property Name"}},
    {"heading", {"Heading 1"}},
    {"emphasis", {"Emphasis (*)"}},
    {"code", {"Code"}},
};

// The colours the control shows, read back from it in each theme: every style reads on its
// background (in the dark theme to the ratio of body text, since its colours are carried
// over rather than chosen), the page is dark in the dark theme, and the main kinds of text
// stay apart there too.
TEST_P(ShippedLanguage, EveryStyleReadsAndKindsStayApartInBothThemes)
{
    const int index = int(Shipped().MenuNames().indexOf(QString::fromUtf8(GetParam().menu)));
    ASSERT_GE(index, 0);
    const CSyntaxParser parser = Shipped().GetParser(index);
    for (const bool dark : {false, true}) {
        SCOPED_TRACE(dark ? "dark" : "light");
        Sci control;
        SyntaxApplier::Apply(control, parser, ViewSettings(), ThemeColours(dark));
        const double page = Luminance(quint32(control.SendScintilla(Sci::SCI_STYLEGETBACK, 0UL)));
        EXPECT_TRUE(dark ? page < 0.05 : page > 0.9) << page;
        std::vector<SyntaxColour> shown(parser.colours.begin(), parser.colours.begin() + parser.colourCount);
        for (SyntaxColour& colour : shown) {
            colour.fore = quint32(control.SendScintilla(Sci::SCI_STYLEGETFORE, (unsigned long)colour.style));
            colour.back = quint32(control.SendScintilla(Sci::SCI_STYLEGETBACK, (unsigned long)colour.style));
            EXPECT_GE(Contrast(colour.fore, colour.back), dark ? 4.5 : 3.0) << colour.name.toStdString();
        }
        std::vector<std::pair<const char*, SyntaxColour>> found;
        for (const auto& [kind, names] : kKinds) {
            for (const char* name : names) {
                const auto colour = std::find_if(shown.begin(), shown.end(),
                                                 [name](const SyntaxColour& c) { return c.name == QLatin1String(name); });
                if (colour != shown.end()) {
                    found.emplace_back(kind, *colour);
                    break;
                }
            }
        }
        for (std::size_t i = 0; i < found.size(); ++i) {
            for (std::size_t j = i + 1; j < found.size(); ++j) {
                EXPECT_TRUE(TellApart(found[i].second, found[j].second))
                    << found[i].first << " (" << found[i].second.name.toStdString() << ") and " << found[j].first
                    << " (" << found[j].second.name.toStdString() << ") look alike";
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedLanguage, ::testing::ValuesIn(kLanguages));

TEST(ShippedDefinitions, AllLoadTextComesFirstAndNoExtensionIsClaimedTwice)
{
    const QStringList files = QDir(SyntaxTestFiles::ShippedSyntaxFolder())
                                  .entryList({QStringLiteral("*.config")}, QDir::Files);
    EXPECT_EQ(Shipped().GetCount(), files.size());
    EXPECT_EQ(Shipped().GetCount(), int(std::size(kLanguages)));
    EXPECT_EQ(Shipped().FindByExtension(QStringLiteral(".*")), 0);
    QSet<QString> seen;
    for (int i = 0; i < Shipped().GetCount(); ++i) {
        for (const QString& extension : Shipped().GetParser(i).extensions.split(QLatin1Char(';'))) {
            EXPECT_TRUE(extension.startsWith(QLatin1Char('.'))) << extension.toStdString();
            EXPECT_FALSE(seen.contains(extension.toLower())) << extension.toStdString();
            seen.insert(extension.toLower());
        }
    }
}

} // namespace
