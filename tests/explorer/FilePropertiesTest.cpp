// What the file properties dialog shows and changes, on real files.
#include "explorer/FileProperties.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTimeZone>
#include <gtest/gtest.h>

namespace {

TEST(FileProperties, DateFormatUsesEnglishMonthsAndTwoDigitFields)
{
    const struct
    {
        QDate date;
        QTime time;
        const char* text;
    } cases[] = {
        {{2024, 3, 5}, {9, 4, 2}, "05 March 2024, 09:04:02"},
        {{1999, 12, 31}, {23, 59, 59}, "31 December 1999, 23:59:59"},
        {{2026, 1, 10}, {0, 0, 0}, "10 January 2026, 00:00:00"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FileProperties::FormatDate(QDateTime(c.date, c.time)), c.text);
    EXPECT_EQ(FileProperties::FormatDate(QDateTime()), "Unknown");
    EXPECT_EQ(FileProperties::MonthName(0), "");
    EXPECT_EQ(FileProperties::MonthName(13), "");
}

TEST(FileProperties, SizeIsTheFullSixtyFourBitValue)
{
    EXPECT_EQ(FileProperties::FormatSize(0), "00 (bytes)");
    EXPECT_EQ(FileProperties::FormatSize(7), "07 (bytes)");
    EXPECT_EQ(FileProperties::FormatSize(6442450944LL), "6442450944 (bytes)");
}

TEST(FileProperties, ReadsARealFileAndAMissingOne)
{
    const QString dir = TestSupport::MakeTempDir();
    const QString path = dir + QStringLiteral("/.hidden.txt");
    TestSupport::WriteFile(path, "hello");
    const FileProperties p = FileProperties::Read(path);
    EXPECT_TRUE(p.exists);
    EXPECT_EQ(p.name, ".hidden.txt");
    EXPECT_EQ(p.location, QDir::toNativeSeparators(dir));
    EXPECT_EQ(p.size, "05 (bytes)");
    EXPECT_TRUE(p.hidden);
    EXPECT_FALSE(p.readOnly);
    EXPECT_NE(p.modified, "Unknown");

    const FileProperties missing = FileProperties::Read(dir + QStringLiteral("/gone"));
    EXPECT_FALSE(missing.exists);
    for (const QString& text : {missing.name, missing.location, missing.size, missing.created, missing.modified,
                                missing.accessed})
        EXPECT_EQ(text, "Unknown");
}

TEST(FileProperties, ReadOnlyIsTheOwnersWritePermission)
{
    const QString path = TestSupport::MakeTempDir() + QStringLiteral("/f.txt");
    TestSupport::WriteFile(path, "x");
    ASSERT_TRUE(FileProperties::SetReadOnly(path, true));
    EXPECT_FALSE(QFile::permissions(path) & QFileDevice::WriteOwner);
    EXPECT_TRUE(FileProperties::Read(path).readOnly);
    ASSERT_TRUE(FileProperties::SetReadOnly(path, false));
    EXPECT_TRUE(QFile::permissions(path) & QFileDevice::WriteOwner);
    EXPECT_FALSE(FileProperties::Read(path).readOnly);
}

} // namespace
