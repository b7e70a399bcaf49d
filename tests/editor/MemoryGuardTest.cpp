#include "../app/MainFrameFixture.h"

#include "editor/MemoryGuard.h"
#include "editor/TextEncoding.h"

#include <QMessageBox>

struct FitCase
{
    const char* name;
    qint64 fileSize;
    int encoding;
    qint64 available;
    bool fits;
    bool styled = true;
};

using MemoryGuardFits = ::testing::TestWithParam<FitCase>;

TEST_P(MemoryGuardFits, ComparesTheEstimateWithWhatIsFree)
{
    const FitCase& c = GetParam();
    EXPECT_EQ(MemoryGuard::Fits(MemoryGuard::EstimateTextLoad(c.fileSize, c.encoding, c.styled), c.available), c.fits);
}

constexpr qint64 MB = 1 << 20;
INSTANTIATE_TEST_SUITE_P(
    Loads, MemoryGuardFits,
    ::testing::Values(FitCase{"SmallFileBigMachine", 10 * MB, TextEncoding::Utf8, 8000 * MB, true},
                      FitCase{"TextAndStylesDoNotFitTwiceTheFile", 1000 * MB, TextEncoding::Utf8, 1900 * MB, false},
                      FitCase{"Utf8WithRoom", 1000 * MB, TextEncoding::Utf8, 2500 * MB, true},
                      // UTF-16 grows by half on its way to UTF-8.
                      FitCase{"Utf16GrowsOnTheWayIn", 1000 * MB, TextEncoding::Utf16LE, 2500 * MB, false},
                      // Large-file mode keeps no style bytes.
                      FitCase{"UnstyledNeedsLittleMoreThanTheFile", 1000 * MB, TextEncoding::Utf8, 1300 * MB, true, false},
                      FitCase{"UnknownFigureNeverStops", 100000 * MB, TextEncoding::Utf8, -1, true},
                      FitCase{"EmptyFileOnATinyMachine", 0, TextEncoding::Utf8, 1, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(MemoryGuardMeminfo, ReadsMemAvailableInBytes)
{
    const struct
    {
        QByteArray text;
        qint64 bytes;
    } cases[] = {
        {"MemTotal:       16318480 kB\nMemFree:  812 kB\nMemAvailable:    9876543 kB\n", 9876543LL * 1024},
        {"MemAvailable: 0 kB\n", 0},
        {"MemTotal: 100 kB\n", -1},        // kernels before 3.14 have no such line
        {"MemAvailable: lots kB\n", -1},
        {"", -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MemoryGuard::ParseMemAvailable(c.text), c.bytes) << c.text.toStdString();
}

class MemoryGuardInProgram : public MainFrameFixture
{
protected:
    void SetUp() override
    {
        MainFrameFixture::SetUp();
        StartEmpty();
        qputenv("MORVANE_MEMAVAILABLE", QByteArray::number(4 * MB));
    }
    void TearDown() override
    {
        qunsetenv("MORVANE_MEMAVAILABLE");
        MainFrameFixture::TearDown();
    }
};

TEST_F(MemoryGuardInProgram, CancelLeavesNothingOpen)
{
    TestSupport::ModalAnswerer answer(QMessageBox::Cancel);
    EXPECT_EQ(OpenText("big.log", QByteArray(64 * 1024, 'x')), nullptr);
    Settle();
    ASSERT_EQ(answer.Texts().size(), 1);
    EXPECT_TRUE(answer.Texts().first().contains(QStringLiteral("This file is too large to open as text")));
    EXPECT_TRUE(Frame()->ChildFrames().isEmpty());
}

TEST_F(MemoryGuardInProgram, TheHexViewOpensInstead)
{
    TestSupport::ModalAnswerer answer(QMessageBox::Open);
    OpenText("big.log", QByteArray(64 * 1024, 'x'));
    Settle();
    ASSERT_EQ(answer.Texts().size(), 1);
    const QList<CChildFrame*> frames = Frame()->ChildFrames();
    ASSERT_EQ(frames.size(), 1);
    EXPECT_EQ(qobject_cast<CScrivelFrame*>(frames.first()), nullptr);
    EXPECT_TRUE(frames.first()->GetDocument()->GetPathName().endsWith(QStringLiteral("big.log")));
}

TEST_F(MemoryGuardInProgram, AFileThatFitsOpensAsText)
{
    qputenv("MORVANE_MEMAVAILABLE", QByteArray::number(64 * MB));
    EXPECT_NE(OpenText("small.log", "fits\n"), nullptr);
}
