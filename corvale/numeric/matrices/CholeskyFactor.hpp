// Internal to numeric/matrices/: not installed, may change in any commit.
//
// The factors: A = U'U, or A = U'DU without square roots. Rows of U are computed in blocks of
// kBlock: first the terms of all rows above the block are added to its sums, then, panel by panel,
// those of the block itself.
#pragma once

#include <corvale/numeric/matrices/CholeskyPanels.hpp>

#include <cmath>

namespace corvale::internal {

template <class L, bool rootFree>
struct Factor {
    using V = typename L::Vector;

    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        for (std::size_t row = 0; row < work->steps; row += kBlock) {
            const std::size_t end = std::min(row + kBlock, work->steps);
            AddRowsAbove(*work, row, end);
            for (std::size_t lane = row; lane < work->steps; lane += L::kPanel)
                FinishPanel(*work, row, end, lane);
        }
    }

    CORVALE_INLINE static void AddRowsAbove(const CholeskyWork& work, std::size_t row,
                                            std::size_t end) noexcept {
        for (std::size_t step = 0; step < row; step += kChunk)
            for (std::size_t lane = row; lane < work.steps; lane += L::kPanel) {
                double* panel = PanelAt<L>(work.u, work.steps, lane, 0);
                const Sum sum{panel,    panel,
                              work.v,   work.steps,
                              row,      std::min(end, lane + L::kPanel),
                              step,     std::min(step + kChunk, row),
                              step == 0};
                CallOnPath<L, AddSteps<L>>(&sum);
            }
    }

    CORVALE_INLINE static void FinishPanel(const CholeskyWork& work, std::size_t row,
                                           std::size_t end, std::size_t lane) noexcept {
        double* panel = PanelAt<L>(work.u, work.steps, lane, 0);
        end = std::min(end, lane + L::kPanel);
        for (std::size_t k = row; k < end; k += kTileRows) {
            Tile<L> sums;
            row == 0 ? sums.Clear() : sums.Load(panel + k * L::kPanel);
            sums.Add(panel + row * L::kPanel, PanelAt<L>(work.v, work.steps, k, row), k - row);
            alignas(64) double given[kTileRows * L::kPanel];
            GivenTile(work, k, lane, given);
            if (k >= lane) {
                DiagonalRows(work, k, lane, sums, given);
            } else {
                Rows(work, k, lane, sums, given);
            }
        }
    }

    /// Rows k to k + 3 of A in the columns from `lane` on: A above and on the diagonal, zeros below
    /// it, and ones on the diagonal beyond the order.
    CORVALE_INLINE static void GivenTile(const CholeskyWork& work, std::size_t k, std::size_t lane,
                                         double* given) noexcept {
        const std::size_t n = work.n;
        if (k + kTileRows <= lane && lane + L::kPanel <= n) {
            for (std::size_t c = 0; c < L::kPanel; c += L::kLanes)
                for (std::size_t r = 0; r < kTileRows; r += L::kLanes) {
                    const double* from = work.a + (lane + c) * n + k + r;
                    double* to = given + r * L::kPanel + c;
                    Block<L> block;
                    block.Load([=](std::size_t i) { return from + i * n; });
                    block.Turn();
                    block.Store([=](std::size_t i) { return to + i * L::kPanel; });
                }
            return;
        }
        for (std::size_t r = 0; r < kTileRows; ++r)
            for (std::size_t c = 0; c < L::kPanel; ++c) {
                const std::size_t i = k + r, j = lane + c;
                const bool inside = i <= j && j < n;
                given[r * L::kPanel + c] = inside ? work.a[j * n + i] : (i == j ? 1.0 : 0.0);
            }
    }

    /// Four rows of U in a tile right of the diagonal.
    CORVALE_INLINE static void Rows(const CholeskyWork& work, std::size_t k, std::size_t lane,
                                    Tile<L>& sums, const double* given) noexcept {
#pragma GCC unroll 4
        for (std::size_t r = 0; r < kTileRows; ++r) {
            const double pivot = rootFree ? work.reciprocals[k + r] : work.pivots[k + r];
#pragma GCC unroll 2
            for (std::size_t h = 0; h < 2; ++h) {
                const V rest = At<V>(given + r * L::kPanel + h * L::kLanes) - sums.row[r][h];
                const V u = rootFree ? rest * pivot : rest / pivot;
                Keep(work, k + r, lane + h * L::kLanes, u);
                AddToRowsBelow(work, k, r, h, u, sums);
            }
        }
    }

    /// Four rows of U with the diagonal in them: zeros before it.
    CORVALE_INLINE static void DiagonalRows(const CholeskyWork& work, std::size_t k,
                                            std::size_t lane, Tile<L>& sums,
                                            const double* given) noexcept {
#pragma GCC unroll 4
        for (std::size_t r = 0; r < kTileRows; ++r) {
            const std::size_t at = k + r - lane;
            alignas(64) double row[L::kPanel];
            At<V>(row) = sums.row[r][0], At<V>(row + L::kLanes) = sums.row[r][1];
            const double pivot = NextPivot(work, k + r, given[r * L::kPanel + at], row[at]);
            const V position = Splat<V>(static_cast<double>(at));
            V kept[2];
#pragma GCC unroll 2
            for (std::size_t h = 0; h < 2; ++h) {
                const V zero{}, lanes = LaneNumbers<L>(h);
                V rest = At<V>(given + r * L::kPanel + h * L::kLanes) - sums.row[r][h];
                rest = lanes > position ? rest : zero;
                V u = rootFree ? rest * work.reciprocals[k + r] : rest / pivot;
                u = lanes == position ? Splat<V>(rootFree ? 1.0 : pivot) : u;
                Keep(work, k + r, lane + h * L::kLanes, u);
                kept[h] = u;
            }
            // After both halves are stored, since the rows below take factors from either.
#pragma GCC unroll 2
            for (std::size_t h = 0; h < 2; ++h) AddToRowsBelow(work, k, r, h, kept[h], sums);
        }
    }

    /// Notes pivot k and its reciprocal.
    CORVALE_INLINE static double NextPivot(const CholeskyWork& work, std::size_t k, double given,
                                           double sum) noexcept {
        const double rest = given - (rootFree ? work.squares[k] : sum);
        const double pivot = rootFree ? rest : std::sqrt(rest);
        work.pivots[k] = pivot;
        work.reciprocals[k] = 1.0 / pivot;
        return pivot;
    }

    /// Stores one vector of row k of U, and what follows from it.
    CORVALE_INLINE static void Keep(const CholeskyWork& work, std::size_t k, std::size_t lane,
                                    const V& u) noexcept {
        At<V>(PanelAt<L>(work.u, work.steps, lane, k)) = u;
        if constexpr (rootFree) {
            At<V>(PanelAt<L>(work.v, work.steps, lane, k)) = work.pivots[k] * u;
            At<V>(work.squares + lane) += work.pivots[k] * (u * u);
        }
    }

    /// Adds the term of row k + r to the sums of the tile's later rows.
    CORVALE_INLINE static void AddToRowsBelow(const CholeskyWork& work, std::size_t k,
                                              std::size_t r, std::size_t h, const V& u,
                                              Tile<L>& sums) noexcept {
        const double* factors = PanelAt<L>(work.v, work.steps, k, k + r);
#pragma GCC unroll 4
        for (std::size_t below = 0; below < kTileRows; ++below)
            if (below > r) sums.row[below][h] += u * factors[below];
    }
};

template <class L>
struct FactorWithRoots : Factor<L, false> {};
template <class L>
struct FactorWithoutRoots : Factor<L, true> {};

}  // namespace corvale::internal
