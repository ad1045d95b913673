#include <corvale/numeric/IntegerLists.hpp>

#include <corvale/numeric/RadixSort.hpp>
#include <corvale/numeric/Scratch.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

// Three ways, by how far apart the least and the greatest value are:
//
// Dense   Up to 16 times the length, as with catalogue numbers: a bitmap with one bit a value. A
//         bit that is already set marks a repeat, and the set bits in order are the sorted list
//         (J. Bentley, Programming Pearls, 1986, column 1).
// Sparse  Radix sort; for `IDupe` of pairs of value and index, so that equal values are neighbours,
//         the last one last.
// Short   Up to 256 values, or where allocation fails: a hash set on the stack, and std::sort.
namespace corvale::GenFunctions {

namespace {

// Greatest span of a dense list, in values an element. At 16 a word of the bitmap holds four values
// on average; at 32 the radix sort is faster (ISort in bench/SmallBench.cpp with such values).
constexpr std::size_t kDense = 16;

// Sparse lists up to this length are not worth an allocation.
constexpr std::size_t kShortest = 256;

using Bits = internal::Scratch<std::uint64_t, kDense * kShortest / 64 + 1>;

/// The values of a list, seen as unsigned distances from the least one.
struct Span {
    std::int32_t least, greatest;

    static Span Of(const std::int32_t* list, std::size_t count) noexcept {
        std::int32_t least = list[0],
                     greatest = list[0];  // the compiler takes members for list elements
        for (std::size_t i = 1; i < count; ++i) {
            least = std::min(least, list[i]);
            greatest = std::max(greatest, list[i]);
        }
        return {least, greatest};
    }
    [[nodiscard]] std::uint32_t Distance(std::int32_t value) const noexcept {
        return static_cast<std::uint32_t>(value) - static_cast<std::uint32_t>(least);
    }
    [[nodiscard]] std::size_t Words() const noexcept { return Distance(greatest) / 64 + 1; }
    [[nodiscard]] bool IsDense(std::size_t count) const noexcept {
        return Distance(greatest) / kDense < count;
    }
};

/// Sets the bit of `value`. Returns 1 if it was set already, else 0.
std::int32_t SetBit(std::uint64_t* bits, std::uint32_t value) noexcept {
    const std::uint64_t old = bits[value / 64];
    bits[value / 64] = old | std::uint64_t{1} << value % 64;
    return static_cast<std::int32_t>(old >> value % 64 & 1);
}

/// False if no memory could be allocated.
bool ClearRepeatsByBits(std::int32_t* list, std::size_t count, const Span& span) noexcept {
    Bits bits(span.Words());
    if (bits.Data() == nullptr) return false;
    std::fill_n(bits.Data(), span.Words(), std::uint64_t{0});
    for (std::size_t i = count; i > 0; --i)  // no branch, which would be guessed half of the time
        list[i - 1] &= SetBit(bits.Data(), span.Distance(list[i - 1])) - 1;
    return true;
}

bool ClearRepeatsByPairs(std::int32_t* list, std::size_t count, const Span& span) noexcept {
    internal::Scratch<std::uint64_t, 1> pairs(2 * count);
    if (pairs.Data() == nullptr) return false;
    for (std::size_t i = 0; i < count; ++i)
        pairs.Data()[i] = std::uint64_t{span.Distance(list[i])} << 32U | i;
    const std::uint64_t* sorted = internal::RadixSort(pairs.Data(), pairs.Data() + count, count,
                                                      span.Distance(span.greatest));
    for (std::size_t i = 1; i < count; ++i)
        if (sorted[i - 1] >> 32U == sorted[i] >> 32U) list[sorted[i - 1] & 0xFFFFFFFFU] = 0;
    return true;
}

/// A hash set of up to 256 values; half of its slots stay 0, so a search ends soon.
class StretchSet {
  public:
    /// The slot that holds `value`, or the empty one where it belongs.
    std::int32_t& Slot(std::int32_t value) noexcept {
        // 2^32 over the golden ratio, which spreads neighbours; the nine high bits are the slot.
        std::size_t slot = static_cast<std::uint32_t>(value) * 0x9E3779B1U >> 23U;
        while (slots_[slot] != 0 && slots_[slot] != value) slot = (slot + 1) % slots_.size();
        return slots_[slot];
    }

  private:
    std::array<std::int32_t, 2 * kShortest> slots_{};
    static_assert(2 * kShortest == 1U << (32 - 23));
};

// Needs no memory: takes stretches of the list, the last one first, and looks up all that precedes
// each. A list of one stretch is done at once; the time grows with the square of their number.
void ClearRepeatsByStretches(std::int32_t* list, std::size_t count) noexcept {
    for (std::size_t end = count; end > 0;) {
        const std::size_t begin = end - std::min(end, kShortest);
        StretchSet values;
        for (; end > begin; --end) {
            std::int32_t& slot = values.Slot(list[end - 1]);
            if (slot == list[end - 1])
                list[end - 1] = 0;
            else
                slot = list[end - 1];
        }
        for (std::size_t i = 0; i < begin; ++i)
            if (values.Slot(list[i]) == list[i]) list[i] = 0;
    }
}

/// Sets all but the last of equal values to 0.
void ClearRepeats(std::int32_t* list, std::size_t count) noexcept {
    const Span span = Span::Of(list, count);
    if (span.IsDense(count) && ClearRepeatsByBits(list, count, span)) return;
    if (count > kShortest && ClearRepeatsByPairs(list, count, span)) return;
    ClearRepeatsByStretches(list, count);
}

/// Moves positive values to the front and leaves 0 where they were. A negative value stays in its
/// slot unless a positive one is moved there. Returns how many were kept.
std::int32_t Pack(std::int32_t* list, std::int32_t n) noexcept {
    std::int32_t kept = 0;
    for (std::int32_t i = 0; i < n; ++i) {  // no branch: half of the values may be dropped
        const auto keep = static_cast<std::int32_t>(list[i] > 0);
        list[kept] ^= (list[i] ^ list[kept]) & -keep;
        kept += keep;
    }
    for (std::int32_t i = kept; i < n; ++i) list[i] = std::min(list[i], 0);
    return kept;
}

/// Null if no memory could be allocated; else the end of the sorted values.
std::int32_t* SortByBits(std::int32_t* list, std::size_t count, const Span& span) noexcept {
    Bits bits(span.Words());
    if (bits.Data() == nullptr) return nullptr;
    std::fill_n(bits.Data(), span.Words(), std::uint64_t{0});
    for (std::size_t i = 0; i < count; ++i) SetBit(bits.Data(), span.Distance(list[i]));
    auto base = static_cast<std::uint32_t>(span.least);
    for (std::size_t i = 0; i < span.Words(); ++i, base += 64)
        for (std::uint64_t word = bits.Data()[i]; word != 0; word &= word - 1)
            *list++ = static_cast<std::int32_t>(base +
                                                static_cast<std::uint32_t>(std::countr_zero(word)));
    return list;
}

std::int32_t* SortByRadix(std::int32_t* list, std::size_t count, const Span& span) noexcept {
    internal::Scratch<std::uint32_t, 1> keys(2 * count);
    if (keys.Data() == nullptr) return nullptr;
    std::transform(list, list + count, keys.Data(),
                   [&](auto value) { return span.Distance(value); });
    const std::uint32_t* sorted =
        internal::RadixSort(keys.Data(), keys.Data() + count, count, span.Distance(span.greatest));
    for (std::size_t i = 0; i < count; ++i)
        list[i] = static_cast<std::int32_t>(sorted[i] + static_cast<std::uint32_t>(span.least));
    return std::unique(list, list + count);
}

/// Sorts and drops repeats. Returns the end of what is left.
std::int32_t* SortUnique(std::int32_t* list, std::size_t count, const Span& span) noexcept {
    std::int32_t* end = nullptr;
    if (span.IsDense(count)) end = SortByBits(list, count, span);
    if (end == nullptr && count > kShortest) end = SortByRadix(list, count, span);
    if (end != nullptr) return end;
    std::sort(list, list + count);
    return std::unique(list, list + count);
}

}  // namespace

void IDupe(std::int32_t* list, std::int32_t& n) noexcept {
    if (n < 2) return;
    ClearRepeats(list, static_cast<std::size_t>(n));
    const std::int32_t* last = list + n - 1;  // never looked at as an empty slot
    if (std::find(list, list + n - 1, 0) == last) return;
    n = Pack(list, n);
}

void ISort(std::int32_t order, std::int32_t* list, std::int32_t& n) noexcept {
    if (n == 1 && list[0] == 0) n = 0;
    if (n < 2) return;
    Span span = Span::Of(list, static_cast<std::size_t>(n));
    if (span.least <= 0) {  // positive values lose their repeats while they are sorted
        IDupe(list, n);
        if (n < 2) return;
        span = Span::Of(list, static_cast<std::size_t>(n));
    }
    std::int32_t* end = SortUnique(list, static_cast<std::size_t>(n), span);
    std::fill(end, list + n, 0);
    n = static_cast<std::int32_t>(end - list);
    if (order < 0) std::reverse(list, end);
}

}  // namespace corvale::GenFunctions
