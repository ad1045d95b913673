#include <corvale/text/ByteLoops.hpp>

#include <corvale/base/CodePath.hpp>

#include <algorithm>
#include <cstring>

#if CORVALE_HAS_AVX2_PATH
#include <immintrin.h>
#endif

namespace corvale::internal {

namespace {

// One change of each byte in a vector. A select and no branch: all bytes are changed, and those that
// do not match are changed to themselves.
template <class Bytes>
CORVALE_INLINE void Apply(Replacement change, Bytes& bytes) noexcept {
    const Bytes to = change.to - Bytes{};
    bytes = bytes == change.from ? to : bytes;
}

template <class Bytes>
CORVALE_INLINE void Apply(CaseChange change, Bytes& bytes) noexcept {
    // Not the type that a comparison gives: in Clang that is char, unsigned on some processors.
    using Signed [[gnu::vector_size(sizeof(Bytes))]] = signed char;
    bytes ^= Bytes(Signed(bytes + change.toTop) > change.below) & change.caseBit;
}

// Changes `Width` bytes at a time, four times a round.
template <std::size_t Width, class Change>
struct Changer {
    using Bytes [[gnu::vector_size(Width)]] = unsigned char;
    Change change;

    CORVALE_INLINE void One(const char* in, char* out) const noexcept {
        Bytes bytes;
        std::memcpy(&bytes, in, Width);
        Apply(change, bytes);
        std::memcpy(out, &bytes, Width);
    }
    CORVALE_INLINE void Four(const char* in, char* out) const noexcept {
        One(in, out);
        One(in + Width, out + Width);
        One(in + 2 * Width, out + 2 * Width);
        One(in + 3 * Width, out + 3 * Width);
    }
    // All `n` >= Width bytes. The last vector ends with the text and may overlap the one before it:
    // a byte that is changed twice is the same as one that is changed once.
    CORVALE_INLINE void All(const char* in, char* out, std::size_t n) const noexcept {
        std::size_t i = 0;
        for (; i + 4 * Width <= n; i += 4 * Width) Four(in + i, out + i);
        for (; i + Width <= n; i += Width) One(in + i, out + i);
        if (i < n) One(in + n - Width, out + n - Width);
    }
};

// The width for the size of the text: a vector of the path, a word, or one byte.
template <class Path>
struct ChangeLoop {
    static constexpr std::size_t kWidth = Path::kVectorBytes;

    template <class Change>
    CORVALE_INLINE void operator()(const char* in, char* out, std::size_t n,
                                   const Change* change) const noexcept {
        if (n >= kWidth) return Changer<kWidth, Change>{*change}.All(in, out, n);
        if (n >= 8) return Changer<8, Change>{*change}.All(in, out, n);
        for (std::size_t i = 0; i < n; ++i) Changer<1, Change>{*change}.One(in + i, out + i);
    }
};

#if CORVALE_HAS_AVX2_PATH
constexpr std::size_t kBlock = 256;

// The bits in which the characters of a block differ from blanks, of all vectors together. Two sums,
// because each step of one waits for the step before.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i Differences(const char* block) noexcept {
    const __m256i blanks = _mm256_set1_epi8(' ');
    __m256i found[2] = {_mm256_setzero_si256(), _mm256_setzero_si256()};
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kBlock / sizeof blanks; ++i) {
        const auto* at = reinterpret_cast<const __m256i*>(block) + i;
        const __m256i differences = _mm256_xor_si256(_mm256_loadu_si256(at), blanks);
        found[i % 2] = _mm256_or_si256(found[i % 2], differences);
    }
    return _mm256_or_si256(found[0], found[1]);
}

// For `n` >= kBlock; the last block ends with the text. The sum is tested once, at the end, which is
// faster than a branch after each block.
[[gnu::target("avx2")]] bool AreBlocksBlank(const char* text, std::size_t n) noexcept {
    const char* const last = text + n - kBlock;
    __m256i found = Differences(text);
    while (text < last) {
        text = std::min(text + kBlock, last);
        found = _mm256_or_si256(found, Differences(text));
    }
    return _mm256_testz_si256(found, found) != 0;
}
#endif

}  // namespace

void ChangeBytes(const char* in, char* out, std::size_t n, const Replacement& change) noexcept {
    OnBestPath<ChangeLoop>(in, out, n, &change);
}

void ChangeBytes(const char* in, char* out, std::size_t n, const CaseChange& change) noexcept {
    OnBestPath<ChangeLoop>(in, out, n, &change);
}

// All are blanks when the first one is and each equals the one before it: one call of memcmp.
bool IsAllBlank(std::string_view text) noexcept {
    if (text.empty() || text.front() != ' ') return text.empty();
#if CORVALE_HAS_AVX2_PATH
    if (text.size() >= kBlock && HasAvx2()) return AreBlocksBlank(text.data(), text.size());
#endif
    return std::memcmp(text.data(), text.data() + 1, text.size() - 1) == 0;
}

}  // namespace corvale::internal
