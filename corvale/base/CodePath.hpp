// Internal: not installed, may change in any commit.
//
// One loop, compiled twice: for every x86-64 processor and for those with AVX2. The results are the
// same, only the speed differs. A loop is a type with an always-inlined call operator:
//
//     struct UpperCaseLoop {
//         CORVALE_LOOP void operator()(const char* in, char* out, std::size_t n) const noexcept;
//     };
//     OnBestPath<UpperCaseLoop>(in, out, n);
//
// Bench: Text512 in bench/TextBench.cpp shows what the second copy brings.
#pragma once

#include <cstddef>

// On Windows GCC keeps AVX registers on a stack that is not aligned for them.
#if defined(__x86_64__) && !defined(CORVALE_BASELINE_ONLY) && !defined(_WIN32)
#define CORVALE_HAS_AVX2_PATH 1
#else
#define CORVALE_HAS_AVX2_PATH 0
#endif

#if CORVALE_HAS_AVX2_PATH
#include <atomic>
#include <cstdint>
#endif

#define CORVALE_LOOP [[gnu::always_inline]] inline

namespace corvale::internal {

#if CORVALE_HAS_AVX2_PATH
enum class Avx2 : std::uint8_t { Unknown, Absent, Present };

/// What has been found out about this processor. Threads that ask at once find the same.
extern constinit std::atomic<Avx2> knownAvx2;

/// Asks the processor, and remembers the answer.
[[gnu::cold]] bool FindAvx2() noexcept;
#endif

/// True where the processor and the system run AVX2 code, from the first static constructor on.
/// The processor is asked by the first call that wants to know, not while the library is loaded: in
/// a virtual machine each question can take as long as half of the loading (bench/report/start.py).
[[nodiscard]] inline bool HasAvx2() noexcept {
#if CORVALE_HAS_AVX2_PATH
    const Avx2 known = knownAvx2.load(std::memory_order_relaxed);
    return known == Avx2::Present || (known == Avx2::Unknown && FindAvx2());
#else
    return false;
#endif
}

#if CORVALE_HAS_AVX2_PATH
/// The copy of `Loop` for processors with AVX2.
template <class Loop, class... Args>
[[gnu::target("avx2")]] auto WithAvx2(Args... args) noexcept {
    return Loop{}(args...);
}
#endif

/// Runs `Loop` on `args` with the best code that the processor has.
template <class Loop, class... Args>
auto OnBestPath(Args... args) noexcept {
#if CORVALE_HAS_AVX2_PATH
    if (HasAvx2()) return WithAvx2<Loop>(args...);
#endif
    return Loop{}(args...);
}

/// Runs `Loop`, made for vectors of as many bytes as the processor has: 32 or 16. Written for 32
/// alone it is many times as long, and slow, where they are taken apart.
template <template <std::size_t Width> class Loop, class... Args>
CORVALE_LOOP auto OnWidestBytes(Args... args) noexcept {
#if CORVALE_HAS_AVX2_PATH
    if (HasAvx2()) return WithAvx2<Loop<32>>(args...);
#endif
    return Loop<16>{}(args...);
}

}  // namespace corvale::internal
