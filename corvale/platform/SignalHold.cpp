// A write raises SIGPIPE or SIGXFSZ in the thread that makes it. While that thread blocks the two,
// the signal stays pending. It is taken before the mask is restored, unless one was pending before:
// that one is the host's. No handler is changed, for those belong to the whole process.
#include <corvale/platform/SignalHold.hpp>

#include <pthread.h>
#include <unistd.h>
#include <cerrno>
#include <initializer_list>

namespace corvale::internal {

namespace {

// Takes a signal that is pending. Does not wait: one that was sent to the whole process may have
// gone to another thread meanwhile.
void Take(int signal) noexcept {
    sigset_t raised;
    sigemptyset(&raised);
    sigaddset(&raised, signal);
#if defined(_POSIX_REALTIME_SIGNALS) && _POSIX_REALTIME_SIGNALS > 0
    constexpr timespec now = {};
    while (sigtimedwait(&raised, nullptr, &now) == -1 && errno == EINTR) {}
#else
    // A write raises these two for its own thread alone, which keeps them until this call.
    sigwait(&raised, &signal);
#endif
}

}  // namespace

SignalHold::SignalHold() noexcept {
    sigemptyset(&ofWriting_);
    sigaddset(&ofWriting_, SIGPIPE);
    sigaddset(&ofWriting_, SIGXFSZ);
    sigpending(&hostsPending_);
    pthread_sigmask(SIG_BLOCK, &ofWriting_, &hostsMask_);
}

SignalHold::~SignalHold() {
    const int errorOfWriting = errno;
    sigset_t pending;
    sigpending(&pending);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        if (sigismember(&pending, signal) == 0 || sigismember(&hostsPending_, signal) != 0)
            continue;
        Take(signal);
    }
    pthread_sigmask(SIG_SETMASK, &hostsMask_, nullptr);
    errno = errorOfWriting;
}

}  // namespace corvale::internal
