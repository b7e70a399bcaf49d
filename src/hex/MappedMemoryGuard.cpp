#include "MappedMemoryGuard.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <csetjmp>
#include <csignal>
#include <mutex>

namespace {

// The jump target of the guarded work running on this thread, if any.
thread_local sigjmp_buf* t_jump = nullptr;
struct sigaction g_previous;

void OnBusError(int signal, siginfo_t* info, void* context)
{
    Q_UNUSED(info);
    Q_UNUSED(context);
    if (t_jump)
        siglongjmp(*t_jump, 1);
    // Not a read we guard: give the signal back to whoever had it. Returning re-runs
    // the faulting instruction, which then meets the previous disposition.
    ::sigaction(signal, &g_previous, nullptr);
}

void Install()
{
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction action = {};
        action.sa_sigaction = OnBusError;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        ::sigaction(SIGBUS, &action, &g_previous);
    });
}

} // namespace

namespace MappedMemoryGuard {

bool Run(void (*work)(void*), void* context)
{
    Install();
    sigjmp_buf jump;
    sigjmp_buf* const outer = t_jump;
    // The mask is saved so that SIGBUS, blocked while its handler runs, is unblocked
    // again after the jump.
    if (sigsetjmp(jump, 1) != 0) {
        t_jump = outer;
        return false;
    }
    t_jump = &jump;
    work(context);
    t_jump = outer;
    return true;
}

} // namespace MappedMemoryGuard

#else

namespace MappedMemoryGuard {

bool Run(void (*work)(void*), void* context)
{
    work(context);
    return true;
}

} // namespace MappedMemoryGuard

#endif
