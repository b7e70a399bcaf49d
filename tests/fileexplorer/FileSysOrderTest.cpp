#include "fileexplorer/FileSysOrder.h"
#include "fileexplorer/TopLevelFolders.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

struct OrderCase
{
    bool folderA;
    const char* a;
    bool folderB;
    const char* b;
    bool less;
};

using FileSysOrderTest = ::testing::TestWithParam<OrderCase>;

TEST_P(FileSysOrderTest, OrdersSiblings)
{
    const OrderCase& c = GetParam();
    const QString a = QString::fromUtf8(c.a);
    const QString b = QString::fromUtf8(c.b);
    EXPECT_EQ(FileSysOrder::Less(c.folderA, a, c.folderB, b), c.less) << c.a << " vs " << c.b;
    // The order is strict: never both ways, and equal names only when identical.
    if (a != b || c.folderA != c.folderB) {
        EXPECT_NE(FileSysOrder::Less(c.folderA, a, c.folderB, b), FileSysOrder::Less(c.folderB, b, c.folderA, a));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FileSysOrderTest,
    ::testing::Values(
        // Folders come first whatever their names.
        OrderCase{true, "zeta", false, "alpha", true},
        OrderCase{false, "alpha", true, "zeta", false},
        // Case does not decide the order, only breaks a tie.
        OrderCase{false, "apple", false, "Banana", true},
        OrderCase{false, "Apple", false, "banana", true},
        OrderCase{false, "README", false, "readme", true},
        // Digit runs by value.
        OrderCase{false, "file2.txt", false, "file10.txt", true},
        OrderCase{false, "file10.txt", false, "file9.txt", false},
        OrderCase{false, "v1.2.10", false, "v1.2.9", false},
        OrderCase{false, "x007", false, "x8", true},
        OrderCase{false, "x01", false, "x1", true},
        // A prefix comes first.
        OrderCase{false, "main", false, "main.cpp", true},
        // Beyond ASCII, case is still folded.
        OrderCase{false, "\xc3\xa9t\xc3\xa9", false, "\xc3\x89T\xc3\x89Z", true},
        OrderCase{false, "same", false, "same", false}));

TEST(TopLevelFoldersTest, HomeRootThenTheVolumesAPersonMounted)
{
#ifdef Q_OS_WIN
    GTEST_SKIP() << "drives are listed on Windows";
#endif
    const QList<TopLevelFolders::Volume> volumes = {
        {QStringLiteral("/"), QStringLiteral("/dev/sda1")},
        {QStringLiteral("/boot/efi"), QStringLiteral("/dev/sda2")},
        {QStringLiteral("/media/alice/USB STICK"), QStringLiteral("/dev/sdb1")},
        {QStringLiteral("/proc"), QStringLiteral("proc")},
        {QStringLiteral("/etc/hosts"), QStringLiteral("/dev/sda1")},
        {QStringLiteral("/mnt/share/"), QStringLiteral("//server/share")},
        {QStringLiteral("/media/alice/USB STICK"), QStringLiteral("/dev/sdb1")},
        {QStringLiteral("/mnt"), QStringLiteral("/dev/sdc1")},
        {QStringLiteral("/run/media/bob/disk"), QStringLiteral("/dev/sdd1")},
    };
    EXPECT_EQ(TopLevelFolders::Choose(QStringLiteral("/home/alice/"), volumes),
              (QStringList{QStringLiteral("/home/alice"), QStringLiteral("/"),
                           QStringLiteral("/media/alice/USB STICK"), QStringLiteral("/mnt/share"),
                           QStringLiteral("/run/media/bob/disk")}));
}

} // namespace

namespace {

// Sorting by keys must give exactly the order of the name comparison.
TEST(FileSysOrderKeyTest, KeysOrderNamesAsTheComparisonDoes)
{
    const QString alphabet = QStringLiteral("aAbB0019._-\u00e9\u00c9z");
    quint32 seed = 12345;
    auto next = [&] {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 16) & 0x7fff;
    };
    QStringList names;
    for (int i = 0; i < 400; ++i) {
        QString name;
        const int length = 1 + int(next() % 8);
        for (int c = 0; c < length; ++c)
            name += alphabet.at(int(next() % alphabet.size()));
        names << name;
    }
    for (const QString& a : names) {
        for (const QString& b : names.mid(0, 60)) {
            int byKey = QString::compare(FileSysOrder::SortKey(a), FileSysOrder::SortKey(b), Qt::CaseSensitive);
            if (byKey == 0)
                byKey = QString::compare(a, b, Qt::CaseSensitive);
            const int byName = FileSysOrder::CompareNames(a, b);
            ASSERT_EQ(byKey < 0, byName < 0) << a.toStdString() << " vs " << b.toStdString();
            ASSERT_EQ(byKey > 0, byName > 0) << a.toStdString() << " vs " << b.toStdString();
        }
    }
}

} // namespace
