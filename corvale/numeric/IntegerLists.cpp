#include <corvale/numeric/IntegerLists.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>

namespace corvale::GenFunctions {

namespace {

// A value of the list in the high half, its place in the low one: sorted, the places of equal
// values stand side by side and ascend.
using ValueAtPlace = std::uint64_t;

ValueAtPlace Pair(std::int32_t value, std::int32_t place) noexcept {
    return ValueAtPlace{static_cast<std::uint32_t>(value)} << 32U |
           static_cast<std::uint32_t>(place);
}

std::uint32_t SortKey(ValueAtPlace pair) noexcept {
    return static_cast<std::uint32_t>(pair >> 32U);
}

// Ascends with the value, negative ones first.
std::uint32_t SortKey(std::int32_t value) noexcept {
    return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}

std::int32_t PlaceOf(ValueAtPlace pair) noexcept {
    return static_cast<std::int32_t>(pair & 0xFFFFFFFFU);
}

struct Release {
    void operator()(void* memory) const noexcept { std::free(memory); }
};
template <class T>
using Scratch = std::unique_ptr<T[], Release>;

// Room for `count` elements, or null.
template <class T>
Scratch<T> TakeScratch(std::size_t count) noexcept {
    return Scratch<T>{static_cast<T*>(std::malloc(count * sizeof(T)))};
}

// Below this length the counters of a wide digit cost more than the passes they save.
constexpr std::size_t kWideDigitLength = 4096;

// Shorter lists are not worth an allocation.
constexpr std::size_t kShortest = 256;

// Sorts by 32-bit keys, lowest digit first, equal keys in their order; a digit that all keys share
// costs no pass. `other` has room for as many; returns the one of the two that holds the result.
// Three times as fast as std::sort on a million; bench: ISort in bench/SmallBench.cpp.
//
// Not inline: two copies of its counters, 8 KiB each, would overrun the smallest thread's stack.
template <class T>
[[gnu::noinline]] T* RadixSort(T* data, T* other, std::size_t count) noexcept {
    const unsigned width = count < kWideDigitLength ? 8 : 11;
    const std::uint32_t mask = (1U << width) - 1;
    for (unsigned shift = 0; shift < 32; shift += width) {
        std::array<std::uint32_t, 2048> ends{};
        for (std::size_t i = 0; i < count; ++i) ++ends[SortKey(data[i]) >> shift & mask];
        if (ends[SortKey(data[0]) >> shift & mask] == count) continue;

        std::uint32_t begin = 0;
        for (std::uint32_t digit = 0; digit <= mask; ++digit) {
            const std::uint32_t size = ends[digit];
            ends[digit] = begin;
            begin += size;
        }
        for (std::size_t i = 0; i < count; ++i)
            other[ends[SortKey(data[i]) >> shift & mask]++] = data[i];
        std::swap(data, other);
    }
    return data;
}

// Sets all but the last of equal values to 0; zeros stay.
void ClearRepeats(const ValueAtPlace* sorted, std::size_t count, std::int32_t* list) noexcept {
    for (std::size_t i = 0; i + 1 < count; ++i)
        if (SortKey(sorted[i]) == SortKey(sorted[i + 1])) list[PlaceOf(sorted[i])] = 0;
}

// The values of a stretch of a list, 0 excepted. At most half full, so a search ends soon; however
// the values are chosen it ends within the stretch.
class StretchSet {
  public:
    static constexpr std::int32_t kMostValues = 256;

    /// Adds `value`; false where it is there already.
    bool Add(std::int32_t value) noexcept {
        std::int32_t& slot = slots_[Find(value)];
        if (slot == value) return false;
        slot = value;
        return true;
    }
    [[nodiscard]] bool Contains(std::int32_t value) const noexcept {
        return slots_[Find(value)] == value;
    }

  private:
    static constexpr std::size_t kSlots = std::size_t{2} * kMostValues;

    // The slot that holds `value`, or the empty one where it belongs.
    [[nodiscard]] std::size_t Find(std::int32_t value) const noexcept {
        // 2^32 over the golden ratio, which spreads neighbours; the nine high bits are the slot.
        std::size_t slot = static_cast<std::uint32_t>(value) * 0x9E3779B1U >> 23U;
        while (slots_[slot] != 0 && slots_[slot] != value) slot = (slot + 1) % kSlots;
        return slot;
    }

    std::array<std::int32_t, kSlots> slots_{};
};

// Needs no memory: takes stretches of the list, the last one first, and looks up all that stands
// before each. A list of one stretch is done without that.
void ClearRepeatsByStretches(std::int32_t* list, std::int32_t n) noexcept {
    for (std::int32_t end = n; end > 0; end -= StretchSet::kMostValues) {
        const std::int32_t begin = std::max(end - StretchSet::kMostValues, 0);
        StretchSet values;
        for (std::int32_t place = end - 1; place >= begin; --place)
            if (list[place] != 0 && !values.Add(list[place])) list[place] = 0;
        for (std::int32_t place = 0; place < begin; ++place)
            if (list[place] != 0 && values.Contains(list[place])) list[place] = 0;
    }
}

void ClearAllRepeats(std::int32_t* list, std::int32_t n) noexcept {
    if (n <= StretchSet::kMostValues) return ClearRepeatsByStretches(list, n);
    const auto count = static_cast<std::size_t>(n);
    const auto pairs = TakeScratch<ValueAtPlace>(2 * count);
    if (!pairs) return ClearRepeatsByStretches(list, n);

    for (std::int32_t place = 0; place < n; ++place)
        pairs[static_cast<std::size_t>(place)] = Pair(list[place], place);
    ClearRepeats(RadixSort(pairs.get(), pairs.get() + count, count), count, list);
}

// Moves what is positive to the front and leaves 0 where it came from. What is negative is not
// moved: it stays unless it is moved over. Returns how many were kept.
std::int32_t Pack(std::int32_t* list, std::int32_t n) noexcept {
    std::int32_t kept = 0;
    for (std::int32_t place = 0; place < n; ++place) {
        const std::int32_t value = list[place];
        if (value <= 0) continue;
        list[place] = 0;
        list[kept++] = value;
    }
    return kept;
}

void SortAscending(std::int32_t* list, std::size_t count) noexcept {
    if (count > kShortest) {
        if (const auto other = TakeScratch<std::int32_t>(count)) {
            const std::int32_t* sorted = RadixSort(list, other.get(), count);
            if (sorted != list) std::copy(sorted, sorted + count, list);
            return;
        }
    }
    std::sort(list, list + count);
}

}  // namespace

void IDupe(std::int32_t* list, std::int32_t& n) noexcept {
    if (n < 2) return;
    ClearAllRepeats(list, n);
    const std::int32_t* last = list + n - 1;  // never looked at as an empty place
    if (std::find(list, list + n - 1, 0) == last) return;
    n = Pack(list, n);
}

void ISort(std::int32_t order, std::int32_t* list, std::int32_t& n) noexcept {
    if (n == 1 && list[0] == 0) n = 0;
    if (n < 2) return;
    IDupe(list, n);
    if (n < 2) return;

    SortAscending(list, static_cast<std::size_t>(n));
    if (order < 0) std::reverse(list, list + n);
}

}  // namespace corvale::GenFunctions
