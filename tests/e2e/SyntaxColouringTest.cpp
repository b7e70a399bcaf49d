#include "settings/AppPaths.h"
#include "E2eFixture.h"

#include "syntax/CSyntaxCommands.h"
#include "syntax/CSyntaxParserList.h"

#include <QSet>

namespace {

// A few lines of each language we ship a definition for, each with a comment, a keyword
// or a tag, and a string or number, as anyone writing that language would.
struct Sample
{
    const char* extension;
    const char* text;
};

const Sample kSamples[] = {
    {".bat", "REM build it\n@echo off\nset NAME=\"x\"\nif exist a.txt goto end\n"},
    {".cs", "// entry\nusing System;\nclass P { static void Main() { string s = \"hi\"; } }\n"},
    {".cpp", "// entry\n#include <cstdio>\nint main() { return printf(\"%d\", 42); }\n"},
    {".c", "/* entry */\n#include <stdio.h>\nint main(void) { return 0; }\n"},
    {".cmake", "# build\ncmake_minimum_required(VERSION 3.25)\nproject(x LANGUAGES CXX)\n"},
    {".css", "/* page */\nbody { color: #ff0000; margin: 0 auto; }\n"},
    {".diff", "--- a/x.txt\n+++ b/x.txt\n@@ -1,2 +1,2 @@\n-old\n+new\n same\n"},
    {".f90", "! entry\nprogram hello\n  integer :: i = 42\n  print *, 'hi'\nend program hello\n"},
    {".go", "// entry\npackage main\nfunc main() { var s string = \"hi\" }\n"},
    {".html", "<!-- page -->\n<html><body class=\"x\">Hello &amp; bye</body></html>\n"},
    {".ini", "; settings\n[Section]\nkey=value\n"},
    {".json", "{\n  \"name\": \"x\",\n  \"count\": 42,\n  \"on\": true\n}\n"},
    {".java", "// entry\npublic class A { public static void main(String[] a) { int i = 42; } }\n"},
    {".js", "// entry\nfunction f() { var s = \"hi\"; return 42; }\n"},
    {".tex", "% doc\n\\documentclass{article}\n\\begin{document}\nHello $x^2$\n\\end{document}\n"},
    {".lua", "-- entry\nlocal function f() return \"hi\", 42 end\n"},
    {".mk", "# build\nCC = gcc\nall: main.o\n\t$(CC) -o app main.o\n"},
    {".md", "# Title\n\nSome *emphasis* and `code`.\n\n- item\n"},
    {".php", "<?php\n// entry\nfunction f() { $s = \"hi\"; return 42; }\n?>\n"},
    {".pas", "{ entry }\nprogram Hello;\nbegin\n  writeln('hi');\nend.\n"},
    {".pl", "# entry\nuse strict;\nmy $s = \"hi\";\nprint $s;\n"},
    {".ps1", "# entry\nfunction Get-X { param($a) return \"hi\" }\n"},
    {".properties", "# settings\nname=value\nother = 42\n"},
    {".py", "# entry\ndef f():\n    return \"hi\", 42\n"},
    {".rb", "# entry\ndef f\n  return \"hi\"\nend\n"},
    {".rs", "// entry\nfn main() { let s = \"hi\"; let n: i32 = 42; }\n"},
    {".sql", "-- query\nSELECT name FROM users WHERE id = 42 AND x = 'a';\n"},
    {".sh", "#!/bin/sh\n# entry\nif [ -f a ]; then echo \"hi\"; fi\n"},
    {".ts", "// entry\nfunction f(): number { let s: string = \"hi\"; return 42; }\n"},
    {".xml", "<?xml version=\"1.0\"?>\n<!-- c -->\n<root attr=\"v\">text</root>\n"},
    {".yml", "# conf\nname: x\ncount: 42\nlist:\n  - a\n"},
};

class ShippedLanguages : public E2eFixture, public ::testing::WithParamInterface<Sample>
{
};

TEST_P(ShippedLanguages, SampleOpenedFromAFileIsColoured)
{
    const Sample& sample = GetParam();
    ASSERT_TRUE(App()->InitInstance({}));
    ASSERT_GE(CSyntaxCommands::Of(*Frame())->Parsers().FindByExtension(QString::fromLatin1(sample.extension)), 0)
        << "a shipped definition claims " << sample.extension;
    const QString path = MakeFile(QStringLiteral("sample") + QString::fromLatin1(sample.extension),
                                  QByteArray(sample.text));
    CChildFrame* child = OpenRouted(path);
    ASSERT_NE(child, nullptr);
    CMFCScintilla* editor = EditorOf(child);
    ASSERT_NE(editor, nullptr) << "opens as text";
    editor->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    const long length = editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    QSet<long> styles;
    for (long position = 0; position < length; ++position)
        styles.insert(editor->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, static_cast<unsigned long>(position)));
    EXPECT_GE(styles.size(), 3) << "styles seen: " << styles.size();
    // The styles in use must not all look alike.
    QSet<long> colours;
    for (long style : std::as_const(styles))
        colours.insert(editor->SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE, static_cast<unsigned long>(style)));
    EXPECT_GE(colours.size(), 2) << "foreground colours seen: " << colours.size();
}

INSTANTIATE_TEST_SUITE_P(EachDefinition, ShippedLanguages, ::testing::ValuesIn(kSamples),
                         [](const auto& info) {
                             std::string name(info.param.extension + 1);
                             return name;
                         });

TEST_F(E2eFixture, EveryShippedDefinitionIsLoadedAndHasASample)
{
    ASSERT_TRUE(App()->InitInstance({}));
    const CSyntaxParserList& parsers = CSyntaxCommands::Of(*Frame())->Parsers();
    QStringList missing;
    for (int i = 0; i < parsers.GetCount(); ++i) {
        const CSyntaxParser parser = parsers.GetParser(i);
        if (parser.lexer.isEmpty() || parser.lexer == QStringLiteral("null"))
            continue;
        bool covered = false;
        for (const Sample& sample : kSamples)
            covered = covered || parser.MatchesExtension(QString::fromLatin1(sample.extension));
        if (!covered)
            missing << parser.menuName;
    }
    EXPECT_TRUE(missing.isEmpty()) << missing.join(QStringLiteral(", ")).toStdString();
    const QDir shipped(AppPaths::ShippedDataFolder() + QStringLiteral("/syntax"));
    EXPECT_EQ(parsers.GetCount(), int(shipped.entryList({QStringLiteral("*.config")}, QDir::Files).size()))
        << "every file we ship is loaded";
}

} // namespace
