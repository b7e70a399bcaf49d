#pragma once

#include "FaultInjector.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <map>
#include <string>
#include <vector>

// Runs one save again and again, failing each file system call it makes in turn with
// each error a disk can give, and checks after every run that the file holds either its
// old bytes (the save said it failed) or the new ones (the save said it succeeded), and
// that nothing was left behind in the folder or below it.
struct SweepWriter
{
    QString folder;           // watched; must hold nothing but what the save touches
    QString target;           // the file the save writes
    QByteArray before;        // its bytes before each save
    QByteArray after;         // its bytes after a successful save
    // What the save is judged by, for writers of more than one file; the target's bytes
    // when not given.
    std::function<QByteArray()> observe;
    // False for a writer we don't own whose success flag is loose: then only the file is
    // judged (old or new bytes, whatever the save said) and nothing left behind.
    bool judgeReport = true;
    // A call the file system doesn't offer, refused with `refuseError` on every run, so
    // that the writer's other way is swept (Call::Count: none).
    FaultInjector::Call refuse = FaultInjector::Call::Count;
    int refuseError = 0;
    std::function<void()> prepare;  // puts `before` in place and readies the writer
    std::function<bool()> save;     // true when the writer reports success
    // Further checks after each run (the message shown, the modified flag); returns a
    // complaint, or an empty string.
    std::function<std::string(bool ok)> check;
};

struct SweepResult
{
    int cases = 0;     // runs in which the fault happened
    int intact = 0;    // of those, runs that left the file whole (old or new, as reported)
    int failed = 0;    // of those, runs in which the save reported failure
    std::vector<std::string> problems;
    int calls[int(FaultInjector::Call::Count)] = {};
};

SweepResult Sweep(const SweepWriter& writer);

// Totals over every sweep of the test run, printed at its end.
void CountSweep(const char* writer, const SweepResult& result);

// Counts the sweep, fails the test for each problem, and fails it too when the sweep
// never reached a call of kind `mustReach`, made too few cases to mean anything, or saw
// most faults absorbed (then it never reached the disk).
void ExpectSweep(const char* writer, const SweepResult& result,
                 FaultInjector::Call mustReach = FaultInjector::Call::Write);

// The files below a folder with their bytes, by relative path; flattened, one value the
// sweep can compare for writers of several files.
using FileTree = std::map<QString, QByteArray>;
FileTree ReadTree(const QString& folder);
QByteArray Flatten(const FileTree& tree);

// `count` numbered lines that start with `word`: text large enough to take several writes.
QByteArray Lines(int count, const char* word);

// A writer of the file `name` in `folder` that is put back to `before` before every run;
// the caller adds the save.
SweepWriter FileWriter(const QString& folder, const QString& name, QByteArray before, QByteArray after);
