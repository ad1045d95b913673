// Internal to platform/: not installed, may change in any commit.
#pragma once

#ifndef _WIN32
#include <pthread.h>
#endif

namespace corvale::internal {

/// While it lives, the system calls of this thread are no cancellation points: `pthread_cancel`
/// takes effect after the library's call. Its unwinding would end the process at `noexcept`.
class CancelHold {
  public:
#ifdef _WIN32
    CancelHold() noexcept {}  // no call of that system is a cancellation point
#else
    CancelHold() noexcept {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &hostsState_);
    }
    ~CancelHold() {
        pthread_setcancelstate(hostsState_, nullptr);
    }
#endif
    CancelHold(const CancelHold&) = delete;
    CancelHold& operator=(const CancelHold&) = delete;

#ifndef _WIN32
  private:
    int hostsState_ = PTHREAD_CANCEL_DISABLE;
#endif
};

}  // namespace corvale::internal
