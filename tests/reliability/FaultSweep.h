#pragma once

#include "FaultInjector.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <string>
#include <vector>

// Runs one save again and again, failing each file system call it makes in turn with
// each error a disk can give, and checks after every run that the file holds either its
// old bytes (the save said it failed) or the new ones (the save said it succeeded), and
// that nothing was left behind in the folder.
struct SweepWriter
{
    QString folder;           // watched; must hold nothing but what the save touches
    QString target;           // the file the save writes
    QByteArray before;        // its bytes before each save
    QByteArray after;         // its bytes after a successful save
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
