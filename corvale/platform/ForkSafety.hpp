// Internal to platform/: not installed, may change in any commit.
//
// A child made by fork has only the thread that forked: a lock that another thread held stays
// locked in it for ever. These handlers leave the child with free locks and a whole unit table.
#pragma once

#include <atomic>
#include <cstdint>

namespace corvale::internal {

enum class ForkSide : std::uint8_t { Parent, Child };

// What `KeepUsableAfterFork` looks at, and calls the first time.
extern constinit std::atomic<bool> isForkPrepared;
void RegisterForkHandlers() noexcept;

/// Registers the handlers with the system, once. Called by everything that takes one of the locks.
inline void KeepUsableAfterFork() noexcept {
    if (!isForkPrepared.load(std::memory_order_relaxed)) RegisterForkHandlers();
}

// What the handlers call, before and after the fork.
void HoldNamedLocks() noexcept;
void ReleaseNamedLocks(ForkSide side) noexcept;
void HoldUnitTable() noexcept;
void ReleaseUnitTable(ForkSide side) noexcept;

}  // namespace corvale::internal
