#include <corvale/platform/ForkSafety.hpp>

#include <pthread.h>
#include <atomic>

namespace corvale::internal {

namespace {

constinit std::atomic<bool> isRegistered{false};

void BeforeFork() noexcept {
    HoldNamedLocks();
    HoldUnitTable();
}

void AfterForkIn(ForkSide side) noexcept {
    ReleaseUnitTable(side);
    ReleaseNamedLocks(side);
}

void InParent() noexcept {
    AfterForkIn(ForkSide::Parent);
}
void InChild() noexcept {
    AfterForkIn(ForkSide::Child);
}

}  // namespace

void KeepUsableAfterFork() noexcept {
    if (isRegistered.load(std::memory_order_relaxed)) return;
    if (isRegistered.exchange(true)) return;
    // Without memory for the registration the next caller tries again.
    if (pthread_atfork(BeforeFork, InParent, InChild) != 0) isRegistered.store(false);
}

}  // namespace corvale::internal
