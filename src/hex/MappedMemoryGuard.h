#pragma once

#include <utility>

// Reading a memory-mapped file that another program truncates raises SIGBUS on the
// pages past the new end. The size check before each read leaves a short window (the
// file may shrink while we copy or search); this guard closes it: a fault inside Run
// ends the work and Run returns false instead of the process dying.
//
// Unix only; elsewhere Run simply runs the work. The work is abandoned by a jump, so it
// must not own anything with a destructor: a memcpy or a search over a buffer.
namespace MappedMemoryGuard {

bool Run(void (*work)(void*), void* context);

template <typename F>
bool Run(F&& work)
{
    auto* pointer = &work;
    return Run([](void* context) { (*static_cast<decltype(pointer)>(context))(); }, pointer);
}

} // namespace MappedMemoryGuard
