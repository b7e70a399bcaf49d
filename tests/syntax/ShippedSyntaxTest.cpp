#include "SyntaxTestFiles.h"
#include "app/ViewSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <Qsci/qsciscintillabase.h>

#include <QDir>
#include <QSet>

#include <gtest/gtest.h>

#include <set>

namespace {

using Sci = QsciScintillaBase;

struct Language
{
    const char* menu;
    const char* extension; // one the language claims
    const char* sample;
    // Whether the lexer shows the group comment tokens as a comment. Markdown's does
    // not know HTML comments, though they are the language's own.
    bool groupCommentStyled = true;
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
    {"Markdown", ".md", "# Title\n\nSome *emphasis* and **strong** text with `code`.\n\n- item\n1. first\n\n> quote\n\n[link](http://example.com)\n", false},
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

// The colour a word of the language's first keyword set takes in its sample, for the
// languages that have keyword sets.
QString KeywordColourOf(const QString& menu)
{
    static const QHash<QString, QString> special = {
        {QStringLiteral("PHP"), QStringLiteral("PHP Keyword")},
        {QStringLiteral("HTML"), QStringLiteral("Tag")},
        {QStringLiteral("CSS"), QStringLiteral("CSS1 Property")},
        {QStringLiteral("CMake"), QStringLiteral("Command")},
        {QStringLiteral("XML"), QStringLiteral("SGML Command")},
    };
    return special.value(menu, QStringLiteral("Keyword"));
}

std::vector<Language> Languages()
{
    return std::vector<Language>(std::begin(kLanguages), std::end(kLanguages));
}

const CSyntaxParserList& Shipped()
{
    static CSyntaxParserList list = [] {
        CSyntaxParserList loaded(SyntaxTestFiles::ShippedSyntaxFolder());
        loaded.Load();
        return loaded;
    }();
    return list;
}

int IndexOf(const QString& menu)
{
    return int(Shipped().MenuNames().indexOf(menu));
}

long Send(Sci& control, unsigned int message, unsigned long wParam = 0, long lParam = 0)
{
    return control.SendScintilla(message, wParam, lParam);
}

QByteArray AskLexer(Sci& control, unsigned int message)
{
    QByteArray buffer(4096, '\0');
    control.SendScintilla(message, 0UL, static_cast<void*>(buffer.data()));
    return QByteArray(buffer.constData());
}

// The style of every byte of `text` once the parser has coloured it.
std::vector<int> Styles(const CSyntaxParser& parser, const QByteArray& text)
{
    Sci control;
    SyntaxApplier::Apply(control, parser, ViewSettings());
    control.SendScintilla(Sci::SCI_SETTEXT, uintptr_t(0), text.constData());
    Send(control, Sci::SCI_COLOURISE, 0, -1);
    std::vector<int> styles;
    for (int i = 0; i < text.size(); ++i)
        styles.push_back(int(Send(control, Sci::SCI_GETSTYLEAT, (unsigned long)i)));
    return styles;
}

const SyntaxColour* ColourFor(const CSyntaxParser& parser, int style)
{
    for (int i = 0; i < parser.colourCount; ++i) {
        if (parser.colours[size_t(i)].style == style)
            return &parser.colours[size_t(i)];
    }
    return nullptr;
}

bool IsCommentStyle(const CSyntaxParser& parser, int style)
{
    const SyntaxColour* colour = ColourFor(parser, style);
    return colour && (colour->name.contains(QStringLiteral("Comment")) || colour->name.contains(QStringLiteral("POD")));
}

class ShippedLanguage : public ::testing::TestWithParam<Language> {};

TEST_P(ShippedLanguage, LoadsFromItsOwnFile)
{
    const Language& language = GetParam();
    const int index = IndexOf(QString::fromUtf8(language.menu));
    ASSERT_GE(index, 0) << language.menu;
    const CSyntaxParser parser = Shipped().GetParser(index);
    EXPECT_TRUE(parser.fromFile);
    EXPECT_FALSE(parser.lexer.isEmpty());
    EXPECT_GT(parser.colourCount, 0);
    EXPECT_EQ(Shipped().FindByExtension(QString::fromUtf8(language.extension)), index) << language.extension;
}

TEST_P(ShippedLanguage, NamesALexerTheControlKnows)
{
    const Language& language = GetParam();
    const CSyntaxParser parser = Shipped().GetParser(IndexOf(QString::fromUtf8(language.menu)));
    Sci control;
    const QByteArray lexer = parser.lexer.toUtf8();
    control.SendScintilla(Sci::SCI_SETLEXERLANGUAGE, uintptr_t(0), lexer.constData());
    EXPECT_EQ(AskLexer(control, Sci::SCI_GETLEXERLANGUAGE), lexer);
    if (parser.lexer != QStringLiteral("null")) {
        EXPECT_NE(Send(control, Sci::SCI_GETLEXER), 1) << language.menu; // not SCLEX_NULL
    }

    // No keyword set beyond those the lexer reads. The PHP lexer reads its set at
    // position 4 though it describes only that one.
    const QList<QByteArray> described = AskLexer(control, Sci::SCI_DESCRIBEKEYWORDSETS).split('\n');
    const int sets = int(described.size() == 1 && described.first().isEmpty() ? 0 : described.size());
    if (parser.lexer != QStringLiteral("phpscript")) {
        EXPECT_LE(parser.keywordCount, sets) << language.menu;
    }
}

TEST_P(ShippedLanguage, ColoursItsSampleWithStylesItDefines)
{
    const Language& language = GetParam();
    const CSyntaxParser parser = Shipped().GetParser(IndexOf(QString::fromUtf8(language.menu)));
    const std::vector<int> styles = Styles(parser, QByteArray(language.sample));
    const std::set<int> distinct(styles.begin(), styles.end());
    if (parser.lexer == QStringLiteral("null")) {
        EXPECT_EQ(distinct, std::set<int>{0});
        return;
    }
    EXPECT_GT(distinct.size(), 2u) << language.menu;
    for (int style : distinct)
        EXPECT_NE(ColourFor(parser, style), nullptr) << language.menu << ": no colour for style " << style;

    bool hasKeywords = false;
    for (int i = 0; i < parser.keywordCount; ++i)
        hasKeywords = hasKeywords || !parser.GetKeywords(i).trimmed().isEmpty();
    if (hasKeywords) {
        const QString wanted = KeywordColourOf(parser.menuName);
        bool seen = false;
        for (int style : distinct) {
            const SyntaxColour* colour = ColourFor(parser, style);
            seen = seen || (colour && colour->name == wanted);
        }
        EXPECT_TRUE(seen) << language.menu << ": no \"" << wanted.toStdString() << "\" in the sample";
    }
}

TEST_P(ShippedLanguage, CommentTokensMakeComments)
{
    const Language& language = GetParam();
    const CSyntaxParser parser = Shipped().GetParser(IndexOf(QString::fromUtf8(language.menu)));
    if (!parser.lineComment.isEmpty()) {
        const QByteArray token = parser.lineComment.toUtf8();
        const std::vector<int> styles = Styles(parser, token + "note\nx\n");
        EXPECT_TRUE(IsCommentStyle(parser, styles[size_t(token.size())]))
            << language.menu << ": line comment \"" << token.constData() << "\" gives style " << styles[size_t(token.size())];
    }
    EXPECT_EQ(parser.groupStart.isEmpty(), parser.groupEnd.isEmpty()) << language.menu;
    if (!parser.groupStart.isEmpty() && language.groupCommentStyled) {
        const QByteArray text = parser.groupStart.toUtf8() + "\nnote\n" + parser.groupEnd.toUtf8() + "\n";
        const std::vector<int> styles = Styles(parser, text);
        const int at = int(parser.groupStart.toUtf8().size()) + 1;
        EXPECT_TRUE(IsCommentStyle(parser, styles[size_t(at)]))
            << language.menu << ": group comment gives style " << styles[size_t(at)];
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, ShippedLanguage, ::testing::ValuesIn(Languages()),
                         [](const ::testing::TestParamInfo<Language>& info) {
                             std::string name;
                             for (const char* c = info.param.menu; *c; ++c)
                                 name += (*c == '+') ? 'P' : (*c == '#') ? 'S' : *c;
                             return name;
                         });

TEST(ShippedDefinitions, EveryFileLoadsAndIsCoveredAbove)
{
    const QStringList files = QDir(SyntaxTestFiles::ShippedSyntaxFolder())
                                  .entryList({QStringLiteral("*.config")}, QDir::Files);
    EXPECT_EQ(Shipped().GetCount(), files.size());
    EXPECT_EQ(Shipped().GetCount(), int(std::size(kLanguages)));
}

TEST(ShippedDefinitions, PlainTextComesFirstAndServesNewDocuments)
{
    EXPECT_EQ(Shipped().GetParser(0).menuName, QStringLiteral("Text"));
    EXPECT_EQ(Shipped().FindByExtension(QStringLiteral(".*")), 0);
}

TEST(ShippedDefinitions, NoExtensionIsClaimedTwice)
{
    QSet<QString> seen;
    for (int i = 0; i < Shipped().GetCount(); ++i) {
        const CSyntaxParser parser = Shipped().GetParser(i);
        for (const QString& extension : parser.extensions.split(QLatin1Char(';'))) {
            EXPECT_FALSE(extension.isEmpty()) << parser.menuName.toStdString();
            EXPECT_TRUE(extension.startsWith(QLatin1Char('.'))) << extension.toStdString();
            EXPECT_FALSE(seen.contains(extension.toLower())) << extension.toStdString();
            seen.insert(extension.toLower());
        }
    }
}

TEST(ShippedDefinitions, ColourNamesAreUniqueWithinAFile)
{
    for (int i = 0; i < Shipped().GetCount(); ++i) {
        const CSyntaxParser parser = Shipped().GetParser(i);
        QSet<QString> names;
        QSet<int> styles;
        for (int c = 0; c < parser.colourCount; ++c) {
            const SyntaxColour& colour = parser.colours[size_t(c)];
            EXPECT_FALSE(names.contains(colour.name)) << parser.menuName.toStdString() << ": " << colour.name.toStdString();
            EXPECT_FALSE(styles.contains(colour.style)) << parser.menuName.toStdString() << ": " << colour.style;
            EXPECT_GE(colour.style, 0);
            EXPECT_LE(colour.style, SyntaxApplier::MaxStyle);
            names.insert(colour.name);
            styles.insert(colour.style);
        }
    }
}

TEST(ShippedDefinitions, OnePaletteForAllLanguages)
{
    // The same kind of style looks the same everywhere.
    QHash<QString, quint32> commentColours;
    for (int i = 0; i < Shipped().GetCount(); ++i) {
        const CSyntaxParser parser = Shipped().GetParser(i);
        for (int c = 0; c < parser.colourCount; ++c) {
            const SyntaxColour& colour = parser.colours[size_t(c)];
            if (colour.name == QStringLiteral("Comment") || colour.name == QStringLiteral("Line Comment"))
                commentColours.insert(parser.menuName, colour.fore);
        }
    }
    EXPECT_GT(commentColours.size(), 20);
    const QList<quint32> values = commentColours.values();
    for (quint32 value : values)
        EXPECT_EQ(value, values.first());
}

} // namespace
