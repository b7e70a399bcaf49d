// Every widget-free writer, with each file system call of its save failing in turn.
#include "FaultSweep.h"

#include "codelibrary/TemplateFiles.h"
#include "editor/TextFile.h"
#include "editor/UncachedWriter.h"
#include "explorer/CWorkspace.h"
#include "search/FileReplacer.h"
#include "hex/CPieceTable.h"
#include "syntax/CSyntaxParser.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>

#include <memory>

#include <sys/sendfile.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using FaultInjector::Call;

// Large enough that the toolkit's write buffer is flushed several times.
QByteArray Pattern(int size, char seed)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = char(seed + (i * 7) % 61 + (i % 4093 == 0 ? '\n' : 0));
    return bytes;
}

// Small files are written through the file cache; large ones around it, in whole blocks
// and an unaligned rest.
struct TextFileSweepCase
{
    const char* name;
    const char* writer;
    qint64 uncachedFrom;
};

class TextFileSweep : public ::testing::TestWithParam<TextFileSweepCase>
{
};

TEST_P(TextFileSweep, WritesBesideAndRenames)
{
    const TextFileSweepCase& c = GetParam();
    SweepWriter writer = FileWriter(TestSupport::MakeTempDir(), QStringLiteral("notes.txt"), Pattern(70000, 'a'),
                                    Pattern(90000, 'A'));
    const QString path = writer.target;
    writer.save = [&] {
        TextFile file(c.uncachedFrom);
        if (!file.OpenWrite(path, writer.after.size()))
            return false;
        // Pieces the size the saver hands over.
        for (int at = 0; at < writer.after.size(); at += 32768) {
            const int n = std::min<int>(32768, int(writer.after.size()) - at);
            if (!file.Write(writer.after.constData() + at, n))
                return false;
        }
        return file.Commit();
    };
    const SweepResult result = Sweep(writer);
    ExpectSweep(c.writer, result);
    EXPECT_GT(result.calls[int(Call::Rename)] + result.calls[int(Call::Link)], 0);
}

INSTANTIATE_TEST_SUITE_P(Writes, TextFileSweep,
                         ::testing::Values(TextFileSweepCase{"Cached", "text file", TextFile::UncachedFrom},
                                           TextFileSweepCase{"Uncached", "text file, uncached", 0}),
                         [](const auto& info) { return std::string(info.param.name); });

// A disk that wants a larger alignment than the writer's refuses the uncached write; the
// same bytes then go through the cache and nothing is lost or doubled.
TEST(SaveFaults, RefusedUncachedWriteIsWrittenCached)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString path = QDir(folder).filePath(QStringLiteral("out.bin"));
    const QByteArray content = Pattern(5 * 4096 + 77, 'k');
    // Only files opened while watched are counted.
    FaultInjector::Watch(QDir(folder).absolutePath().toStdString());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    UncachedWriter writer(file.handle(), 2 * UncachedWriter::Block);
    if (!writer.IsUncached()) {
        FaultInjector::Reset();
        GTEST_SKIP() << "the file system of the temporary folder takes no uncached writes";
    }
    FaultInjector::Arm(Call::Write, 2, EINVAL);
    const bool written = writer.Write(content.constData(), std::size_t(content.size())) && writer.Finish();
    const bool fired = FaultInjector::Fired();
    FaultInjector::Reset();
    file.close();
    EXPECT_TRUE(fired);
    EXPECT_TRUE(written) << writer.ErrorString().toStdString();
    EXPECT_FALSE(writer.IsUncached());
    EXPECT_TRUE(TestSupport::ReadFile(path) == content);
}

TEST(SaveFaults, HexTableSavesOverTheFileItReads)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString path = QDir(folder).filePath(QStringLiteral("image.bin"));
    SweepWriter writer;
    writer.folder = folder;
    writer.target = path;
    writer.before = Pattern(200000, '\x10');
    writer.after = writer.before;
    writer.after.replace(100, 4, "\x7F" "ELF");
    writer.after.insert(150000, QByteArray(3000, '\xEE'));
    writer.after.remove(5, 10);
    CPieceTable table;
    writer.prepare = [&] {
        table.Reset();
        TestSupport::WriteFile(path, writer.before);
        ASSERT_TRUE(table.Open(path, nullptr));
        table.Overwrite(100, "\x7F" "ELF");
        table.Insert(150000, QByteArray(3000, '\xEE'));
        table.Remove(5, 10);
    };
    writer.save = [&] { return table.Save(path, true, nullptr); };
    writer.check = [&](bool ok) -> std::string {
        if (table.IsModified() == ok)
            return ok ? "still modified after a save" : "no longer modified after a failed save";
        // After a failure the table must still hold the edits.
        if (table.Read(0, table.Size()) != writer.after)
            return "the edits were lost";
        return {};
    };
    ExpectSweep("hex table", Sweep(writer));
}

TEST(SaveFaults, SyntaxColoursEditTheDefinitionFile)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString path = QDir(folder).filePath(QStringLiteral("Demo.config"));
    QByteArray before = "<?xml version=\"1.0\"?>\n<SYNTAX><PROPERTIES><MENU>Demo</MENU><COLOURS>\n";
    for (int i = 0; i < 400; ++i)
        before += "  <COLOUR STYLE=\"" + QByteArray::number(i % 120) + "\" HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\""
                  " EOLFILLED=\"False\">Colour" + QByteArray::number(i) + "</COLOUR>\n";
    before += "</COLOURS></PROPERTIES></SYNTAX>\n";
    QByteArray after = before;
    after.replace("HEXFORE=\"#000000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"False\">Colour7<",
                  "HEXFORE=\"#FF0000\" HEXBACK=\"#FFFFFF\" EOLFILLED=\"True\">Colour7<");

    SweepWriter writer = FileWriter(folder, QStringLiteral("Demo.config"), before, after);
    CSyntaxParser parser;
    writer.prepare = [&] {
        TestSupport::WriteFile(path, before);
        ASSERT_TRUE(CSyntaxParser::ReadFile(path, parser));
        ASSERT_EQ(parser.colours[7].name, QStringLiteral("Colour7"));
        parser.colours[7].fore = 0x0000FF; // stored as BGR, written as #FF0000
        parser.colours[7].eolFilled = true;
    };
    writer.save = [&] { return parser.SaveColours(); };
    ExpectSweep("syntax colours", Sweep(writer));
}

TEST(SaveFaults, TemplateReplacesItsFileWhole)
{
    SweepWriter writer = FileWriter(TestSupport::MakeTempDir(), QStringLiteral("Loop.cpp"), Pattern(40000, 'f'),
                                    Pattern(60000, 'F'));
    writer.save = [&] { return TemplateFiles::WriteTemplate(writer.target, writer.after); };
    ExpectSweep("template", Sweep(writer));
}

TEST(SaveFaults, ReplaceInFilesLeavesTheFileWholeOrReplaced)
{
    QByteArray before;
    for (int i = 0; i < 4000; ++i)
        before += "alpha " + QByteArray::number(i) + "\n";
    SweepWriter writer = FileWriter(TestSupport::MakeTempDir(), QStringLiteral("data.txt"), before,
                                    QByteArray(before).replace("alpha", "omega"));
    const FileReplacer replacer(SearchQuery(QStringLiteral("alpha"), true, false, false), QStringLiteral("omega"));
    QString reason;
    writer.save = [&] {
        const FileReplacer::Result result = replacer.Replace(writer.target, FileStamp());
        reason = result.error;
        return result.status == FileReplacer::Status::Replaced;
    };
    writer.check = [&](bool ok) -> std::string {
        return !ok && reason.isEmpty() ? "a failed replace gave no reason" : std::string();
    };
    ExpectSweep("replace in files", Sweep(writer));
}

class CountingPrompts : public IWorkspacePrompts
{
public:
    bool AskSaveBeforeClose() override { return false; }
    QString AskSavePath() override { return {}; }
    bool ConfirmDeleteFolder() override { return false; }
    void ShowInformation(const QString&) override {}
    void ShowError(const QString& text) override { errors << text; }
    QStringList errors;
};

TEST(SaveFaults, WorkspaceKeepsItsFileAndStaysModified)
{
    // The bytes of a workspace of many files, before and after one more is added.
    const QString scratch = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("project.spf"));
    CWorkspace build;
    build.NewWorkspace(scratch);
    for (int i = 0; i < 400; ++i)
        build.AddFile(QStringLiteral("/src/module%1/file%1.cpp").arg(i), build.Root(), CWorkspace::TextFileImage, 0);
    ASSERT_TRUE(build.SaveWorkspace());
    const QByteArray before = TestSupport::ReadFile(scratch);
    build.AddFile(QStringLiteral("/src/added.cpp"), build.Root(), CWorkspace::TextFileImage, 0);
    ASSERT_TRUE(build.SaveWorkspace());

    SweepWriter writer = FileWriter(TestSupport::MakeTempDir(), QStringLiteral("project.spf"), before,
                                    TestSupport::ReadFile(scratch));
    std::unique_ptr<CWorkspace> workspace;
    CountingPrompts prompts;
    const auto putBack = writer.prepare;
    writer.prepare = [&] {
        putBack();
        workspace = std::make_unique<CWorkspace>();
        workspace->SetPrompts(&prompts);
        prompts.errors.clear();
        ASSERT_TRUE(workspace->OpenWorkspace(writer.target));
        workspace->AddFile(QStringLiteral("/src/added.cpp"), workspace->Root(), CWorkspace::TextFileImage, 0);
    };
    writer.save = [&] { return workspace->SaveWorkspace(); };
    writer.check = [&](bool ok) -> std::string {
        if (workspace->IsModified() == ok)
            return ok ? "still modified after a save" : "no longer modified after a failed save";
        if (ok != prompts.errors.isEmpty())
            return ok ? "an error shown for a save that worked" : "a failed save said nothing";
        if (!ok && !prompts.errors.first().startsWith(QStringLiteral("Failed to save the workspace \"")))
            return "unexpected message: " + prompts.errors.first().toStdString();
        return {};
    };
    ExpectSweep("workspace", Sweep(writer));
}

} // namespace

namespace {

// The injector itself: only watched files are touched, and the armed call fails once.
TEST(FaultInjectorItself, FailsTheArmedCallOnWatchedFilesOnly)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString outside = TestSupport::MakeTempDir();
    const QByteArray watched = QFile::encodeName(QDir(folder).filePath(QStringLiteral("w")));
    const QByteArray other = QFile::encodeName(QDir(outside).filePath(QStringLiteral("o")));
    FaultInjector::Watch(QDir(folder).absolutePath().toStdString());
    FaultInjector::Arm(Call::Write, 2, ENOSPC);

    QFile in(QString::fromUtf8(watched));
    QFile out(QString::fromUtf8(other));
    ASSERT_TRUE(in.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_EQ(out.write("x", 1), 1);
    EXPECT_EQ(out.write("x", 1), 1);
    EXPECT_EQ(in.write("ab", 2), 2);
    EXPECT_FALSE(FaultInjector::Fired());
    EXPECT_EQ(in.write("cd", 2), -1); // the second watched write
    EXPECT_TRUE(FaultInjector::Fired());
    EXPECT_EQ(in.write("ef", 2), 2);  // once only
    EXPECT_EQ(FaultInjector::Calls(Call::Write), 3);
    EXPECT_EQ(FaultInjector::Calls(Call::Open), 1);

    FaultInjector::Arm(Call::Write, 1, 0, /*shortWrite=*/true);
    EXPECT_EQ(in.write("0123456789", 10), 10); // QFile goes on after the short write
    EXPECT_TRUE(FaultInjector::Fired());

    // Copies the kernel makes count as copies, whichever call asks for them.
    FaultInjector::Arm(Call::Copy, 2, ENOSPC);
    QFile source(QString::fromUtf8(other));
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    off_t from = 0;
    EXPECT_EQ(::sendfile(in.handle(), source.handle(), &from, 1), 1);
    EXPECT_EQ(::copy_file_range(source.handle(), nullptr, in.handle(), nullptr, 1, 0), -1);
    EXPECT_EQ(errno, ENOSPC);
    FaultInjector::Reset();
    in.close();
    EXPECT_EQ(TestSupport::ReadFile(QString::fromUtf8(watched)), QByteArray("abef0123456789x"));
}

} // namespace
