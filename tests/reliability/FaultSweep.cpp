#include "FaultSweep.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

using FaultInjector::Call;

namespace {

struct Fault
{
    Call call;
    int error;
    bool shortWrite = false;
    bool sticky = false;
};

// The errors each kind of call gives when a disk fills, a mount turns read-only or a
// permission is taken away.
const std::vector<Fault>& Faults()
{
    static const std::vector<Fault> faults = {
        {Call::Open, EACCES}, {Call::Open, ENOSPC}, {Call::Open, EROFS},
        {Call::Open, EROFS, false, true},
        {Call::Write, ENOSPC}, {Call::Write, EIO}, {Call::Write, EDQUOT},
        {Call::Write, 0, true},
        {Call::Sync, EIO}, {Call::Sync, ENOSPC},
        {Call::Rename, EACCES}, {Call::Rename, EROFS}, {Call::Rename, EXDEV}, {Call::Rename, EBUSY},
        {Call::Link, ENOSPC}, {Call::Link, EACCES},
        {Call::Chmod, EPERM}, {Call::Chmod, EROFS},
        {Call::Copy, ENOSPC}, {Call::Copy, EXDEV},
    };
    return faults;
}

// A long save makes many writes; the first few and the last show every path.
constexpr int MaxPlacesPerCall = 6;

QByteArray Read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// Everything below the folder, as paths relative to it.
QStringList Entries(const QString& folder)
{
    const QDir root(folder);
    QStringList names;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        names << root.relativeFilePath(it.next());
    names.sort();
    return names;
}

QByteArray Observe(const SweepWriter& writer)
{
    return writer.observe ? writer.observe() : Read(writer.target);
}

std::string Describe(const Fault& fault, int nth)
{
    char text[128];
    std::snprintf(text, sizeof text, "%s #%d %s%s", FaultInjector::Name(fault.call), nth,
                  fault.shortWrite ? "short write" : std::strerror(fault.error),
                  fault.sticky ? " (and every later one)" : "");
    return text;
}

struct Totals
{
    std::map<std::string, std::pair<int, int>> byWriter;
    ~Totals()
    {
        int cases = 0;
        int intact = 0;
        for (const auto& [name, counts] : byWriter) {
            std::printf("fault injection: %-28s %4d cases, %4d left the file intact\n", name.c_str(),
                        counts.first, counts.second);
            cases += counts.first;
            intact += counts.second;
        }
        if (!byWriter.empty())
            std::printf("fault injection: %-28s %4d cases, %4d left the file intact\n", "all writers",
                        cases, intact);
    }
};

Totals& TheTotals()
{
    static Totals totals;
    return totals;
}

} // namespace

SweepResult Sweep(const SweepWriter& writer)
{
    SweepResult result;
    const std::string folder = QDir(writer.folder).absolutePath().toStdString();

    // A clean run first: it must succeed, and it tells how many calls of each kind a
    // save makes.
    writer.prepare();
    // Counted, not named: some writers name their files afresh each time.
    const qsizetype entriesBefore = Entries(writer.folder).size();
    const auto watch = [&] {
        FaultInjector::Watch(folder);
        if (writer.refuse != Call::Count)
            FaultInjector::Refuse(writer.refuse, writer.refuseError);
    };
    watch();
    const bool cleanOk = writer.save();
    for (int k = 0; k < int(Call::Count); ++k)
        result.calls[k] = FaultInjector::Calls(Call(k));
    FaultInjector::Reset();
    // A good save may add files (a new version) but never leaves more than that.
    const qsizetype entriesAfter = Entries(writer.folder).size();
    if (!cleanOk || Observe(writer) != writer.after) {
        result.problems.push_back("the save without faults failed or wrote the wrong bytes");
        return result;
    }

    for (const Fault& fault : Faults()) {
        const int places = result.calls[int(fault.call)];
        for (int nth = 1; nth <= places; ++nth) {
            if (places > MaxPlacesPerCall && nth > MaxPlacesPerCall / 2 && nth <= places - MaxPlacesPerCall / 2)
                continue;
            writer.prepare();
            watch();
            FaultInjector::Arm(fault.call, nth, fault.error, fault.shortWrite, fault.sticky);
            const bool ok = writer.save();
            const bool fired = FaultInjector::Fired();
            FaultInjector::Reset();
            if (!fired)
                continue; // the save took another path this time
            ++result.cases;
            result.failed += ok ? 0 : 1;
            if (ok && std::getenv("MORVANE_SWEEP_VERBOSE"))
                std::printf("  absorbed: %s\n", Describe(fault, nth).c_str());

            const QByteArray now = Observe(writer);
            std::string problem;
            if (!writer.judgeReport && (now == writer.before || now == writer.after))
                ++result.intact;
            else if (!writer.judgeReport)
                problem = "the file holds neither its old bytes nor the new ones";
            else if (ok && now != writer.after)
                problem = "reported success but the file does not hold the new bytes";
            else if (!ok && now != writer.before)
                problem = now == writer.after ? "wrote the file but reported failure"
                                              : "reported failure and the old file is damaged";
            else
                ++result.intact;
            // A failed write, a failed rename or the first failed sync can't be
            // worked around: a save that still reports success has lost bytes or
            // left them at the mercy of the disk.
            const bool mustFail = (fault.call == Call::Write && !fault.shortWrite)
                || fault.call == Call::Rename || (fault.call == Call::Sync && nth == 1);
            if (problem.empty() && ok && mustFail && writer.judgeReport)
                problem = "the failure was ignored and the save reported success";
            const QStringList left = Entries(writer.folder);
            if (problem.empty() && left.size() != (ok ? entriesAfter : entriesBefore))
                problem = "left files behind: " + left.join(QLatin1Char(' ')).toStdString();
            if (problem.empty() && writer.check)
                problem = writer.check(ok);
            if (!problem.empty())
                result.problems.push_back(Describe(fault, nth) + ": " + problem);
        }
    }
    return result;
}

void CountSweep(const char* writer, const SweepResult& result)
{
    auto& counts = TheTotals().byWriter[writer];
    counts.first += result.cases;
    counts.second += result.intact;
}

void ExpectSweep(const char* writer, const SweepResult& result, Call mustReach)
{
    CountSweep(writer, result);
    for (const std::string& problem : result.problems)
        ADD_FAILURE() << writer << ": " << problem;
    EXPECT_GT(result.calls[int(mustReach)], 0) << writer;
    EXPECT_GT(result.cases, 5) << writer;
    EXPECT_EQ(result.intact, result.cases) << writer;
    EXPECT_GT(result.failed, result.cases / 2) << writer;
    std::printf("%s: %d calls of open, %d of write, %d of sync, %d of rename, %d of link, %d of copy; "
                "%d of %d faulted saves reported failure\n",
                writer, result.calls[int(Call::Open)], result.calls[int(Call::Write)],
                result.calls[int(Call::Sync)], result.calls[int(Call::Rename)], result.calls[int(Call::Link)],
                result.calls[int(Call::Copy)], result.failed, result.cases);
}

SweepWriter FileWriter(const QString& folder, const QString& name, QByteArray before, QByteArray after)
{
    SweepWriter writer;
    writer.folder = folder;
    writer.target = QDir(folder).filePath(name);
    writer.before = std::move(before);
    writer.after = std::move(after);
    writer.prepare = [target = writer.target, bytes = writer.before] {
        QFile file(target);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << target.toStdString();
        ASSERT_EQ(file.write(bytes), bytes.size());
    };
    return writer;
}

FileTree ReadTree(const QString& folder)
{
    FileTree tree;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        tree[QDir(folder).relativeFilePath(path)] = Read(path);
    }
    return tree;
}

QByteArray Flatten(const FileTree& tree)
{
    QByteArray flat;
    for (const auto& [name, bytes] : tree)
        flat += name.toUtf8() + " (" + QByteArray::number(bytes.size()) + "): " + bytes + '\n';
    return flat;
}

QByteArray Lines(int count, const char* word)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += word + QByteArray::number(i) + " the quick brown fox jumps over the lazy dog\n";
    return text;
}
