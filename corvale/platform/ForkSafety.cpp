#include <corvale/platform/ForkSafety.hpp>

#include <pthread.h>
#include <unistd.h>

namespace corvale::internal {

constinit std::atomic<std::int32_t> forkWork{1};

namespace {

enum class Registration : std::uint8_t { None, UnderWay, Done };
constinit std::atomic<Registration> registration{Registration::None};
constinit std::atomic<pid_t> process{0};  // the one whose locks these are

void StartInChild() noexcept {
    RenewUnitLocks();
    RenewNamedLocks();
    process.store(getpid(), std::memory_order_relaxed);
    // A registration that another thread had begun may never end here: the next call makes it. A
    // second one does no harm.
    const bool isDone = registration.load() == Registration::Done;
    if (!isDone) registration.store(Registration::None);
    forkWork.store(isDone ? 0 : 1, std::memory_order_relaxed);
}

// Runs in the thread that forks, which is the only one that goes on in the child.
void BeforeFork() noexcept {
    forkWork.fetch_add(1, std::memory_order_relaxed);
}
void InParent() noexcept {
    forkWork.fetch_sub(1, std::memory_order_relaxed);
}
void InChild() noexcept {
    // 0 if a handler of the program has called the library before, which has renewed the locks.
    if (forkWork.load(std::memory_order_relaxed) != 0) StartInChild();
}

void RegisterHandlers() noexcept {
    if (registration.load() != Registration::None) return;
    process.store(getpid(), std::memory_order_relaxed);
    Registration before = Registration::None;
    if (!registration.compare_exchange_strong(before, Registration::UnderWay)) return;
    const bool isDone = pthread_atfork(BeforeFork, InParent, InChild) == 0;
    // Without memory for the registration the next caller tries again.
    registration.store(isDone ? Registration::Done : Registration::None);
    if (isDone) forkWork.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace

void AttendToForks() noexcept {
    RegisterHandlers();
    // In a handler of the program, in the child, before our own has run.
    if (getpid() != process.load(std::memory_order_relaxed)) StartInChild();
}

}  // namespace corvale::internal
