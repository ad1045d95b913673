// Internal to the library: not installed, may change in any commit.
#pragma once

#include <mutex>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace corvale::internal {

/// True while the process is known to have one thread only. That cannot change inside a call. A
/// thread that the C library did not make, and so does not count, must not call it or us.
[[nodiscard]] inline bool IsSingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

/// Holds a mutex against other threads; takes none where there are no others, which spares a log
/// line a quarter of what it costs beyond its system call (bench: LogLine).
class ThreadLock {
  public:
    ThreadLock() noexcept = default;
    explicit ThreadLock(std::mutex& mutex) noexcept { Take(mutex); }
    ~ThreadLock() {
        if (held_ != nullptr) held_->unlock();
    }
    ThreadLock(const ThreadLock&) = delete;
    ThreadLock& operator=(const ThreadLock&) = delete;

    /// Called once.
    void Take(std::mutex& mutex) noexcept {
        if (IsSingleThreaded()) return;
        mutex.lock();
        held_ = &mutex;
    }

  private:
    std::mutex* held_ = nullptr;
};

}  // namespace corvale::internal
