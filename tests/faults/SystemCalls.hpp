// Test help: every call of the library that can fail, made to fail on demand.
//
// The program is linked with --wrap for each of the calls (CMakeLists.txt), so that they arrive
// here first. Outside `Disturbed` they go straight on. Inside they are counted, time passes without
// waiting, and one kind of call fails as `Fault` says. Children of fork count together with their
// parent.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <cstddef>
#include <string_view>

namespace corvale::test {

inline constexpr std::array<std::string_view, 22> kCalls = {
    "open",   "close",     "read",         "pread",          "write",     "writev",
    "fstat",  "fstatfs",   "stat",         "isatty",         "lseek",     "poll",
    "fcntl",  "getrlimit", "sigtimedwait", "pthread_atfork", "ftruncate", "nanosleep",
    "malloc", "new",       "aligned new",  "any call"};

/// The place of a call in `kCalls`.
consteval std::size_t CallOf(std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(kCalls, name) - kCalls.begin());
}
inline constexpr std::size_t kAnyCall = CallOf("any call");

struct Fault {
    std::size_t call = kAnyCall;
    int error = 0;  // errno; 0: reads and writes carry out only a part of what is asked
    bool isPartialFirst = false;  // the first one carries out a part, those after it fail
    int first = INT_MAX;          // which of the calls is the first to fail, counted from 1
    int times = 0;                // how many of them do
};

struct CallCounts {
    std::array<std::atomic<int>, kCalls.size()> made;
    std::atomic<int> failed;
    std::atomic<int> blocks;  // taken and not released
    std::atomic<bool> isDisturbed;
};
CallCounts& Counts() noexcept;

/// The fault of the next calls; all counts begin again.
void Prepare(const Fault& fault) noexcept;

/// What `calls` returns. It takes and releases no memory of its own.
template <class Calls>
auto Disturbed(Calls calls) noexcept {
    Counts().isDisturbed = true;
    const auto result = calls();
    Counts().isDisturbed = false;
    return result;
}

}  // namespace corvale::test
