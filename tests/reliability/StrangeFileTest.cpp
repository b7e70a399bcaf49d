// Files that are not plain files: nothing may wait on them, and each is either read as
// far as it goes or refused with the system's reason.
#include "DocumentFixture.h"

#include "editor/ReadableFile.h"
#include "editor/TextFile.h"
#include "search/FileSearcher.h"
#include "search/SearchQuery.h"

#include <QFile>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

// Ends the run when the body of a test waits longer than any of these opens may: a
// blocked open would otherwise hang the suite until its time limit.
class Watchdog
{
public:
    explicit Watchdog(std::string what) : m_what(std::move(what))
    {
        m_thread = std::thread([this] {
            for (int i = 0; i < 200 && !m_done; ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            if (!m_done) {
                std::fprintf(stderr, "blocked on %s\n", m_what.c_str());
                std::_Exit(3);
            }
        });
    }
    ~Watchdog()
    {
        m_done = true;
        m_thread.join();
    }

private:
    std::string m_what;
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

enum class Expect { Refused, Read };

struct StrangeFile
{
    const char* name;
    // Makes the thing in `folder` and returns its path; empty to skip.
    std::function<QString(const QString& folder)> make;
    Expect expect;
};

std::ostream& operator<<(std::ostream& out, const StrangeFile& c)
{
    return out << c.name;
}

QString Fifo(const QString& folder)
{
    const QString path = QDir(folder).filePath(QStringLiteral("pipe"));
    return ::mkfifo(QFile::encodeName(path).constData(), 0600) == 0 ? path : QString();
}

QString Socket(const QString& folder)
{
    const QString path = QDir(folder).filePath(QStringLiteral("sock"));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    if (fd < 0 || name.size() >= qsizetype(sizeof address.sun_path))
        return QString();
    std::memcpy(address.sun_path, name.constData(), std::size_t(name.size()) + 1);
    const bool ok = ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(fd); // the name stays behind, which is all a user would see
    return ok ? path : QString();
}

QString LinkLoop(const QString& folder)
{
    const QByteArray a = QFile::encodeName(QDir(folder).filePath(QStringLiteral("a")));
    const QByteArray b = QFile::encodeName(QDir(folder).filePath(QStringLiteral("b")));
    ::symlink(b.constData(), a.constData());
    ::symlink(a.constData(), b.constData());
    return QFile::decodeName(a);
}

QString Dangling(const QString& folder)
{
    const QByteArray link = QFile::encodeName(QDir(folder).filePath(QStringLiteral("dangling")));
    ::symlink("/nonexistent/target", link.constData());
    return QFile::decodeName(link);
}

QString NamedWithLineBreak(const QString& folder)
{
    const QString path = QDir(folder).filePath(QStringLiteral("two\nlines.txt"));
    TestSupport::WriteFile(path, "a name with a line break\n");
    return path;
}

QString Folder(const QString& folder)
{
    return folder;
}

const StrangeFile Cases[] = {
    {"NamedPipe", Fifo, Expect::Refused},
    {"Socket", Socket, Expect::Refused},
    {"NullDevice", [](const QString&) { return QStringLiteral("/dev/null"); }, Expect::Refused},
    {"EndlessDevice", [](const QString&) { return QStringLiteral("/dev/zero"); }, Expect::Refused},
    {"Folder", Folder, Expect::Refused},
    {"LinkLoop", LinkLoop, Expect::Refused},
    {"DanglingLink", Dangling, Expect::Refused},
    {"ProcFileWithoutSize", [](const QString&) { return QStringLiteral("/proc/self/status"); }, Expect::Read},
    {"NameWithLineBreak", NamedWithLineBreak, Expect::Read},
};

class StrangeFiles : public DocumentFixture, public ::testing::WithParamInterface<StrangeFile> {};

TEST_P(StrangeFiles, DocumentOpensOrRefusesWithoutWaiting)
{
    const QString path = GetParam().make(m_dir);
    if (path.isEmpty() || (!QFileInfo(path).isSymLink() && !QFileInfo::exists(path)
        && GetParam().expect == Expect::Read))
        GTEST_SKIP() << "this system can't make " << GetParam().name;

    CScrivelDoc* document = nullptr;
    {
        Watchdog watchdog(GetParam().name);
        document = Open(path);
    }
    if (GetParam().expect == Expect::Read) {
        ASSERT_NE(document, nullptr);
        EXPECT_FALSE(document->GetEditor()->GetText().isEmpty());
        EXPECT_TRUE(Messages().isEmpty()) << Messages().join(' ').toStdString();
        return;
    }
    EXPECT_EQ(document, nullptr);
    ASSERT_EQ(Messages().size(), 1);
    const QString prefix = QStringLiteral("Cannot open \"%1\": ").arg(QDir::toNativeSeparators(path));
    EXPECT_TRUE(Messages().first().startsWith(prefix)) << Messages().first().toStdString();
    // The reason is the system's or ours, never empty.
    EXPECT_GT(Messages().first().size(), prefix.size() + 3);
}

TEST_P(StrangeFiles, FindInFilesPassesWithoutWaiting)
{
    const QString path = GetParam().make(m_dir);
    if (path.isEmpty())
        GTEST_SKIP();
    const SearchQuery query(QStringLiteral("a"), false, false, false);
    FileSearcher searcher(query, 4);
    QList<FindInFilesMatch> matches;
    const std::atomic<bool> stop{false};
    FileSearcher::Outcome outcome;
    {
        Watchdog watchdog(GetParam().name);
        outcome = searcher.Search(QFile::encodeName(path), matches, stop, 1000);
    }
    if (GetParam().expect == Expect::Read)
        EXPECT_EQ(outcome, FileSearcher::Outcome::Searched);
    else
        EXPECT_TRUE(matches.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Kinds, StrangeFiles, ::testing::ValuesIn(Cases),
                         [](const auto& info) { return std::string(info.param.name); });

// A name whose bytes are not UTF-8 arrives as text with replacement characters and can't
// name the file any more: it is refused with the reason, not taken for another file.
TEST_F(DocumentFixture, NameWithInvalidUtf8IsRefusedWithItsReason)
{
    const QByteArray raw = QFile::encodeName(m_dir) + "/bad-\xFF\xFE-name.txt";
    FILE* file = std::fopen(raw.constData(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs("text\n", file);
    std::fclose(file);
    const QString asGiven = QString::fromLocal8Bit(raw); // how a command line arrives
    CScrivelDoc* document = Open(asGiven);
    if (document) {
        EXPECT_EQ(document->GetEditor()->GetText(), QByteArray("text\n"));
        return;
    }
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_TRUE(Messages().first().startsWith(QStringLiteral("Cannot open \""))) << Messages().first().toStdString();
}

// A file that grows while it is read is read as far as it went; one that shrinks to
// nothing gives the bytes that were there or none, never a crash.
TEST_F(DocumentFixture, FileChangingSizeWhileReadIsReadAsFarAsItGoes)
{
    const QString path = Path(QStringLiteral("growing.log"));
    TestSupport::WriteFile(path, QByteArray(4 << 20, 'x') + "\n");
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; i < 200 && !done; ++i) {
            QFile file(path);
            if (i % 2 == 0 && file.open(QIODevice::Append))
                file.write(QByteArray(64 << 10, 'y'));
            else if (file.open(QIODevice::ReadWrite))
                file.resize(1 << 20);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    CScrivelDoc* document = nullptr;
    {
        Watchdog watchdog("a file changing size");
        document = Open(path);
    }
    done = true;
    writer.join();
    if (document) {
        const QByteArray text = document->GetEditor()->GetText();
        EXPECT_GT(text.size(), 0);
        EXPECT_EQ(text.count('x') + text.count('y') + text.count('\n') + text.count('\0'), text.size());
    } else {
        EXPECT_EQ(Messages().size(), 1);
    }
}

TEST(ReadableFile, RefusesWhatIsNoFileAndSaysWhy)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString pipe = Fifo(folder);
    ASSERT_FALSE(pipe.isEmpty());
    QFile file;
    QString error;
    EXPECT_FALSE(ReadableFile::Open(file, pipe, &error));
    EXPECT_EQ(error, QStringLiteral("Is a named pipe, not a file"));
    EXPECT_EQ(ReadableFile::RefusalReason(pipe), error);
    EXPECT_FALSE(ReadableFile::Open(file, folder, &error));
    EXPECT_EQ(error, QStringLiteral("Is a directory"));
    EXPECT_FALSE(ReadableFile::Open(file, QDir(folder).filePath(QStringLiteral("missing")), &error));
    EXPECT_EQ(error, QStringLiteral("No such file or directory"));

    const QString plain = QDir(folder).filePath(QStringLiteral("plain.txt"));
    TestSupport::WriteFile(plain, "bytes");
    ASSERT_TRUE(ReadableFile::Open(file, plain, &error));
    EXPECT_EQ(file.fileName(), plain);
    EXPECT_EQ(file.readAll(), QByteArray("bytes"));
    EXPECT_TRUE(ReadableFile::RefusalReason(plain).isEmpty());
}

} // namespace
