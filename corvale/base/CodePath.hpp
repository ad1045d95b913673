// Internal: not installed, may change in any commit.
//
// Code paths: a loop that gains from wider vectors is compiled twice, for every x86-64 processor
// and for those with AVX2; the call picks one. Both copies do the same operations on each element,
// so only the speed differs. The library is built for the oldest processor, and one file serves
// all; a build for each processor would be faster by nothing but the loops that are here already.
//
// A loop is a template on its path, with a call operator that is always inlined: so it is compiled
// with the instructions of the function around it. Its vectors are those of the path, because 32
// bytes without AVX2 are split by the compiler into many times as many instructions.
//
//     template <class Path>
//     struct ChangeLoop {
//         CORVALE_INLINE void operator()(const char* in, char* out, std::size_t n) const noexcept {
//             using Bytes [[gnu::vector_size(Path::kVectorBytes)]] = unsigned char;
//             ...
//         }
//     };
//     OnBestPath<ChangeLoop>(in, out, n);
//
// Vectors go to other functions by reference or not at all: how a call passes them depends on the
// processor. Bench: Text512 in bench/TextBench.cpp shows what the second copy brings.
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

/// Inlined by every compiler at every level of optimisation: for what is part of a loop.
#define CORVALE_INLINE [[gnu::always_inline]] inline

namespace corvale::internal {

/// The baseline: what every processor has that the library is built for.
struct BaselinePath {
    static constexpr std::size_t kVectorBytes = 16;
};

/// What processors with AVX2 have.
struct Avx2Path {
    static constexpr std::size_t kVectorBytes = 32;
};

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
/// Calls `Work` as a function of its own with the instructions of AVX2.
template <class Work, class... Args>
[[gnu::target("avx2")]] auto CallWithAvx2(Args... args) noexcept {
    return Work{}(args...);
}
#endif

/// Calls `Work` as a function of its own with the instructions of every processor.
template <class Work, class... Args>
[[gnu::noinline]] auto CallBaseline(Args... args) noexcept {
    return Work{}(args...);
}

/// Calls `Work` as a function of its own with the instructions of `Path` (or of what is derived
/// from it): the parts of a loop that is too long for one function. Only from within that path.
template <class Path, class Work, class... Args>
CORVALE_INLINE auto CallOnPath(Args... args) noexcept {
#if CORVALE_HAS_AVX2_PATH
    if constexpr (Path::kVectorBytes == Avx2Path::kVectorBytes)
        return CallWithAvx2<Work>(args...);
    else
#endif
        return CallBaseline<Work>(args...);
}

/// Runs `Work` on the best path of this processor.
template <template <class Path> class Work, class Wide = Avx2Path, class Narrow = BaselinePath,
          class... Args>
CORVALE_INLINE auto OnBestPath(Args... args) noexcept {
#if CORVALE_HAS_AVX2_PATH
    if (HasAvx2()) return CallOnPath<Wide, Work<Wide>>(args...);
#endif
    return CallOnPath<Narrow, Work<Narrow>>(args...);
}

}  // namespace corvale::internal
