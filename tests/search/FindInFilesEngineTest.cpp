#include "search/CFindInFilesEngine.h"
#include "search/FileSearcher.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

struct RunResult
{
    bool started = false;
    QString error;
    QList<FindInFilesMatch> matches;
    FindInFilesSummary summary;
    int batches = 0;
};

RunResult RunSearch(const FindInFilesOptions& options)
{
    RunResult result;
    CFindInFilesEngine engine;
    QObject::connect(&engine, &CFindInFilesEngine::matchesFound,
                     [&](const QList<FindInFilesMatch>& batch) {
                         result.matches += batch;
                         ++result.batches;
                     });
    QSignalSpy finished(&engine, &CFindInFilesEngine::finished);
    result.started = engine.start(options);
    result.error = engine.errorString();
    if (!result.started)
        return result;
    EXPECT_TRUE(finished.wait(60000));
    if (!finished.isEmpty())
        result.summary = finished.first().first().value<FindInFilesSummary>();
    // Stable order for comparisons: the threads finish files in any order.
    std::sort(result.matches.begin(), result.matches.end(),
              [](const FindInFilesMatch& a, const FindInFilesMatch& b) {
                  return std::tie(a.path, a.line, a.column) < std::tie(b.path, b.line, b.column);
              });
    return result;
}

QByteArray Utf16(const QString& text, bool bigEndian, bool mark)
{
    QStringEncoder encoder(bigEndian ? QStringConverter::Utf16BE : QStringConverter::Utf16LE,
                           mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
    return encoder.encode(text);
}

class FindInFilesEngineTest : public ::testing::Test
{
protected:
    void SetUp() override { m_root = TestSupport::MakeTempDir(); }
    QString Path(const QString& relative) const { return QDir(m_root).filePath(relative); }
    void Write(const QString& relative, const QByteArray& bytes) { TestSupport::WriteFile(Path(relative), bytes); }
    FindInFilesOptions Options(const QString& text) const
    {
        FindInFilesOptions options;
        options.folder = m_root;
        options.text = text;
        options.subFolders = true;
        options.matchCase = true;
        return options;
    }

    QString m_root;
};

TEST_F(FindInFilesEngineTest, SearchesEveryEncodingAsTheEditorReadsIt)
{
    const QString text = QStringLiteral("first line\n\tcaf\u00E9 needle here\nlast");
    Write(QStringLiteral("utf8.txt"), text.toUtf8());
    Write(QStringLiteral("utf8bom.txt"), QByteArray("\xEF\xBB\xBF") + text.toUtf8());
    Write(QStringLiteral("le-bom.txt"), Utf16(text, false, true));
    Write(QStringLiteral("be-bom.txt"), Utf16(text, true, true));
    Write(QStringLiteral("le.txt"), Utf16(text, false, false));
    Write(QStringLiteral("be.txt"), Utf16(text, true, false));
    Write(QStringLiteral("ansi.txt"), QByteArray("first line\n\tcaf\xE9 needle here\nlast"));

    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_TRUE(result.started) << result.error.toStdString();
    ASSERT_EQ(result.matches.size(), 7);
    for (const FindInFilesMatch& match : result.matches) {
        SCOPED_TRACE(match.path.toStdString());
        EXPECT_EQ(match.line, 2);
        // Tab to 4, then "café " is five characters in every form the editor holds as
        // UTF-8, and in "Ansi" é is one byte too.
        EXPECT_EQ(match.column, 9);
        EXPECT_TRUE(match.text.endsWith(QStringLiteral("needle here")));
    }
    EXPECT_EQ(result.summary.filesSearched, 7);
    EXPECT_EQ(result.summary.filesMatched, 7);
}

TEST_F(FindInFilesEngineTest, NonAsciiTextIsFoundInUtf16Files)
{
    const QString text = QStringLiteral("\u00FCber \u65E5\u672C\u8A9E text\n");
    Write(QStringLiteral("le.txt"), Utf16(text, false, true));
    // Without a mark the detector needs a zero in every unit, which CJK text lacks.
    Write(QStringLiteral("be.txt"), Utf16(text, true, true));
    const RunResult result = RunSearch(Options(QStringLiteral("\u65E5\u672C")));
    ASSERT_EQ(result.matches.size(), 2);
    EXPECT_EQ(result.matches[0].column, 5);
    EXPECT_EQ(result.matches[0].text, text.trimmed());
}

TEST_F(FindInFilesEngineTest, Utf32AndTinyFilesAreHandled)
{
    QByteArray utf32("\xFF\xFE\x00\x00", 4);
    for (char c : QByteArray("x needle\n")) {
        utf32 += c;
        utf32 += QByteArray(3, '\0');
    }
    Write(QStringLiteral("wide.txt"), utf32);
    Write(QStringLiteral("empty.txt"), QByteArray());
    Write(QStringLiteral("one.txt"), "n");
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_TRUE(result.matches[0].path.endsWith(QStringLiteral("wide.txt")));
    EXPECT_EQ(result.matches[0].column, 2);
    EXPECT_EQ(result.summary.filesSearched, 3);
    EXPECT_EQ(result.summary.filesBinary, 0);
}

TEST_F(FindInFilesEngineTest, WindowsLineEndsStayOutOfTheText)
{
    Write(QStringLiteral("crlf.txt"), "one\r\ntwo needle\r\nthree\r\n");
    FindInFilesOptions options = Options(QStringLiteral("needle$"));
    options.regExp = true; // "$" before the CR as well
    const RunResult literal = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(literal.matches.size(), 1);
    EXPECT_EQ(literal.matches[0].line, 2);
    EXPECT_EQ(literal.matches[0].text, QStringLiteral("two needle"));
    const RunResult expression = RunSearch(options);
    ASSERT_EQ(expression.matches.size(), 1);
    EXPECT_EQ(expression.matches[0].column, 4);
}

TEST_F(FindInFilesEngineTest, LinkedFilesAreSearchedLinkedFoldersNotFollowed)
{
    Write(QStringLiteral("real/a.txt"), "needle\n");
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("real/a.txt")), Path(QStringLiteral("link.txt"))));
    // A link back to the top would loop for ever if followed.
    ASSERT_TRUE(QFile::link(m_root, Path(QStringLiteral("real/loop"))));
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(result.matches.size(), 2);
    EXPECT_EQ(result.matches[0].path, Path(QStringLiteral("link.txt")));
    EXPECT_EQ(result.matches[1].path, Path(QStringLiteral("real/a.txt")));
}

TEST_F(FindInFilesEngineTest, BinaryFilesAreSkippedAndCounted)
{
    Write(QStringLiteral("text.txt"), "needle\n");
    Write(QStringLiteral("blob.bin"), QByteArray("needle\0\x01\x02 needle", 16));
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_TRUE(result.matches[0].path.endsWith(QStringLiteral("text.txt")));
    EXPECT_EQ(result.summary.filesBinary, 1);
    EXPECT_EQ(result.summary.filesSearched, 1);
}

TEST_F(FindInFilesEngineTest, UnreadableFilesAreSkippedAndCounted)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "running as root: permissions don't stop reading";
    Write(QStringLiteral("open.txt"), "needle\n");
    Write(QStringLiteral("closed.txt"), "needle\n");
    ASSERT_TRUE(QFile::setPermissions(Path(QStringLiteral("closed.txt")), QFileDevice::Permissions()));
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    QFile::setPermissions(Path(QStringLiteral("closed.txt")), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_EQ(result.summary.filesUnreadable, 1);
    EXPECT_EQ(result.summary.filesSearched, 1);
}

TEST_F(FindInFilesEngineTest, SubfoldersOnlyWhenAskedAndPatternsFilterNames)
{
    Write(QStringLiteral("top.cpp"), "needle\n");
    Write(QStringLiteral("top.txt"), "needle\n");
    Write(QStringLiteral("sub/inner.h"), "needle\n");
    Write(QStringLiteral("sub/deeper/deep.cpp"), "x\nneedle\n");
    Write(QStringLiteral(".git/objects/pack.cpp"), "needle\n");

    FindInFilesOptions options = Options(QStringLiteral("needle"));
    options.subFolders = false;
    EXPECT_EQ(RunSearch(options).matches.size(), 2);

    options.subFolders = true;
    EXPECT_EQ(RunSearch(options).matches.size(), 4); // not the one in .git

    options.patterns = QStringLiteral("*.cpp;*.h");
    RunResult result = RunSearch(options);
    ASSERT_EQ(result.matches.size(), 3);
    EXPECT_EQ(result.summary.filesSearched, 3);

    options.patterns = QStringLiteral("*.CPP");
    result = RunSearch(options);
    ASSERT_EQ(result.matches.size(), 2);
    EXPECT_EQ(result.matches[0].path, Path(QStringLiteral("sub/deeper/deep.cpp")));
    EXPECT_EQ(result.matches[0].line, 2);
}

struct OptionCase
{
    const char* name;
    const char* text;
    bool matchCase;
    bool matchWord;
    bool regExp;
    int expected;
};

class FindInFilesOptionsTest : public FindInFilesEngineTest, public ::testing::WithParamInterface<OptionCase> {};

TEST_P(FindInFilesOptionsTest, CheckboxesMeanWhatTheyShow)
{
    Write(QStringLiteral("a.txt"), "Value value VALUE\nvalued = 12;\nnothing\n");
    const OptionCase& c = GetParam();
    FindInFilesOptions options = Options(QString::fromUtf8(c.text));
    options.matchCase = c.matchCase;
    options.matchWord = c.matchWord;
    options.regExp = c.regExp;
    const RunResult result = RunSearch(options);
    ASSERT_TRUE(result.started) << result.error.toStdString();
    EXPECT_EQ(result.matches.size(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Options, FindInFilesOptionsTest,
    ::testing::Values(
        OptionCase{"Plain", "value", false, false, false, 4},
        OptionCase{"Case", "value", true, false, false, 2},
        OptionCase{"Word", "value", false, true, false, 3},
        OptionCase{"CaseWord", "value", true, true, false, 1},
        OptionCase{"Expression", "val\\w+", false, false, true, 4},
        OptionCase{"ExpressionCase", "VAL\\w+", true, false, true, 1},
        OptionCase{"ExpressionDigits", "\\d+", true, false, true, 1},
        OptionCase{"ExpressionMeansNothingWhenOff", "\\d+", true, false, false, 0}),
    [](const ::testing::TestParamInfo<OptionCase>& info) { return std::string(info.param.name); });

TEST_F(FindInFilesEngineTest, InvalidExpressionGivesAnErrorAndNoSearch)
{
    Write(QStringLiteral("a.txt"), "(((\n");
    FindInFilesOptions options = Options(QStringLiteral("(("));
    options.regExp = true;
    const RunResult result = RunSearch(options);
    EXPECT_FALSE(result.started);
    EXPECT_TRUE(result.error.contains(QStringLiteral("regular expression")));
    EXPECT_TRUE(result.matches.isEmpty());
}

TEST_F(FindInFilesEngineTest, MissingFolderGivesAnError)
{
    FindInFilesOptions options = Options(QStringLiteral("x"));
    options.folder = Path(QStringLiteral("gone"));
    const RunResult result = RunSearch(options);
    EXPECT_FALSE(result.started);
    EXPECT_TRUE(result.error.contains(QStringLiteral("does not exist")));
}

TEST_F(FindInFilesEngineTest, ResultsFromManyFilesAllArrive)
{
    // Enough files that every search thread takes some.
    constexpr int Files = 400;
    for (int i = 0; i < Files; ++i) {
        QByteArray body;
        for (int line = 1; line <= 50; ++line)
            body += line == (i % 50) + 1 ? "match here and match there\n" : "filler text line\n";
        Write(QStringLiteral("d%1/f%2.txt").arg(i % 7).arg(i), body);
    }
    const RunResult result = RunSearch(Options(QStringLiteral("match")));
    ASSERT_EQ(result.matches.size(), 2 * Files);
    EXPECT_EQ(result.summary.matches, 2 * Files);
    EXPECT_EQ(result.summary.filesSearched, Files);
    EXPECT_EQ(result.summary.filesMatched, Files);
    QSet<QString> paths;
    for (const FindInFilesMatch& match : result.matches) {
        paths.insert(match.path);
        const int i = QFileInfo(match.path).baseName().mid(1).toInt();
        EXPECT_EQ(match.line, (i % 50) + 1) << match.path.toStdString();
        EXPECT_TRUE(match.column == 0 || match.column == 15);
    }
    EXPECT_EQ(paths.size(), Files);
}

TEST_F(FindInFilesEngineTest, LinesAreCountedAcrossPieces)
{
    // Larger than one read, with the match in the last piece and a line cut by the piece.
    QByteArray body;
    const int lines = int(FileSearcher::PieceSize / 10) + 1000;
    body.reserve(qsizetype(lines) * 10 + 20);
    for (int i = 1; i <= lines; ++i)
        body += QByteArray::number(i).rightJustified(9, '0') + '\n';
    body += "the needle";
    Write(QStringLiteral("big.txt"), body);
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_EQ(result.matches[0].line, lines + 1);
    EXPECT_EQ(result.matches[0].column, 4);
}

TEST_F(FindInFilesEngineTest, CancelStopsTheSearchAndSaysSo)
{
    // Every byte starts a candidate of this expression, so each file takes a while.
    constexpr int Files = 200;
    for (int i = 0; i < Files; ++i)
        Write(QStringLiteral("f%1.txt").arg(i), QByteArray(100000, 'a') + "\nabc\n");
    FindInFilesOptions options = Options(QStringLiteral("a[b-z]c"));
    options.regExp = true;
    CFindInFilesEngine engine;
    int batchesAfterEnd = 0;
    bool ended = false;
    QObject::connect(&engine, &CFindInFilesEngine::matchesFound, [&] { batchesAfterEnd += ended; });
    QSignalSpy finished(&engine, &CFindInFilesEngine::finished);
    QObject::connect(&engine, &CFindInFilesEngine::finished, [&] { ended = true; });
    ASSERT_TRUE(engine.start(options));
    engine.cancel();
    ASSERT_TRUE(finished.wait(10000));
    const auto summary = finished.first().first().value<FindInFilesSummary>();
    EXPECT_TRUE(summary.cancelled);
    EXPECT_FALSE(engine.isRunning());
    EXPECT_LT(summary.filesSearched, Files);
    QTest::qWait(100);
    EXPECT_EQ(batchesAfterEnd, 0);
    EXPECT_EQ(finished.size(), 1);
}

TEST_F(FindInFilesEngineTest, RestartDropsTheOldSearchesResults)
{
    Write(QStringLiteral("a.txt"), "alpha\nbeta\n");
    CFindInFilesEngine engine;
    QList<FindInFilesMatch> got;
    QObject::connect(&engine, &CFindInFilesEngine::matchesFound,
                     [&](const QList<FindInFilesMatch>& batch) { got += batch; });
    QSignalSpy finished(&engine, &CFindInFilesEngine::finished);
    ASSERT_TRUE(engine.start(Options(QStringLiteral("alpha"))));
    ASSERT_TRUE(engine.start(Options(QStringLiteral("beta"))));
    ASSERT_TRUE(finished.wait(10000));
    QTest::qWait(100);
    EXPECT_EQ(finished.size(), 1);
    ASSERT_EQ(got.size(), 1);
    EXPECT_EQ(got[0].text, QStringLiteral("beta"));
}

TEST_F(FindInFilesEngineTest, MatchLimitStopsQuietly)
{
    Write(QStringLiteral("a.txt"), QByteArray("x\n").repeated(500));
    FindInFilesOptions options = Options(QStringLiteral("x"));
    options.maxMatches = 100;
    const RunResult result = RunSearch(options);
    EXPECT_EQ(result.matches.size(), 100);
    EXPECT_TRUE(result.summary.truncated);
    EXPECT_FALSE(result.summary.cancelled);
}

TEST_F(FindInFilesEngineTest, LongLinesAreCutAroundTheMatch)
{
    Write(QStringLiteral("min.js"), QByteArray(5000, 'a') + "needle" + QByteArray(5000, 'b'));
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_EQ(result.matches[0].column, 5000);
    EXPECT_TRUE(result.matches[0].text.contains(QStringLiteral("needle")));
    EXPECT_LT(result.matches[0].text.size(), 1100);
    EXPECT_TRUE(result.matches[0].text.startsWith(QChar(0x2026)));
}

} // namespace
