#include <corvale/text/DigitFilter.hpp>

#include <corvale/base/CodePath.hpp>

#if CORVALE_HAS_AVX2_PATH
#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#endif

namespace corvale::internal {

namespace {

bool IsKept(char c) noexcept {
    return (c >= '0' && c <= '9') || c == '.';
}

// One character after the other. Each is written, and only a kept one moves the end of the output on:
// no branch depends on what the text holds.
std::size_t KeepOneByOne(std::string_view input, std::span<char> output) noexcept {
    std::size_t count = 0;
    for (std::size_t i = 0; i < input.size() && count < output.size(); ++i) {
        output[count] = input[i];
        count += IsKept(input[i]) ? 1 : 0;
    }
    return count;
}

#if CORVALE_HAS_AVX2_PATH
// For each choice of kept bytes among eight, their positions in order, as the shuffle wants them.
// 2 KiB; a table for sixteen bytes would have 1 MiB.
constexpr auto kKeptPositions = [] {
    std::array<std::array<std::uint8_t, 8>, 256> table{};
    for (std::size_t kept = 0; kept < table.size(); ++kept) {
        std::size_t count = 0;
        for (std::uint8_t position = 0; position < 8; ++position)
            if ((kept >> position & 1U) != 0) table[kept][count++] = position;
    }
    return table;
}();

// Stores the chosen ones of the first eight bytes of `text` side by side and returns how many they
// are. Eight bytes are written, whatever the count.
[[gnu::target("avx2"), gnu::always_inline]] inline std::size_t StoreKept(__m128i text,
                                                                         unsigned choice,
                                                                         char* target) noexcept {
    const __m128i positions =
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kKeptPositions[choice].data()));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(target), _mm_shuffle_epi8(text, positions));
    return static_cast<std::size_t>(std::popcount(choice));
}

// Sixteen characters a step: a compare tells which are kept, a shuffle for each half closes the
// gaps. At least 20 times as fast as a character loop; bench: Text512/RemSpaceSlashChars.
[[gnu::target("avx2")]] std::size_t KeepBySixteen(std::string_view input,
                                                  std::span<char> output) noexcept {
    const __m128i nine = _mm_set1_epi8(9);
    std::size_t count = 0;
    std::size_t i = 0;
    // Each half stores eight bytes, of which only the kept ones count. They fit, as the condition
    // says, and in place they never overwrite what is still to be read, since count <= i.
    for (; i + 16 <= input.size() && count + 16 <= output.size(); i += 16) {
        const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(input.data() + i));
        const __m128i value = _mm_sub_epi8(text, _mm_set1_epi8('0'));
        const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(value, nine), value);
        const __m128i isPoint = _mm_cmpeq_epi8(text, _mm_set1_epi8('.'));
        const auto kept = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(isDigit, isPoint)));

        count += StoreKept(text, kept & 0xFFU, output.data() + count);
        count += StoreKept(_mm_srli_si128(text, 8), kept >> 8U, output.data() + count);
    }
    return count + KeepOneByOne(input.substr(i), output.subspan(count));
}
#endif

}  // namespace

std::size_t KeepDigitsAndPoints(std::string_view input, std::span<char> output) noexcept {
#if CORVALE_HAS_AVX2_PATH
    if (HasAvx2()) return KeepBySixteen(input, output);
#endif
    return KeepOneByOne(input, output);
}

}  // namespace corvale::internal
