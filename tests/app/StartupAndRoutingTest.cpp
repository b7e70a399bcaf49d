#include "MainFrameFixture.h"

#include "framework/CDocTemplate.h"
#include "settings/CRegistryStore.h"
#include "app/FileHandOff.h"
#include "hex/CHexDocument.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

namespace {

class StartupTest : public MainFrameFixture
{
protected:
    QString Path(const QString& name) const { return QDir(m_dir).filePath(name); }

    static QList<CDocument*> Documents()
    {
        QList<CDocument*> documents;
        for (CChildFrame* frame : Frame()->ChildFrames()) {
            if (frame->GetDocument() && !documents.contains(frame->GetDocument()))
                documents << frame->GetDocument();
        }
        return documents;
    }

    static QStringList Paths()
    {
        QStringList paths;
        for (CDocument* document : Documents())
            paths << document->GetPathName();
        return paths;
    }
};

TEST_F(StartupTest, NothingToOpenGivesExactlyOneUntitledDocument)
{
    ASSERT_TRUE(App()->InitInstance({}));
    const auto documents = Documents();
    ASSERT_EQ(documents.size(), 1);
    EXPECT_NE(qobject_cast<CScrivelDoc*>(documents.first()), nullptr);
    EXPECT_EQ(documents.first()->GetTitle(), QStringLiteral("Untitled1"));
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("Untitled1 - Morvane"));
}

TEST_F(StartupTest, CommandLineFilesOpenInTabsWithoutAnUntitledOne)
{
    const QString a = MakeFile(QStringLiteral("a.txt"), "alpha");
    const QString b = MakeFile(QStringLiteral("b.cpp"), "int main() {}\n");
    ASSERT_TRUE(App()->InitInstance({a, b}));
    EXPECT_EQ(Paths(), QStringList({a, b}));
    EXPECT_EQ(Frame()->windowTitle(), QStringLiteral("b.cpp - Morvane"));
}

TEST_F(StartupTest, PendingFilesOpenAndTheListIsDeletedEvenWhenOneFails)
{
    const QString a = MakeFile(QStringLiteral("a.txt"), "alpha");
    const QString b = MakeFile(QStringLiteral("b.txt"), "beta");
    CRegistryStore store;
    store.WriteProfileString(QStringLiteral("FilesToOpen"), QStringLiteral("1"), a);
    store.WriteProfileString(QStringLiteral("FilesToOpen"), QStringLiteral("2"), QStringLiteral(""));
    store.WriteProfileString(QStringLiteral("FilesToOpen"), QStringLiteral("3"), m_dir); // a folder: can't be read
    store.WriteProfileString(QStringLiteral("FilesToOpen"), QStringLiteral("4"), b);
    TestSupport::ModalAnswerer answerer;
    ASSERT_TRUE(App()->InitInstance({}));
    QStringList paths = Paths();
    paths.sort();
    EXPECT_EQ(paths, QStringList({a, b})) << "no Untitled document besides the pending ones";
    EXPECT_EQ(answerer.Texts().size(), 1) << "the unreadable entry says why";
    EXPECT_FALSE(FileHandOff::HasPending());
}

TEST_F(StartupTest, HandOffThroughTheSocketOpensTheFiles)
{
    ASSERT_TRUE(App()->InitInstance({}));
    const QString a = MakeFile(QStringLiteral("handed.txt"), "over");
    CRegistryStore().WriteProfileString(QStringLiteral("FilesToOpen"), QStringLiteral("x"), a);
    ASSERT_TRUE(FileHandOff::Notify());
    QTRY_VERIFY_WITH_TIMEOUT(Paths().contains(a), 5000);
    EXPECT_FALSE(FileHandOff::HasPending());
}

// A program of another session (another runtime folder), or a test run beside the
// user's own program, neither hears nor takes over this one's socket.
TEST(FileHandOffTest, OnlyAProgramOfTheSameRuntimeFolderIsReached)
{
    const QByteArray own = qgetenv("XDG_RUNTIME_DIR");
    const auto restore = qScopeGuard([&] { qputenv("XDG_RUNTIME_DIR", own); });
    FileHandOff listening;
    ASSERT_TRUE(listening.Listen());
    EXPECT_TRUE(FileHandOff::Notify());

    const QString other = TestSupport::MakeTempDir();
    QFile::setPermissions(other, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(other));
    EXPECT_FALSE(FileHandOff::Notify(200)) << "nothing listens in the other folder";
    FileHandOff second;
    ASSERT_TRUE(second.Listen());
    EXPECT_TRUE(FileHandOff::Notify());

    qputenv("XDG_RUNTIME_DIR", own);
    EXPECT_TRUE(FileHandOff::Notify()) << "the first program's socket was left alone";
}

TEST_F(StartupTest, TheSamePathTwiceActivatesTheFirstDocument)
{
    const QString a = MakeFile(QStringLiteral("same.txt"), "one");
    const QString b = MakeFile(QStringLiteral("other.txt"), "two");
    ASSERT_TRUE(App()->InitInstance({a, b}));
    ASSERT_EQ(Documents().size(), 2);
    EXPECT_EQ(App()->OpenDocumentFile(m_dir + QStringLiteral("/./sub/../same.txt")), nullptr);
    QFile::link(a, Path(QStringLiteral("link.txt")));
    EXPECT_EQ(App()->OpenDocumentFile(Path(QStringLiteral("link.txt"))), nullptr);
    EXPECT_EQ(Documents().size(), 2);
    ASSERT_NE(Frame()->ActiveChild(), nullptr);
    EXPECT_EQ(Frame()->ActiveChild()->GetDocument()->GetPathName(), a);
}

struct RouteCase
{
    const char* name;
    QByteArray bytes;
    int mode;        // the open mode asked for
    bool expectHex;
};

class RouteTest : public StartupTest, public ::testing::WithParamInterface<RouteCase>
{
};

TEST_P(RouteTest, DecidesBetweenTextAndHex)
{
    const RouteCase& c = GetParam();
    ASSERT_TRUE(App()->InitInstance({}));
    const QString path = MakeFile(QStringLiteral("probe.dat"), c.bytes);
    App()->GetOpenOptions() = OpenOptions();
    App()->SetOpenMode(c.mode);
    CDocument* document = App()->RouteOpenFile(path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(qobject_cast<CHexDocument*>(document) != nullptr, c.expectHex);
    EXPECT_EQ(qobject_cast<CScrivelDoc*>(document) != nullptr, !c.expectHex);
    EXPECT_EQ(App()->LastRouteMode(), c.expectHex ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Modes, RouteTest, ::testing::Values(
    RouteCase{"ansi_text", QByteArray("plain text\n"), OpenOptions::Detect, false},
    RouteCase{"zero_byte_detected", QByteArray("ab\0cd", 5), OpenOptions::Detect, true},
    RouteCase{"zero_byte_forced_text", QByteArray("ab\0cd", 5), OpenOptions::Text, false},
    RouteCase{"text_forced_hex", QByteArray("plain text\n"), OpenOptions::Hex, true},
    RouteCase{"utf16_unmarked_is_text", QByteArray("a\0b\0c\0", 6), OpenOptions::Detect, false},
    RouteCase{"marked_utf8_with_zero_is_text", QByteArray("\xEF\xBB\xBF" "a\0b", 6), OpenOptions::Detect, false},
    RouteCase{"empty_file_is_text", QByteArray(), OpenOptions::Detect, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(StartupTest, ForcedEncodingIsNotReplacedByTheProbe)
{
    ASSERT_TRUE(App()->InitInstance({}));
    const QString path = MakeFile(QStringLiteral("wide.txt"), QByteArray("\xFF\xFE" "a\0", 4));
    App()->GetOpenOptions() = OpenOptions();
    App()->GetOpenOptions().encoding = 3;
    auto* document = qobject_cast<CScrivelDoc*>(App()->RouteOpenFile(path));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->Encoding, 3);
    // The mark's bytes read as "Ansi" letters, not taken as a mark.
    EXPECT_EQ(document->GetEditor()->GetText(), QByteArray("\xC3\xBF\xC3\xBE" "a\0", 6));
}

TEST_F(StartupTest, ANameThatIsNotThereYetIsCreatedOnTheFirstSave)
{
    const QString path = Path(QStringLiteral("new-notes.txt"));
    ASSERT_TRUE(App()->InitInstance({path}));
    ASSERT_EQ(Documents().size(), 1);
    auto* document = qobject_cast<CScrivelDoc*>(Documents().first());
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(document->GetTitle(), QStringLiteral("new-notes.txt"));
    document->GetEditor()->AddText("first words\n");
    ASSERT_TRUE(document->DoFileSave());
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("first words\n"));
}

TEST_F(StartupTest, OpenedFilesEnterTheRecentList)
{
    const QString a = MakeFile(QStringLiteral("recent.txt"), "r");
    ASSERT_TRUE(App()->InitInstance({a}));
    ASSERT_FALSE(App()->GetRecentFiles().Files().isEmpty());
    EXPECT_EQ(QDir::fromNativeSeparators(App()->GetRecentFiles().Files().first()), a);
    EXPECT_EQ(CRegistryStore().GetProfileString(QStringLiteral("Recent File List"), QStringLiteral("File1")),
              QDir::toNativeSeparators(a));
}

} // namespace
