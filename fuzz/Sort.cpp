// The sort: keys ascending, each beside its companion; one partition step against the plain one.
#include "Targets.hpp"

#include "reference/inputs/KeyPatterns.hpp"

#include <corvale/sorting/Sorting.hpp>

#include <bitset>

namespace corvale::fuzz {
namespace sort {

using namespace Sorting;
using reference::IsLess;

constexpr std::size_t kMost = 4096;

thread_local std::array<Key, kMost> gBefore;
thread_local GuardedMemory<kMost * sizeof(Key)> gKeyMemory;
thread_local GuardedMemory<kMost * 8> gCompanionMemory;

// Keys that share their beginnings: two bytes of each are taken from the input, or from the bytes
// before where it has ended.
void MakeKeys(Choices& in, std::size_t n) {
    const std::size_t first = in.Below(32), second = in.Below(32);
    const std::uint8_t mask = in.Byte(), fill = in.Byte();
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < n; ++i) {
        state = in.Left() > 0 ? in.Byte() : state * 1664525U + 1013904223U;
        gBefore[i].fill(static_cast<char>(fill));
        gBefore[i][first] = static_cast<char>((state >> 16U ^ state) & mask);
        gBefore[i][second] = static_cast<char>(state >> 3U);
    }
}

std::size_t AnyKeys(Choices& in) {
    const std::uint8_t kind = in.Byte();
    if (kind < 253) {
        const std::size_t n = kind < 250 ? kind % 40 : in.Below(400);
        MakeKeys(in, n);
        return n;
    }
    std::mt19937_64 random(in.Raw<std::uint16_t>());
    std::size_t n = 0;
    for (std::size_t stretches = 1 + in.Below(6); stretches > 0; --stretches) {
        const auto pattern = static_cast<reference::Pattern>(in.Below(reference::kPatterns));
        const std::vector<Key> keys =
            reference::MakeKeys(pattern, in.Below((kMost - n) / 2), random);
        std::copy(keys.begin(), keys.end(), &gBefore[n]);
        n += keys.size();
    }
    return n;
}

void ExpectSorted(const Key* keys, const std::int64_t* companion, std::size_t n) {
    std::bitset<kMost> isThere;
    for (std::size_t i = 0; i < n; ++i) {
        const auto from = static_cast<std::size_t>(companion[i]);
        Expect(from < n && keys[i] == gBefore[from], "a companion stays beside its key");
        Expect(i == 0 || !IsLess(keys[i], keys[i - 1]), "keys ascend");
        Note(from);
        isThere[from] = true;
    }
    Expect(isThere.count() == n, "every key is there");
}

void OneStep(Choices& in, std::size_t n, Key* keys, std::int64_t* companion) {
    if (n == 0) return;
    std::array<std::int64_t, kMost> plain;
    std::copy_n(companion, n, plain.begin());
    const auto low = static_cast<std::int32_t>(1 + in.Below(n));
    const auto high = static_cast<std::int32_t>(1 + in.Below(n));
    const std::int32_t pivot = Partition(low, high, keys, companion);
    ExpectSame(pivot, reference::Partition(low, high, gBefore.data(), plain.data()), "Partition");
    Expect(std::equal(keys, keys + n, gBefore.begin()), "the keys of a partition");
    Expect(std::equal(companion, companion + n, plain.begin()), "the companions of a partition");
}

void Swaps(Choices& in, Key a, Key b) {
    const Key firstKey = a, secondKey = b;
    Swap_Str(a, b);
    Expect(a == secondKey && b == firstKey, "Swap_Str");
    auto left = in.Raw<std::int64_t>(), right = in.Raw<std::int64_t>();
    const std::int64_t wanted[] = {right, left};
    auto small = static_cast<std::int32_t>(left), other = static_cast<std::int32_t>(right);
    Swap_Int8(left, right);
    Swap_Int4(small, other);
    Expect(left == wanted[0] && right == wanted[1], "Swap_Int8");
    Expect(small == static_cast<std::int32_t>(left) && other == static_cast<std::int32_t>(right),
           "Swap_Int4");
}

}  // namespace sort

void Sort(Choices in) {
    using namespace sort;
    const std::size_t kind = in.Below(8);
    Choices steps(in);  // those of a step are read from the same bytes as the keys
    const std::size_t n = AnyKeys(in);
    auto* const keys = gKeyMemory.Of<Key>(n);
    auto* const companion = gCompanionMemory.Of<std::int64_t>(n);
    std::copy_n(gBefore.begin(), n, keys);
    for (std::size_t i = 0; i < n; ++i) companion[i] = static_cast<std::int64_t>(i);
    if (kind == 0) return Swaps(steps, gBefore[0], gBefore[1]);
    if (kind == 1) return OneStep(steps, n, keys, companion);
    QuickSortIterative(static_cast<std::int32_t>(n), keys, companion);
    ExpectSorted(keys, companion, n);
}

}  // namespace corvale::fuzz
