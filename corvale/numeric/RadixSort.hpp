// Internal to numeric/: not installed, may change in any commit.
//
// A radix sort that is linear whatever the keys are, and reads as few of their bits as it can.
//
// It sorts by the two highest digits alone, least significant first. Keys that are spread out differ
// there, so that an insertion sort has next to nothing left to move. If it has, or if the list is so
// long that two digits cannot tell its keys apart, a radix sort by all bits follows.
//
// An element is its key, or a pair with the key in the high half, so that elements ascend as keys do.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace corvale::internal {

// Below this length digits of 8 bits are faster than digits of 11: they have an eighth of the
// counters (ISort in bench/SmallBench.cpp, 1,000 and 10,000 sparse integers).
constexpr std::size_t kWideDigitLength = 4096;

// Two digits suffice where they have 16 times as many values as the list: then about one random key
// in 32 shares both with another. At a quarter of that a third pass is faster.
constexpr unsigned kSpareBits = 4;

inline std::uint32_t KeyOf(std::uint32_t key) noexcept {
    return key;
}
inline std::uint32_t KeyOf(std::uint64_t pair) noexcept {
    return static_cast<std::uint32_t>(pair >> 32U);
}

/// Sorts by the bits of the keys from `low` to `high` - 1, keeping the order of equal ones. `other`
/// is as long; returns the one of the two that holds the result.
///
/// Not inline: two copies of the counters, 8 KiB each, would overrun the smallest thread's stack.
template <class T>
[[gnu::noinline]] T* SortByDigits(T* data, T* other, std::size_t count, int low,
                                  int high) noexcept {
    const int width = count < kWideDigitLength ? 8 : 11;
    const std::uint32_t mask = (1U << width) - 1;
    for (int shift = low; shift < high; shift += width) {
        std::array<std::uint32_t, 2048> ends{};
        for (std::size_t i = 0; i < count; ++i) ++ends[KeyOf(data[i]) >> shift & mask];
        std::uint32_t begin = 0;
        for (std::uint32_t digit = 0; digit <= mask; ++digit) {
            const std::uint32_t size = ends[digit];
            ends[digit] = begin;
            begin += size;
        }
        for (std::size_t i = 0; i < count; ++i)
            other[ends[KeyOf(data[i]) >> shift & mask]++] = data[i];
        std::swap(data, other);
    }
    return data;
}

/// Insertion sort of nearly sorted elements. Gives up and returns false once it has moved two
/// elements for each of the list.
template <class T>
bool InsertFew(T* data, std::size_t count) noexcept {
    std::size_t left = 2 * count;
    for (std::size_t i = 1; i < count; ++i) {
        const T element = data[i];
        std::size_t slot = i;
        for (; slot > 0 && element < data[slot - 1]; --slot) data[slot] = data[slot - 1];
        data[slot] = element;
        if (i - slot > left) return false;
        left -= i - slot;
    }
    return true;
}

/// Sorts elements with keys up to `greatest`. `other` is as long; returns the one of the two that
/// holds the result.
template <class T>
T* RadixSort(T* data, T* other, std::size_t count, std::uint32_t greatest) noexcept {
    const auto bits = static_cast<int>(std::bit_width(greatest));
    const int twoDigits = count < kWideDigitLength ? 16 : 22;
    if (bits <= twoDigits || count > std::size_t{1} << twoDigits >> kSpareBits)
        return SortByDigits(data, other, count, 0, bits);

    SortByDigits(data, other, count, bits - twoDigits, bits);  // two passes: they end in `data`
    if (InsertFew(data, count)) return data;
    return SortByDigits(data, other, count, 0, bits);
}

}  // namespace corvale::internal
