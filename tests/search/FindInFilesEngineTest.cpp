#include "search/CFindInFilesEngine.h"
#include "search/FileSearcher.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
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
};

RunResult RunSearch(const FindInFilesOptions& options)
{
    RunResult result;
    CFindInFilesEngine engine;
    QObject::connect(&engine, &CFindInFilesEngine::matchesFound,
                     [&](const QList<FindInFilesMatch>& batch) { result.matches += batch; });
    QSignalSpy finished(&engine, &CFindInFilesEngine::finished);
    result.started = engine.start(options);
    result.error = engine.errorString();
    if (!result.started)
        return result;
    EXPECT_TRUE(finished.wait(60000));
    if (!finished.isEmpty())
        result.summary = finished.first().first().value<FindInFilesSummary>();
    // Stable order for comparisons: the threads finish files in any order.
    std::sort(result.matches.begin(), result.matches.end(), [](const auto& a, const auto& b) {
        return std::tie(a.path, a.line, a.column) < std::tie(b.path, b.line, b.column);
    });
    return result;
}

QByteArray Encode(const QString& text, QStringConverter::Encoding encoding, bool mark)
{
    return QStringEncoder(encoding, mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default)
        .encode(text);
}

class FindInFilesEngineTest : public ::testing::Test
{
protected:
    void SetUp() override { m_root = TestSupport::MakeTempDir(); }
    QString Path(const QString& relative) const { return QDir(m_root).filePath(relative); }
    void Write(const QString& relative, const QByteArray& bytes) { TestSupport::WriteFile(Path(relative), bytes); }
    FindInFilesOptions Options(const QString& text, bool regExp = false) const
    {
        FindInFilesOptions options;
        options.folder = m_root;
        options.text = text;
        options.subFolders = true;
        options.matchCase = true;
        options.regExp = regExp;
        return options;
    }

    QString m_root;
};

TEST_F(FindInFilesEngineTest, SearchesEveryEncodingAsTheEditorReadsIt)
{
    // Windows line ends too: "$" holds before the CR, and the CR stays out of the text.
    const QString text = QStringLiteral("first line\r\n\tcaf\u00E9 needle here\r\nlast");
    using E = QStringConverter;
    const QList<std::pair<const char*, QByteArray>> files = {
        {"utf8", text.toUtf8()},
        {"utf8-bom", Encode(text, E::Utf8, true)},
        {"le-bom", Encode(text, E::Utf16LE, true)},
        {"be-bom", Encode(text, E::Utf16BE, true)},
        {"le", Encode(text, E::Utf16LE, false)},
        {"be", Encode(text, E::Utf16BE, false)},
        {"utf32", Encode(text, E::Utf32LE, true)},
        {"ansi", Encode(text, E::Latin1, false)},
        {"empty", QByteArray()},
        {"one-byte", "n"}};
    for (const auto& [name, bytes] : files)
        Write(QString::fromLatin1(name) + QStringLiteral(".txt"), bytes);

    const RunResult result = RunSearch(Options(QStringLiteral("needle here$"), true));
    ASSERT_TRUE(result.started) << result.error.toStdString();
    ASSERT_EQ(result.matches.size(), 8);
    for (const FindInFilesMatch& match : result.matches) {
        SCOPED_TRACE(match.path.toStdString());
        EXPECT_EQ(match.line, 2);
        // Tab to 4, then "café " is five characters, in "Ansi" too where é is one byte.
        EXPECT_EQ(match.column, 9);
        EXPECT_EQ(match.text, QStringLiteral("\tcaf\u00E9 needle here"));
    }
    EXPECT_EQ(result.summary.filesSearched, 10);
    EXPECT_EQ(result.summary.filesMatched, 8);
    EXPECT_EQ(result.summary.filesBinary, 0);
}

TEST_F(FindInFilesEngineTest, AnsiFilesAreSearchedThroughTheirCodePage)
{
    // "Café" and the euro sign of windows-1252, past a plain ASCII start.
    Write(QStringLiteral("latin.txt"), QByteArray("plain\r\nCaf\xE9 costs 5 \x80\r\n"));
    Write(QStringLiteral("utf8.txt"), QByteArray("Caf\xC3\xA9 costs 5 \xE2\x82\xAC\n"));
    struct Case
    {
        QString find;
        int matches;
    };
    for (const Case& c : {Case{QStringLiteral("Caf\u00E9"), 2}, Case{QStringLiteral("5 \u20AC"), 2},
                          Case{QStringLiteral("caf\u00C9"), 0}}) {
        SCOPED_TRACE(c.find.toStdString());
        const RunResult result = RunSearch(Options(c.find));
        ASSERT_EQ(result.matches.size(), c.matches);
        for (const FindInFilesMatch& match : result.matches) {
            if (match.path.endsWith(QStringLiteral("latin.txt"))) {
                EXPECT_EQ(match.line, 2);
                EXPECT_EQ(match.text, QStringLiteral("Caf\u00E9 costs 5 \u20AC"));
            }
        }
    }

    Write(QStringLiteral("cyrillic.txt"), QByteArray("\xCF\xF0\xE8\xE2\xE5\xF2\n"));
    FindInFilesOptions options = Options(QStringLiteral("\u041F\u0440\u0438"));
    options.ansiCodePage = QStringLiteral("windows-1251");
    const RunResult result = RunSearch(options);
    ASSERT_EQ(result.matches.size(), 1);
    EXPECT_TRUE(result.matches[0].path.endsWith(QStringLiteral("cyrillic.txt")));
}

TEST_F(FindInFilesEngineTest, NonAsciiTextIsFoundInUtf16Files)
{
    const QString text = QStringLiteral("\u00FCber \u65E5\u672C\u8A9E text");
    Write(QStringLiteral("le.txt"), Encode(text, QStringConverter::Utf16LE, true));
    Write(QStringLiteral("be.txt"), Encode(text, QStringConverter::Utf16BE, true));
    const RunResult result = RunSearch(Options(QStringLiteral("\u65E5\u672C")));
    ASSERT_EQ(result.matches.size(), 2);
    EXPECT_EQ(result.matches[1].column, 5);
    EXPECT_EQ(result.matches[1].text, text);
}

TEST_F(FindInFilesEngineTest, BinaryAndUnreadableFilesAreSkippedAndCounted)
{
    Write(QStringLiteral("text.txt"), "needle\n");
    Write(QStringLiteral("blob.bin"), QByteArray("needle\0\x01\x02 needle", 16));
    Write(QStringLiteral("closed.txt"), "needle\n");
    const bool root = ::geteuid() == 0; // permissions don't stop root from reading
    ASSERT_TRUE(QFile::setPermissions(Path(QStringLiteral("closed.txt")), QFileDevice::Permissions()));
    const RunResult result = RunSearch(Options(QStringLiteral("needle")));
    QFile::setPermissions(Path(QStringLiteral("closed.txt")), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    ASSERT_EQ(result.matches.size(), root ? 2 : 1);
    EXPECT_TRUE(result.matches[0].path.endsWith(root ? QStringLiteral("closed.txt") : QStringLiteral("text.txt")));
    EXPECT_EQ(result.summary.filesBinary, 1);
    EXPECT_EQ(result.summary.filesUnreadable, root ? 0 : 1);
    EXPECT_EQ(result.summary.filesSearched, root ? 2 : 1);
}

TEST_F(FindInFilesEngineTest, SubfoldersOnlyWhenAskedLinksOnceAndPatternsFilterNames)
{
    Write(QStringLiteral("top.cpp"), "needle\n");
    Write(QStringLiteral("top.txt"), "needle\n");
    Write(QStringLiteral("sub/inner.h"), "needle\n");
    Write(QStringLiteral("sub/deeper/deep.cpp"), "x\nneedle\n");
    Write(QStringLiteral(".git/objects/pack.cpp"), "needle\n");
    // A linked file is searched; a linked folder is not followed, or this one would loop.
    ASSERT_TRUE(QFile::link(Path(QStringLiteral("sub/inner.h")), Path(QStringLiteral("link.txt"))));
    ASSERT_TRUE(QFile::link(m_root, Path(QStringLiteral("sub/loop"))));

    FindInFilesOptions options = Options(QStringLiteral("needle"));
    options.subFolders = false;
    EXPECT_EQ(RunSearch(options).matches.size(), 3);

    options.subFolders = true;
    EXPECT_EQ(RunSearch(options).matches.size(), 5); // not the one in .git

    options.patterns = QStringLiteral("*.CPP");
    const RunResult result = RunSearch(options);
    ASSERT_EQ(result.matches.size(), 2);
    EXPECT_EQ(result.matches[0].path, Path(QStringLiteral("sub/deeper/deep.cpp")));
    EXPECT_EQ(result.matches[0].line, 2);
    EXPECT_EQ(result.summary.filesSearched, 2);
}

struct OptionCase
{
    const char* name;
    const char* text;
    bool matchCase, matchWord, regExp;
    int expected;
};

class FindInFilesOptionsTest : public FindInFilesEngineTest, public ::testing::WithParamInterface<OptionCase> {};

TEST_P(FindInFilesOptionsTest, CheckboxesMeanWhatTheyShow)
{
    Write(QStringLiteral("a.txt"), "Value value VALUE\nvalued = 12;\nnothing\n");
    const OptionCase& c = GetParam();
    FindInFilesOptions options = Options(QString::fromUtf8(c.text), c.regExp);
    options.matchCase = c.matchCase;
    options.matchWord = c.matchWord;
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
        OptionCase{"Expression", "val\\w+", false, false, true, 4},
        OptionCase{"ExpressionCase", "VAL\\w+", true, false, true, 1},
        OptionCase{"ExpressionMeansNothingWhenOff", "\\d+", true, false, false, 0}),
    [](const ::testing::TestParamInfo<OptionCase>& info) { return std::string(info.param.name); });

TEST_F(FindInFilesEngineTest, InvalidExpressionGivesAnErrorAndNoSearch)
{
    Write(QStringLiteral("a.txt"), "(((\n");
    const RunResult result = RunSearch(Options(QStringLiteral("(("), true));
    EXPECT_FALSE(result.started);
    EXPECT_TRUE(result.error.contains(QStringLiteral("regular expression"))) << result.error.toStdString();
    EXPECT_TRUE(result.matches.isEmpty());
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
    for (int k = 0; k < 2 * Files; ++k) { // sorted: each file's two matches together
        const FindInFilesMatch& match = result.matches[k];
        const int i = QFileInfo(match.path).baseName().mid(1).toInt();
        EXPECT_EQ(match.line, (i % 50) + 1) << match.path.toStdString();
        EXPECT_EQ(match.column, k % 2 ? 15 : 0) << match.path.toStdString();
    }
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
    const FindInFilesOptions options = Options(QStringLiteral("a[b-z]c"), true);
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

} // namespace
