// Internal to numeric/matrices/: not installed, may change in any commit.
//
// As many matrices side by side as a vector has lanes: vector e holds element e of each. A matrix is
// so one lane with an order of operations of its own, that of the single procedures, and nothing that
// one lane holds (a zero pivot, a NaN) changes another.
//
// This file moves lines of elements between the matrices and the vectors; LaneCholesky.hpp and
// LaneInversion.hpp compute.
#pragma once

#include <corvale/numeric/Scratch.hpp>
#include <corvale/numeric/Views.hpp>
#include <corvale/numeric/matrices/VectorTiles.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace corvale::internal {

/// The largest order that is computed in lanes: the vectors of a square fit the smallest stack.
constexpr std::size_t kLaneOrder = kOrderWithoutHeap;

/// The lanes of this build's fastest path. Positions, and positions with velocities, come by the
/// million: on it alone orders 3 and 6 are known to the compiler (a third less time in
/// bench/SeriesBench.cpp, for as much code as all other orders have together).
using MostLanes = std::conditional_t<CORVALE_HAS_AVX2_PATH, FourLanes, TwoLanes>;

/// Where the elements of each lane's matrix or vector begin.
template <class L, class T>
struct LaneStarts {
    using V = typename L::Vector;
    T* at[L::kLanes];

    /// Those of `series` from `first` on. Lanes behind the last get the first one's: they then read
    /// and write the same as that does.
    CORVALE_INLINE static LaneStarts Of(T* data, std::ptrdiff_t distance, std::size_t first,
                                        std::size_t count) noexcept {
        LaneStarts starts;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) {
            const std::size_t item = first + lane < count ? first + lane : first;
            starts.at[lane] = data + static_cast<std::ptrdiff_t>(item) * distance;
        }
        return starts;
    }
    /// The elements `offset` behind them.
    CORVALE_INLINE V Gather(std::ptrdiff_t offset) const noexcept {
        if constexpr (L::kLanes == 4)
            return V{at[0][offset], at[1][offset], at[2][offset], at[3][offset]};
        else
            return V{at[0][offset], at[1][offset]};
    }
    CORVALE_INLINE LaneStarts From(std::ptrdiff_t offset) const noexcept {
        LaneStarts moved;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) moved.at[lane] = at[lane] + offset;
        return moved;
    }
};

/// `count` elements of each lane, `step` apart, become vectors that are `toStep` apart. Adjacent
/// ones are loaded as vectors, which are then turned: a third of the time.
template <class L>
CORVALE_INLINE void LoadLine(const LaneStarts<L, const double>& from, std::ptrdiff_t step,
                             std::size_t count, typename L::Vector* to,
                             std::size_t toStep) noexcept {
    const auto end = static_cast<std::ptrdiff_t>(count), next = static_cast<std::ptrdiff_t>(toStep);
    constexpr std::ptrdiff_t kLanes = L::kLanes;
    const std::ptrdiff_t turned = step == 1 ? end - end % kLanes : 0;
    for (std::ptrdiff_t k = 0; k < turned; k += kLanes) {
        Block<L> block;
        block.Load([&](std::size_t lane) { return from.at[lane] + k; });
        block.Turn();
        block.Store([&](std::ptrdiff_t r) { return to + (k + r) * next; });
    }
    for (std::ptrdiff_t k = turned; k < end; ++k) to[k * next] = from.Gather(k * step);
}

/// The way back: vectors that are `fromStep` apart become `count` elements of each lane.
template <class L>
CORVALE_INLINE void StoreLine(const typename L::Vector* from, std::size_t fromStep,
                              std::size_t count, const LaneStarts<L, double>& to,
                              std::ptrdiff_t step) noexcept {
    const auto end = static_cast<std::ptrdiff_t>(count);
    const auto next = static_cast<std::ptrdiff_t>(fromStep);
    constexpr std::ptrdiff_t kLanes = L::kLanes;
    const std::ptrdiff_t turned = step == 1 ? end - end % kLanes : 0;
    for (std::ptrdiff_t k = 0; k < turned; k += kLanes) {
        Block<L> block;
        block.Load([&](std::ptrdiff_t r) { return from + (k + r) * next; });
        block.Turn();
        block.Store([&](std::size_t lane) { return to.at[lane] + k; });
    }
    for (std::ptrdiff_t k = turned; k < end; ++k)
        for (std::size_t lane = 0; lane < L::kLanes; ++lane)
            to.at[lane][k * step] = from[k * next][lane];
}

/// Up to four sums side by side, each a chain of its own: none waits for another.
template <class L, std::size_t width>
struct Sums {
    using V = typename L::Vector;
    V v0, v1, v2, v3;

    /// The first `upTo` of them gain from[r] * factor.
    template <std::size_t upTo = width>
    CORVALE_INLINE void Add(const V* from, const V& factor) noexcept {
        if constexpr (upTo > 0) v0 += from[0] * factor;
        if constexpr (upTo > 1) v1 += from[1] * factor;
        if constexpr (upTo > 2) v2 += from[2] * factor;
        if constexpr (upTo > 3) v3 += from[3] * factor;
    }
    template <std::size_t r>
    CORVALE_INLINE V& At() noexcept {
        static_assert(r < width);
        if constexpr (r == 0) return v0;
        if constexpr (r == 1) return v1;
        if constexpr (r == 2) return v2;
        return v3;
    }
    /// Calls `visit(sum, r)` for each of them.
    template <class Visit>
    CORVALE_INLINE void ForEach(const Visit& visit) noexcept {
        visit(v0, 0);
        if constexpr (width > 1) visit(v1, 1);
        if constexpr (width > 2) visit(v2, 2);
        if constexpr (width > 3) visit(v3, 3);
    }
};

/// Runs Piece<width> for all of [first, end), in fours and one rest.
template <template <std::size_t width> class Piece, class... Args>
CORVALE_INLINE void InPieces(std::size_t first, std::size_t end, Args&... args) noexcept {
    for (; end - first >= 4; first += 4) Piece<4>::Run(first, args...);
    switch (end - first) {
        case 3:
            return Piece<3>::Run(first, args...);
        case 2:
            return Piece<2>::Run(first, args...);
        case 1:
            return Piece<1>::Run(first, args...);
        default:
            return;
    }
}

}  // namespace corvale::internal
