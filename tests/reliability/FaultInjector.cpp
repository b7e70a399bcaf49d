#include "FaultInjector.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <mutex>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace FaultInjector {

namespace {

constexpr int MaxFd = 65536;
constexpr int Kinds = int(Call::Count);

struct State
{
    std::mutex lock;
    std::string folder; // watched folder with a trailing '/', empty when off
    std::atomic<bool> watching{false};
    std::atomic<int> counts[Kinds] = {};
    Call armed = Call::Count;
    int nth = 0;
    int error = 0;
    bool shortWrite = false;
    bool sticky = false;
    Call refused = Call::Count;
    int refusedError = 0;
    std::atomic<bool> fired{false};
    std::atomic<bool> watchedFd[MaxFd] = {};
};

State& S()
{
    static State* state = new State; // never destroyed: calls arrive during exit too
    return *state;
}

template <typename F>
F Next(const char* name)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

bool UnderFolder(int dirfd, const char* path)
{
    State& s = S();
    if (!s.watching.load(std::memory_order_relaxed) || !path)
        return false;
    std::lock_guard guard(s.lock);
    if (s.folder.empty())
        return false;
    if (path[0] == '/')
        return std::strncmp(path, s.folder.c_str(), s.folder.size()) == 0
            || std::string(path) + '/' == s.folder;
    if (path[0] == '\0' && dirfd >= 0 && dirfd < MaxFd)
        return s.watchedFd[dirfd].load(); // linkat(fd, "", ..., AT_EMPTY_PATH)
    if (dirfd >= 0 && dirfd < MaxFd && s.watchedFd[dirfd].load())
        return true;
    char cwd[4096];
    if (!getcwd(cwd, sizeof cwd))
        return false;
    std::string full = std::string(cwd) + '/' + path;
    return full.compare(0, s.folder.size(), s.folder) == 0;
}

bool WatchedFd(int fd)
{
    State& s = S();
    return s.watching.load(std::memory_order_relaxed) && fd >= 0 && fd < MaxFd
        && s.watchedFd[fd].load(std::memory_order_relaxed);
}

// Counts one watched call; true when it is the one to fail.
bool Trip(Call call, bool* shortWrite = nullptr)
{
    State& s = S();
    {
        std::lock_guard guard(s.lock);
        if (s.refused == call) {
            errno = s.refusedError;
            return true;
        }
    }
    const int count = ++s.counts[int(call)];
    std::lock_guard guard(s.lock);
    if (s.armed != call || count < s.nth || (count > s.nth && !s.sticky))
        return false;
    s.fired = true;
    if (shortWrite)
        *shortWrite = s.shortWrite;
    if (!s.shortWrite)
        errno = s.error;
    return true;
}

void Remember(int fd, bool watched)
{
    if (fd >= 0 && fd < MaxFd)
        S().watchedFd[fd].store(watched);
}

bool HasMode(int flags)
{
    return (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE;
}

void FromEnvironment()
{
    const char* folder = std::getenv("MORVANE_FAULT_DIR");
    if (!folder || !*folder)
        return;
    Watch(folder);
    const char* call = std::getenv("MORVANE_FAULT_CALL");
    const char* nth = std::getenv("MORVANE_FAULT_NTH");
    if (!call || !nth)
        return;
    for (int k = 0; k < Kinds; ++k) {
        if (std::strcmp(call, Name(Call(k))) == 0) {
            const char* error = std::getenv("MORVANE_FAULT_ERRNO");
            const char* shortWrite = std::getenv("MORVANE_FAULT_SHORT");
            Arm(Call(k), std::atoi(nth), error ? std::atoi(error) : EIO,
                shortWrite && std::strcmp(shortWrite, "1") == 0);
        }
    }
}

__attribute__((constructor)) void Start()
{
    FromEnvironment();
}

} // namespace

const char* Name(Call call)
{
    static const char* const names[] = {"open", "write", "sync", "rename", "link", "chmod", "copy"};
    return int(call) < Kinds ? names[int(call)] : "?";
}

void Watch(const std::string& folder)
{
    State& s = S();
    std::lock_guard guard(s.lock);
    s.folder = folder.empty() || folder.back() == '/' ? folder : folder + '/';
    for (auto& c : s.counts)
        c = 0;
    for (auto& w : s.watchedFd)
        w = false;
    s.armed = Call::Count;
    s.refused = Call::Count;
    s.fired = false;
    s.watching = !s.folder.empty();
}

void Refuse(Call call, int error)
{
    State& s = S();
    std::lock_guard guard(s.lock);
    s.refused = call;
    s.refusedError = error;
}

void Arm(Call call, int nth, int error, bool shortWrite, bool sticky)
{
    State& s = S();
    std::lock_guard guard(s.lock);
    s.sticky = sticky;
    for (auto& c : s.counts)
        c = 0;
    s.armed = call;
    s.nth = nth;
    s.error = error;
    s.shortWrite = shortWrite;
    s.fired = false;
}

void Reset()
{
    State& s = S();
    std::lock_guard guard(s.lock);
    s.watching = false;
    s.folder.clear();
    s.armed = Call::Count;
    s.refused = Call::Count;
    s.fired = false;
}

int Calls(Call call)
{
    return S().counts[int(call)].load();
}

bool Fired()
{
    return S().fired.load();
}

} // namespace FaultInjector

using namespace FaultInjector;

namespace {

int OpenCommon(const char* name, int dirfd, const char* path, int flags, mode_t mode)
{
    using OpenAt = int (*)(int, const char*, int, ...);
    static const auto real = Next<OpenAt>(name);
    const bool watched = UnderFolder(dirfd, path);
    if (watched && Trip(Call::Open))
        return -1;
    const int fd = HasMode(flags) ? real(dirfd, path, flags, mode) : real(dirfd, path, flags);
    if (fd >= 0)
        Remember(fd, watched);
    return fd;
}

mode_t ModeOf(int flags, va_list args)
{
    return HasMode(flags) ? mode_t(va_arg(args, int)) : 0;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = ModeOf(flags, args);
    va_end(args);
    return OpenCommon("openat", AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = ModeOf(flags, args);
    va_end(args);
    return OpenCommon("openat64", AT_FDCWD, path, flags, mode);
}

int openat(int dirfd, const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = ModeOf(flags, args);
    va_end(args);
    return OpenCommon("openat", dirfd, path, flags, mode);
}

int openat64(int dirfd, const char* path, int flags, ...)
{
    va_list args;
    va_start(args, flags);
    const mode_t mode = ModeOf(flags, args);
    va_end(args);
    return OpenCommon("openat64", dirfd, path, flags, mode);
}

int creat(const char* path, mode_t mode)
{
    return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int close(int fd)
{
    static const auto real = Next<int (*)(int)>("close");
    Remember(fd, false);
    return real(fd);
}

ssize_t write(int fd, const void* data, size_t count)
{
    static const auto real = Next<ssize_t (*)(int, const void*, size_t)>("write");
    bool shortWrite = false;
    if (WatchedFd(fd) && count > 0 && Trip(Call::Write, &shortWrite)) {
        if (!shortWrite)
            return -1;
        return real(fd, data, count > 1 ? count / 2 : 1);
    }
    return real(fd, data, count);
}

ssize_t writev(int fd, const struct iovec* parts, int count)
{
    static const auto real = Next<ssize_t (*)(int, const struct iovec*, int)>("writev");
    bool shortWrite = false;
    if (WatchedFd(fd) && count > 0 && Trip(Call::Write, &shortWrite)) {
        if (!shortWrite)
            return -1;
        return write(fd, parts[0].iov_base, parts[0].iov_len > 1 ? parts[0].iov_len / 2 : parts[0].iov_len);
    }
    return real(fd, parts, count);
}

ssize_t copy_file_range(int in, off64_t* inOffset, int out, off64_t* outOffset, size_t length,
                        unsigned int flags)
{
    using Real = ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned int);
    static const auto real = Next<Real>("copy_file_range");
    if (WatchedFd(out) && Trip(Call::Copy))
        return -1;
    return real(in, inOffset, out, outOffset, length, flags);
}

// The C++ library's file copy hands the bytes to the kernel this way.
ssize_t sendfile(int out, int in, off_t* offset, size_t count)
{
    static const auto real = Next<ssize_t (*)(int, int, off_t*, size_t)>("sendfile");
    if (WatchedFd(out) && Trip(Call::Copy))
        return -1;
    return real(out, in, offset, count);
}

ssize_t sendfile64(int out, int in, off64_t* offset, size_t count)
{
    static const auto real = Next<ssize_t (*)(int, int, off64_t*, size_t)>("sendfile64");
    if (WatchedFd(out) && Trip(Call::Copy))
        return -1;
    return real(out, in, offset, count);
}

int fsync(int fd)
{
    static const auto real = Next<int (*)(int)>("fsync");
    if (WatchedFd(fd) && Trip(Call::Sync))
        return -1;
    return real(fd);
}

int fdatasync(int fd)
{
    static const auto real = Next<int (*)(int)>("fdatasync");
    if (WatchedFd(fd) && Trip(Call::Sync))
        return -1;
    return real(fd);
}

int rename(const char* from, const char* to)
{
    static const auto real = Next<int (*)(const char*, const char*)>("rename");
    if ((UnderFolder(AT_FDCWD, from) || UnderFolder(AT_FDCWD, to)) && Trip(Call::Rename))
        return -1;
    return real(from, to);
}

int renameat(int fromDir, const char* from, int toDir, const char* to)
{
    static const auto real = Next<int (*)(int, const char*, int, const char*)>("renameat");
    if ((UnderFolder(fromDir, from) || UnderFolder(toDir, to)) && Trip(Call::Rename))
        return -1;
    return real(fromDir, from, toDir, to);
}

int renameat2(int fromDir, const char* from, int toDir, const char* to, unsigned int flags)
{
    using Real = int (*)(int, const char*, int, const char*, unsigned int);
    static const auto real = Next<Real>("renameat2");
    if ((UnderFolder(fromDir, from) || UnderFolder(toDir, to)) && Trip(Call::Rename))
        return -1;
    return real(fromDir, from, toDir, to, flags);
}

int link(const char* from, const char* to)
{
    static const auto real = Next<int (*)(const char*, const char*)>("link");
    if (UnderFolder(AT_FDCWD, to) && Trip(Call::Link))
        return -1;
    return real(from, to);
}

int linkat(int fromDir, const char* from, int toDir, const char* to, int flags)
{
    static const auto real = Next<int (*)(int, const char*, int, const char*, int)>("linkat");
    if ((UnderFolder(toDir, to) || UnderFolder(fromDir, from)) && Trip(Call::Link))
        return -1;
    return real(fromDir, from, toDir, to, flags);
}

int fchmod(int fd, mode_t mode)
{
    static const auto real = Next<int (*)(int, mode_t)>("fchmod");
    if (WatchedFd(fd) && Trip(Call::Chmod))
        return -1;
    return real(fd, mode);
}

} // extern "C"
