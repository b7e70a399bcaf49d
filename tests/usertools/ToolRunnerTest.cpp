#include "TestSupport.h"
#include "usertools/CToolRunner.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// Everything one run reported, in order.
struct RunRecord
{
    QStringList lines;
    QStringList messages;
    QStringList partials;
    int exitCode = 0;
    bool crashed = false;
    int finishedCount = 0;
};

class ToolRunnerTest : public ::testing::Test
{
protected:
    ToolRunnerTest()
    {
        QObject::connect(&runner, &CToolRunner::linesReady, [this](const QStringList& l) { run.lines << l; });
        QObject::connect(&runner, &CToolRunner::message, [this](const QString& m) { run.messages << m; });
        QObject::connect(&runner, &CToolRunner::summary, [this](const QString& m) { run.messages << m; });
        QObject::connect(&runner, &CToolRunner::partialLine, [this](const QString& p) {
            if (!p.isEmpty())
                run.partials << p;
        });
        QObject::connect(&runner, &CToolRunner::finished, [this](int code, bool crashed, qint64) {
            run.exitCode = code;
            run.crashed = crashed;
            ++run.finishedCount;
        });
    }
    bool Shell(const QString& script) { return runner.Start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script}, {}); }
    bool WaitForEnd(int ms = 10000)
    {
        return QTest::qWaitFor([this] { return run.finishedCount > 0; }, ms);
    }

    CToolRunner runner;
    RunRecord run;
};

TEST_F(ToolRunnerTest, MergesBothChannelsAndEndsWithTheExitCode)
{
    ASSERT_TRUE(Shell(QStringLiteral("echo out; echo err 1>&2; echo again; exit 3")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.lines, (QStringList{"out", "err", "again"}));
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_FALSE(run.crashed);
    ASSERT_EQ(run.messages.size(), 1);
    EXPECT_TRUE(run.messages.first().startsWith(QStringLiteral("Exit code 3, "))) << run.messages.first().toStdString();
    EXPECT_FALSE(runner.IsRunning());
}

TEST_F(ToolRunnerTest, ColourCodesAndInvalidBytesFromARealProcess)
{
    ASSERT_TRUE(Shell(QStringLiteral("printf '\\033[31mred\\033[0m \\377\\n10%%\\r99%%\\rdone'")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.lines, (QStringList{QStringLiteral("red \\xFF"), QStringLiteral("done")}));
}

TEST_F(ToolRunnerTest, AToolThatDoesNotExistSaysWhy)
{
    ASSERT_TRUE(runner.Start(QStringLiteral("/no/such/folder/tool"), {}, {}));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_TRUE(run.crashed);
    ASSERT_FALSE(run.messages.isEmpty());
    EXPECT_TRUE(run.messages.last().startsWith(QStringLiteral("Redirect console error: 2 ("))) << run.messages.last().toStdString();
    EXPECT_TRUE(run.messages.last().contains(QStringLiteral("No such file or directory")));
    // The runner is free again for the next tool.
    run = {};
    ASSERT_TRUE(Shell(QStringLiteral("echo next")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.lines, QStringList{"next"});
}

TEST_F(ToolRunnerTest, AFolderThatDoesNotExistIsAStartError)
{
    ASSERT_TRUE(runner.Start(QStringLiteral("/bin/true"), {}, TestSupport::MakeTempDir() + QStringLiteral("/gone")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_TRUE(run.crashed);
    EXPECT_TRUE(run.messages.last().startsWith(QStringLiteral("Redirect console error: 2 (")));
}

TEST_F(ToolRunnerTest, StopEndsAToolThatListensWithoutTheDeadMessage)
{
    ASSERT_TRUE(Shell(QStringLiteral("echo started; sleep 30")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !run.lines.isEmpty(); }, 5000));
    runner.Stop();
    ASSERT_TRUE(WaitForEnd(3000));
    EXPECT_TRUE(run.crashed);
    EXPECT_FALSE(run.messages.contains(QStringLiteral("The redir thread is dead")));
}

TEST_F(ToolRunnerTest, AToolThatNeverEndsIsKilledAfterTheGracePeriod)
{
    runner.SetStopGracePeriod(300);
    ASSERT_TRUE(Shell(QStringLiteral("trap '' TERM; echo ready; while :; do sleep 0.05; done")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !run.lines.isEmpty(); }, 5000));
    QElapsedTimer clock;
    clock.start();
    runner.Stop();
    // Still running while the grace period lasts: the tool ignores the request.
    QTest::qWait(100);
    EXPECT_TRUE(runner.IsRunning());
    ASSERT_TRUE(WaitForEnd(5000));
    // A coarse timer may fire up to 5% early.
    EXPECT_GE(clock.elapsed(), 285);
    EXPECT_TRUE(run.messages.contains(QStringLiteral("The redir thread is dead")));
    EXPECT_TRUE(run.crashed);
    EXPECT_TRUE(run.messages.last().startsWith(QStringLiteral("Ended by signal 9"))) << run.messages.last().toStdString();
}

TEST_F(ToolRunnerTest, AToolKilledByASignalSaysWhichSignal)
{
    ASSERT_TRUE(Shell(QStringLiteral("echo before; kill -SEGV $$")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.lines, QStringList{"before"});
    EXPECT_TRUE(run.crashed);
    EXPECT_EQ(run.exitCode, -1);
    EXPECT_TRUE(run.messages.last().startsWith(QStringLiteral("Ended by signal 11"))) << run.messages.last().toStdString();
}

TEST_F(ToolRunnerTest, OneToolAtATimeAndTheNextStartsCleanRightAfter)
{
    ASSERT_TRUE(Shell(QStringLiteral("printf 'first\\npartial-no-end'; sleep 0.2")));
    EXPECT_FALSE(runner.Start(QStringLiteral("/bin/echo"), {QStringLiteral("second")}, {}));
    // Start the second the moment the first reports its end, as a queued tool would.
    QStringList secondLines;
    bool startedSecond = false;
    QObject::connect(&runner, &CToolRunner::finished, &runner, [&] {
        if (!startedSecond) {
            startedSecond = true;
            EXPECT_TRUE(runner.Start(QStringLiteral("/bin/echo"), {QStringLiteral("second")}, {}));
        }
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return run.finishedCount == 2; }, 10000));
    EXPECT_EQ(run.lines, (QStringList{"first", "partial-no-end", "second"}));
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ToolRunnerTest, ProgressIsShownBeforeItsLineEnds)
{
    runner.SetBatchInterval(10);
    ASSERT_TRUE(Shell(QStringLiteral("printf 'step 1'; sleep 0.3; printf '\\rstep 2'; sleep 0.3; echo")));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.partials, (QStringList{"step 1", "step 2"}));
    EXPECT_EQ(run.lines, QStringList{"step 2"});
}

TEST_F(ToolRunnerTest, ToolsRunInTheirFolder)
{
    const QString dir = TestSupport::MakeTempDir();
    TestSupport::WriteFile(dir + QStringLiteral("/bin/hello.sh"), "#!/bin/sh\npwd\n");
    QFile::setPermissions(dir + QStringLiteral("/bin/hello.sh"), QFile::ReadOwner | QFile::ExeOwner);
    // A relative command with a folder in it is looked for in the tool's folder.
    ASSERT_TRUE(runner.Start(QStringLiteral("bin/hello.sh"), {}, dir));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(run.lines, QStringList{QFileInfo(dir).canonicalFilePath()});
}

} // namespace
