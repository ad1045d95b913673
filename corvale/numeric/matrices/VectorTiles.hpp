// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Vectors of doubles as wide as the processor has them, and the tile that all matrix products here
// are made of. Each lane is an element of its own with its own order of operations, so the width
// changes nothing but the speed.
//
// A panel is a stripe of kPanel columns (or rows) of a matrix, stored step by step: the kPanel
// elements of step 0, those of step 1, and so on. A product of two panels walks down both of them,
// so nothing depends on the order of the matrix or on its leading dimension.
#pragma once

#include <corvale/base/CodePath.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>

// Vectors are handed only to functions that are always inlined, so how a call would pass them does
// not matter.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace corvale::internal {

struct TwoLanes : BaselinePath {
    static constexpr std::size_t kLanes = 2, kPanel = 4;
    using Vector [[gnu::vector_size(16), gnu::may_alias]] = double;
    using Bits [[gnu::vector_size(16)]] = std::int64_t;
    using Words [[gnu::vector_size(16)]] = std::uint64_t;
    using Reals [[gnu::vector_size(16)]] = double;  // for templates, which forget may_alias
};

struct FourLanes : Avx2Path {
    static constexpr std::size_t kLanes = 4, kPanel = 8;
    using Vector [[gnu::vector_size(32), gnu::may_alias]] = double;
    using Bits [[gnu::vector_size(32)]] = std::int64_t;
    using Words [[gnu::vector_size(32)]] = std::uint64_t;
    using Reals [[gnu::vector_size(32)]] = double;
};

/// The width of the widest panel: scratch is laid out for it whatever the processor has.
constexpr std::size_t kLongestPanelRow = FourLanes::kPanel;

constexpr std::size_t RoundUp(std::size_t n, std::size_t unit) noexcept {
    return (n + unit - 1) / unit * unit;
}

constexpr std::size_t kTileRows = 4;

/// The aligned vector at `p`.
template <class V>
CORVALE_INLINE V& At(double* p) noexcept {  // NOLINT(readability-non-const-parameter)
    return *reinterpret_cast<V*>(p);
}
template <class V>
CORVALE_INLINE const V& At(const double* p) noexcept {
    return *reinterpret_cast<const V*>(p);
}

/// `value` in every lane, a -0.0 as well.
template <class V>
CORVALE_INLINE V Splat(double value) noexcept {
    return value - V{};
}

/// The numbers of the lanes of a row's vector `vector`, counted on from vector to vector.
template <class L>
CORVALE_INLINE typename L::Vector LaneNumbers(std::size_t vector) noexcept {
    typename L::Vector numbers{};
    for (std::size_t i = 0; i < L::kLanes; ++i)
        numbers[i] = static_cast<double>(vector * L::kLanes + i);
    return numbers;
}

/// Four rows of a panel, each in two vectors, held in registers: every loop below is unrolled, so
/// that no index is left at run time.
template <class L>
struct Tile {
    using V = typename L::Vector;
    V row[kTileRows][2];

    CORVALE_INLINE void Clear() noexcept {
#pragma GCC unroll 4
        for (auto& r : row) r[0] = r[1] = V{};
    }
    CORVALE_INLINE void Load(const double* p) noexcept {
#pragma GCC unroll 4
        for (std::size_t r = 0; r < kTileRows; ++r, p += L::kPanel)
            row[r][0] = At<V>(p), row[r][1] = At<V>(p + L::kLanes);
    }
    CORVALE_INLINE void Store(double* p) const noexcept {
#pragma GCC unroll 4
        for (std::size_t r = 0; r < kTileRows; ++r, p += L::kPanel)
            At<V>(p) = row[r][0], At<V>(p + L::kLanes) = row[r][1];
    }
    /// Row r gains x(k) y(k, r) for each of `steps` steps k, one after the other.
    CORVALE_INLINE void Add(const double* x, const double* y, std::size_t steps) noexcept {
        for (; steps > 0; --steps, x += L::kPanel, y += L::kPanel) {
            const V x0 = At<V>(x), x1 = At<V>(x + L::kLanes);
#pragma GCC unroll 4
            for (std::size_t r = 0; r < kTileRows; ++r)
                row[r][0] += x0 * y[r], row[r][1] += x1 * y[r];
        }
    }
    /// Row r loses x(k) y(k, r) for each of `steps` steps k, one after the other.
    CORVALE_INLINE void Subtract(const double* x, const double* y, std::size_t steps) noexcept {
        for (; steps > 0; --steps, x += L::kPanel, y += L::kPanel) {
            const V x0 = At<V>(x), x1 = At<V>(x + L::kLanes);
#pragma GCC unroll 4
            for (std::size_t r = 0; r < kTileRows; ++r)
                row[r][0] -= x0 * y[r], row[r][1] -= x1 * y[r];
        }
    }
};

/// A square block of as many vectors as a vector has lanes. `where(r)` is the address of vector r,
/// which need not be aligned.
template <class L>
struct Block {
    using V = typename L::Vector;
    V v0, v1, v2, v3;

    template <class Where>
    CORVALE_INLINE void Load(const Where& where) noexcept {
        std::memcpy(&v0, where(0), sizeof v0), std::memcpy(&v1, where(1), sizeof v1);
        if constexpr (L::kLanes == 4)
            std::memcpy(&v2, where(2), sizeof v2), std::memcpy(&v3, where(3), sizeof v3);
    }
    template <class Where>
    CORVALE_INLINE void Store(const Where& where) const noexcept {
        std::memcpy(where(0), &v0, sizeof v0), std::memcpy(where(1), &v1, sizeof v1);
        if constexpr (L::kLanes == 4)
            std::memcpy(where(2), &v2, sizeof v2), std::memcpy(where(3), &v3, sizeof v3);
    }
    /// Lane r of vector c becomes lane c of vector r.
    CORVALE_INLINE void Turn() noexcept {
        if constexpr (L::kLanes == 2) {
            const V p = v0;
            v0 = __builtin_shufflevector(p, v1, 0, 2);
            v1 = __builtin_shufflevector(p, v1, 1, 3);
        } else {
            const V p = __builtin_shufflevector(v0, v1, 0, 4, 2, 6);
            const V q = __builtin_shufflevector(v0, v1, 1, 5, 3, 7);
            const V r = __builtin_shufflevector(v2, v3, 0, 4, 2, 6);
            const V s = __builtin_shufflevector(v2, v3, 1, 5, 3, 7);
            v0 = __builtin_shufflevector(p, r, 0, 1, 4, 5);
            v1 = __builtin_shufflevector(q, s, 0, 1, 4, 5);
            v2 = __builtin_shufflevector(p, r, 2, 3, 6, 7);
            v3 = __builtin_shufflevector(q, s, 2, 3, 6, 7);
        }
    }
};

}  // namespace corvale::internal
