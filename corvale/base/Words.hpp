// Internal to the library: not installed, may change in any commit.
//
// Words: two to eight bytes handled at once in one unsigned integer, for texts that are too short
// for vectors and on processors of any kind. Each load and store names the byte order of its word,
// so that the results are the same on every machine:
//
//   little  the first byte is the lowest: a shift to the right drops first bytes, and zeros counted
//           from the low end lead to the first byte that differs
//   big     the first byte is the highest: words compare as their bytes do
//   native  as it is stored: equal words are equal bytes, nothing more
//
// Where a comment below says "first" or "last" it means the bytes of a little word in memory order.
// Nothing outside the text is ever read or written.
//
// Source  L. Lamport, "Multiple byte processing with full-word instructions", CACM 18 (1975),
//         471-475; the checks of ranges and the divisions are derived here
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace corvale::internal {

template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word ReverseBytes(Word word) noexcept {
    return static_cast<Word>(__builtin_bswap64(word) >> (64 - 8 * sizeof word));
}

/// Turns a native word into a little one and back.
template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word NativeToLittle(Word word) noexcept {
    return std::endian::native == std::endian::big ? ReverseBytes(word) : word;
}

/// Turns a native word into a big one and back.
template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word NativeToBig(Word word) noexcept {
    return std::endian::native == std::endian::little ? ReverseBytes(word) : word;
}

/// The bytes from `first` on, all of which must be readable.
template <std::unsigned_integral Word>
[[nodiscard]] inline Word LoadNative(const char* first) noexcept {
    Word word;
    std::memcpy(&word, first, sizeof word);
    return word;
}
template <std::unsigned_integral Word>
[[nodiscard]] inline Word LoadLittle(const char* first) noexcept {
    return NativeToLittle(LoadNative<Word>(first));
}
template <std::unsigned_integral Word>
[[nodiscard]] inline Word LoadBig(const char* first) noexcept {
    return NativeToBig(LoadNative<Word>(first));
}

/// Writes the bytes of a little word from `first` on, all of which must be writable.
template <std::unsigned_integral Word>
inline void StoreLittle(Word word, char* first) noexcept {
    word = NativeToLittle(word);
    std::memcpy(first, &word, sizeof word);
}

/// Writes the first `Count` bytes of a little word, in pieces of 8, 4, 2 and 1.
template <std::size_t Count>
inline void StoreFirst(std::uint64_t word, char* first) noexcept {
    static_assert(Count <= 8);
    if constexpr (Count == 8) StoreLittle(word, first);
    if constexpr ((Count & 4U) != 0) StoreLittle(static_cast<std::uint32_t>(word), first);
    constexpr std::size_t kAfterFour = Count & 4U;
    if constexpr ((Count & 2U) != 0)
        StoreLittle(static_cast<std::uint16_t>(word >> 8 * kAfterFour), first + kAfterFour);
    constexpr std::size_t kAfterTwo = Count & 6U;
    if constexpr ((Count & 1U) != 0) first[kAfterTwo] = static_cast<char>(word >> 8 * kAfterTwo);
}

/// Eight characters as the little word that a load of them gives.
[[nodiscard]] consteval std::uint64_t WordOf(std::string_view characters) noexcept {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < 8; ++i)
        word |= std::uint64_t{static_cast<unsigned char>(characters[i])} << 8 * i;
    return word;
}

/// The little word without its first `count` bytes, 0 to 8: the others move to the front, zeros
/// follow. In two steps, because a word cannot be shifted by its width.
[[nodiscard]] constexpr std::uint64_t DropFirstBytes(std::uint64_t word,
                                                     std::size_t count) noexcept {
    return word >> 4 * count >> 4 * count;
}

/// The little word after `count` zero bytes, 0 to 8, which push as many last bytes out.
[[nodiscard]] constexpr std::uint64_t PutZerosFirst(std::uint64_t word,
                                                    std::size_t count) noexcept {
    return word << 4 * count << 4 * count;
}

/// The bytes of a text of less than eight as a little word; zeros follow. Two or three loads that
/// overlap.
[[nodiscard]] inline std::uint64_t LoadShort(std::string_view text) noexcept {
    const std::size_t size = text.size();
    if (size >= 4) {
        const std::uint64_t last = LoadLittle<std::uint32_t>(text.data() + size - 4);
        return LoadLittle<std::uint32_t>(text.data()) | last << 8 * (size - 4);
    }
    if (size == 0) return 0;
    const auto byte = [&](std::size_t at) {
        return std::uint64_t{static_cast<unsigned char>(text[at])} << 8 * at;
    };
    return byte(0) | byte(size / 2) | byte(size - 1);
}

/// The eight bytes of `text` from `at` <= size on as a little word; zeros stand for those past the
/// end.
[[nodiscard]] inline std::uint64_t LoadPadded(std::string_view text, std::size_t at) noexcept {
    const std::size_t left = text.size() - at;
    if (left >= 8) return LoadLittle<std::uint64_t>(text.data() + at);
    if (text.size() < 8) return LoadShort(text) >> 8 * (at & 7U);
    return DropFirstBytes(LoadLittle<std::uint64_t>(text.data() + text.size() - 8), 8 - left);
}

/// A word in which every byte is `byte`.
template <std::unsigned_integral Word = std::uint64_t>
[[nodiscard]] constexpr Word EachByte(unsigned char byte) noexcept {
    return static_cast<Word>(~Word{0} / 0xFFU * byte);
}

/// The upper bit of each byte that is above `limit`.
template <unsigned char limit, std::unsigned_integral Word>
[[nodiscard]] constexpr Word MarkAbove(Word word) noexcept {
    static_assert(limit < 128);
    return (((word & EachByte<Word>(127)) + EachByte<Word>(127 - limit)) | word) &
           EachByte<Word>(128);
}

/// The same for the first of these bytes in a little word, which is enough to find it or to know
/// that there is none. A byte above 127 carries into the next one, whose mark may be wrong then.
template <unsigned char limit, std::unsigned_integral Word>
[[nodiscard]] constexpr Word MarkFirstAbove(Word word) noexcept {
    static_assert(limit < 128);
    return ((word + EachByte<Word>(127 - limit)) | word) & EachByte<Word>(128);
}

/// How many bytes are 0 before the first other one: 0 to 8.
[[nodiscard]] constexpr std::size_t ZeroBytesFirst(std::uint64_t word) noexcept {
    return static_cast<std::size_t>(std::countr_zero(word)) / 8;
}

/// How many bytes are 0 after the last other one: 0 to 8.
[[nodiscard]] constexpr std::size_t ZeroBytesLast(std::uint64_t word) noexcept {
    return static_cast<std::size_t>(std::countl_zero(word)) / 8;
}

/// `a` where `isFirst` is 1, `b` where it is 0. In bits, because compilers make branches of
/// conditional expressions, which cost much where they cannot be predicted.
template <class T>
[[nodiscard]] inline const T* Choose(std::uint64_t isFirst, const T* a, const T* b) noexcept {
    const auto first = reinterpret_cast<std::uintptr_t>(a);
    const auto second = reinterpret_cast<std::uintptr_t>(b);
    const std::uintptr_t chosen =
        second ^ ((first ^ second) & (0 - static_cast<std::uintptr_t>(isFirst)));
    return reinterpret_cast<const T*>(chosen);  // NOLINT(performance-no-int-to-ptr): no branch
}

/// The sum of the four lanes of 16 bits, itself below 2^16: the product adds all of them in its
/// highest lane, and the sums of fewer in those below carry nothing into it.
[[nodiscard]] constexpr std::uint64_t SumOfLanes16(std::uint64_t lanes) noexcept {
    return lanes * 0x0001000100010001U >> 48U;
}
static_assert(SumOfLanes16(0x3FFF'3FFF'3FFF'3FFF) == 0xFFFC);
static_assert(SumOfLanes16(0x0001'0000'0000'FFFE) == 0xFFFF);

/// Both lanes of 32 bits divided by 100, for lanes below 10,000: a multiplication by 2^19 / 100,
/// rounded up.
[[nodiscard]] constexpr std::uint64_t DivideLanes32By100(std::uint64_t lanes) noexcept {
    return lanes * 5243 >> 19U & 0x0000'007F'0000'007F;
}

/// The four lanes of 16 bits divided by 10, for lanes below 100: a multiplication by 2^10 / 10,
/// rounded up.
[[nodiscard]] constexpr std::uint64_t DivideLanes16By10(std::uint64_t lanes) noexcept {
    return lanes * 103 >> 10U & 0x000F'000F'000F'000F;
}

// Quotients never fall as lanes rise, so that only the first and the last lane of each quotient
// need a look: first in all lanes, then beside the greatest lane, which may carry most.
static_assert([] {
    constexpr std::uint64_t kAll = 0x0000'0001'0000'0001, kUpper = 9999ULL << 32U;
    for (std::uint64_t quotient = 0; quotient < 100; ++quotient)
        for (const std::uint64_t lane : {quotient * 100, quotient * 100 + 99})
            if (DivideLanes32By100(lane * kAll) != quotient * kAll ||
                DivideLanes32By100(lane | kUpper) != (quotient | 99ULL << 32U))
                return false;
    return true;
}());
static_assert([] {
    constexpr std::uint64_t kAll = 0x0001'0001'0001'0001, kUpper = 0x0063'0063'0063'0000;
    for (std::uint64_t quotient = 0; quotient < 10; ++quotient)
        for (const std::uint64_t lane : {quotient * 10, quotient * 10 + 9})
            if (DivideLanes16By10(lane * kAll) != quotient * kAll ||
                DivideLanes16By10(lane | kUpper) != (quotient | 0x0009'0009'0009'0000))
                return false;
    return true;
}());

}  // namespace corvale::internal
