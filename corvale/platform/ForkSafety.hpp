// Internal to platform/: not installed, may change in any commit.
//
// Keeps the library usable in a child made by fork. Only the thread that forked lives on in the
// child: a lock that another thread held would stay locked for ever.
//
// Idea: nothing is locked across a fork. Every change to a shared structure becomes visible by one
// atomic store, so the child's copy is consistent at any instant, and all it needs is fresh locks.
// Whichever comes first renews them: our handler in the child, or the first call of the library
// there. Handlers of the program that were registered before ours run before ours in the child, and
// may call the library.
//
// Why not hold the locks from before the fork until after it, as is usual: a handler of the program
// that calls the library, and runs while they are held, waits for its own thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace corvale::internal {

/// How much a call has to attend to before it takes a lock: 1 as long as our handlers are not
/// registered, plus 1 for each fork that is under way. Almost always 0.
extern constinit std::atomic<std::int32_t> forkWork;
void AttendToForks() noexcept;

/// Called by everything that takes one of the locks, before it does.
inline void KeepUsableAfterFork() noexcept {
    if (forkWork.load(std::memory_order_relaxed) != 0) [[unlikely]]
        AttendToForks();
}

// Replace the locks of the child, which has one thread, by free ones.
void RenewNamedLocks() noexcept;
void RenewUnitLocks() noexcept;

}  // namespace corvale::internal
