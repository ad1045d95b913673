// Internal to platform/: not installed, may change in any commit.
#pragma once

#include <csignal>

namespace corvale::internal {

/// While it lives, a write of this thread that the system answers with SIGPIPE or SIGXFSZ just
/// fails: the host, whose default would be to end, never sees the signal. One that was pending
/// before stays pending, and `errno` is that of the write.
class SignalHold {
  public:
    SignalHold() noexcept;
    ~SignalHold();
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;

  private:
    sigset_t ofWriting_;
    sigset_t hostsMask_;
    sigset_t hostsPending_;
};

}  // namespace corvale::internal
