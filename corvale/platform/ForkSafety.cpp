#include <corvale/platform/ForkSafety.hpp>

#include <pthread.h>

namespace corvale::internal {

constinit std::atomic<bool> isForkPrepared{false};

namespace {

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

void RegisterForkHandlers() noexcept {
    if (isForkPrepared.exchange(true)) return;
    // Without memory for the registration the next caller tries again.
    if (pthread_atfork(BeforeFork, InParent, InChild) != 0) isForkPrepared.store(false);
}

}  // namespace corvale::internal
