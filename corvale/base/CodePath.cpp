#include <corvale/base/CodePath.hpp>

#if CORVALE_HAS_AVX2_PATH

#include <cpuid.h>

namespace corvale::internal {

constinit std::atomic<Avx2> knownAvx2{Avx2::Unknown};

namespace {

// AVX2 code needs two answers: that the processor has the instructions, and that the system saves
// their registers when it changes between threads (Intel, "Software Developer's Manual", volume 1,
// "Detection of AVX2"). Not __builtin_cpu_supports, which asks for every feature that there is while
// the library is loaded; CodePath.hpp says what a question costs.
//
// In the register XCR0: the bits for the SSE and the AVX registers.
constexpr unsigned kSavesVectors = 0x6;

[[gnu::target("xsave")]] bool SystemSavesVectors() noexcept {
    return (__builtin_ia32_xgetbv(0) & kSavesVectors) == kSavesVectors;
}

bool AskForAvx2() noexcept {
    constexpr unsigned features = 1, moreFeatures = 7;
    if (static_cast<unsigned>(__get_cpuid_max(0, nullptr)) < moreFeatures) return false;
    unsigned a = 0, b = 0, c = 0, d = 0;
    __cpuid(features, a, b, c, d);
    if ((c & bit_OSXSAVE) == 0 || (c & bit_AVX) == 0 || !SystemSavesVectors()) return false;
    __cpuid_count(moreFeatures, 0, a, b, c, d);
    return (b & bit_AVX2) != 0;
}

}  // namespace

bool FindAvx2() noexcept {
    const bool found = AskForAvx2();
    knownAvx2.store(found ? Avx2::Present : Avx2::Absent, std::memory_order_relaxed);
    return found;
}

}  // namespace corvale::internal

#endif
