// Internal to sorting/: not installed, may change in any commit.
//
// A stretch of keys with its companions, and the comparison of keys by words of eight bytes.
#pragma once

#include <corvale/base/Words.hpp>
#include <corvale/sorting/Sorting.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

namespace corvale::internal {

using Sorting::Key;

/// How many bytes a key has.
constexpr std::size_t kKeyBytes = sizeof(Key);

/// The eight bytes from `offset` on as a number that orders as the bytes do.
[[nodiscard]] inline std::uint64_t BigWordAt(const Key& key, std::size_t offset) noexcept {
    return LoadBig<std::uint64_t>(key.data() + offset);
}

/// Whether `a` comes before `b`. Four compares at most; as words three times as fast as memcmp on
/// keys that differ early.
[[nodiscard]] inline bool IsLess(const Key& a, const Key& b) noexcept {
    for (std::size_t offset = 0; offset < kKeyBytes; offset += 8) {
        const auto left = LoadNative<std::uint64_t>(a.data() + offset);
        const auto right = LoadNative<std::uint64_t>(b.data() + offset);
        if (left != right) return NativeToBig(left) < NativeToBig(right);
    }
    return false;
}

/// `a` where `isFirst` is 1, `b` where it is 0. Spelt in bits, for a compiler makes branches of
/// conditional expressions.
[[nodiscard]] inline std::uint64_t Choose(std::uint64_t isFirst, std::uint64_t a,
                                          std::uint64_t b) noexcept {
    return b ^ ((a ^ b) & (0 - isFirst));
}
template <class T>
[[nodiscard]] T* Choose(std::uint64_t isFirst, T* a, T* b) noexcept {
    const auto chosen =
        Choose(isFirst, reinterpret_cast<std::uintptr_t>(a), reinterpret_cast<std::uintptr_t>(b));
    return reinterpret_cast<T*>(chosen);  // NOLINT(performance-no-int-to-ptr): the point of it
}

/// `count` keys and their companions; places count from 0.
struct KeyRange {
    Key* keys;
    std::int64_t* companion;
    std::size_t count;

    [[nodiscard]] KeyRange Part(std::size_t begin, std::size_t end) const noexcept {
        return {keys + begin, companion + begin, end - begin};
    }
    /// Copies row `from` of `source` over row `to`.
    void Put(std::size_t to, const KeyRange& source, std::size_t from) const noexcept {
        keys[to] = source.keys[from];
        companion[to] = source.companion[from];
    }
    /// Copies `rows` rows of `source` from `from` on over the rows from `to` on; they may overlap.
    void PutRows(std::size_t to, const KeyRange& source, std::size_t from,
                 std::size_t rows) const noexcept {
        std::memmove(keys + to, source.keys + from, rows * sizeof(Key));
        std::memmove(companion + to, source.companion + from, rows * sizeof(std::int64_t));
    }
};

/// The bytes of a key with its companion.
constexpr std::size_t kRowBytes = kKeyBytes + sizeof(std::int64_t);

/// `rows` rows in `memory`, which is aligned for companions and long enough.
[[nodiscard]] inline KeyRange RowsIn(std::span<std::int32_t> memory, std::size_t rows) noexcept {
    auto* const companion = reinterpret_cast<std::int64_t*>(memory.data());
    return {reinterpret_cast<Key*>(companion + rows), companion, rows};
}

}  // namespace corvale::internal
