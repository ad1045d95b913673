#include <corvale/platform/SignalHold.hpp>

#include <pthread.h>
#include <cerrno>
#include <initializer_list>

namespace corvale::internal {

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
        sigset_t raised;
        sigemptyset(&raised);
        sigaddset(&raised, signal);
        // Does not wait: a signal of the whole process may have gone to another thread meanwhile.
        constexpr timespec now = {};
        while (sigtimedwait(&raised, nullptr, &now) == -1 && errno == EINTR) {}
    }
    pthread_sigmask(SIG_SETMASK, &hostsMask_, nullptr);
    errno = errorOfWriting;
}

}  // namespace corvale::internal
