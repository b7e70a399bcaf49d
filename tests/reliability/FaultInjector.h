#pragma once

#include <string>

// Fails chosen system calls of a process, the way a full disk, a read-only mount or a
// revoked permission would. The library defines open, write, fsync, rename and their
// kin itself; loaded before the C library (linked into a test, or by LD_PRELOAD) it sees
// every such call, counts those that touch files below a watched folder and makes the
// armed one fail. Calls outside the folder pass through untouched, so the test's own
// output and the toolkit's settings are never disturbed.
//
// Under LD_PRELOAD the same can be set from the environment: MORVANE_FAULT_DIR (the
// folder), MORVANE_FAULT_CALL (open, write, sync, rename, link, chmod or copy),
// MORVANE_FAULT_NTH (from 1) and MORVANE_FAULT_ERRNO (a number), or MORVANE_FAULT_SHORT=1
// for a short write.
namespace FaultInjector {

enum class Call { Open, Write, Sync, Rename, Link, Chmod, Copy, Count };

const char* Name(Call call);

// Watches calls on files below `folder` (an absolute path) and counts them from zero.
void Watch(const std::string& folder);
// Makes the `nth` watched call of kind `call` (from 1) fail with `error`. With `shortWrite`
// a write instead writes half of what it was given and reports that, which a careful
// writer must notice and continue.
// With `sticky` every later call of the kind fails too: a mount gone read-only stays so.
void Arm(Call call, int nth, int error, bool shortWrite = false, bool sticky = false);
// Makes every watched call of kind `call` fail with `error`, the way a file system that
// doesn't offer it answers; such calls are neither counted nor the armed fault. Lasts
// until the next Watch or Reset.
void Refuse(Call call, int error);
// Stops watching and failing.
void Reset();

// Watched calls of this kind since Watch or Arm.
int Calls(Call call);
// Whether the armed fault has happened.
bool Fired();

} // namespace FaultInjector
