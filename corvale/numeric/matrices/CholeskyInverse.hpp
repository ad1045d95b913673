// Internal to numeric/matrices/: not installed, may change in any commit.
//
// The inverse from the factors: W = U^-1, then W W' (W D^-1 W'). The rows of a tile begin at
// different steps; what is added before a row begins is an exact zero times a factor, which changes
// nothing as long as the factors are finite. If an element of U is not, the elements of W are
// computed one by one. If only W has such an element, W is kept and its product includes the terms
// with a zero, so that 0 times infinity gives NaN as in the plain sum.
#pragma once

#include <corvale/numeric/matrices/CholeskyPanels.hpp>

namespace corvale::internal {

template <class L, bool rootFree>
struct InvertFactor {
    using V = typename L::Vector;

    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        for (std::size_t column = 0; column < work->steps; column += kBlock) {
            const std::size_t end = std::min(column + kBlock, work->steps);
            AddColumnsBefore(*work, column, end);
            for (std::size_t lane = 0; lane < end; lane += L::kPanel)
                FinishPanel(*work, column, end, lane);
        }
    }

    CORVALE_INLINE static void AddColumnsBefore(const CholeskyWork& work, std::size_t column,
                                                std::size_t end) noexcept {
        for (std::size_t step = 0; step < column; step += kChunk)
            for (std::size_t lane = 0; lane < std::min(step + kChunk, column); lane += L::kPanel) {
                double* panel = PanelAt<L>(work.w, work.steps, lane, 0);
                const Sum sum{panel,
                              panel,
                              work.u,
                              work.steps,
                              column,
                              end,
                              std::max(step, lane),
                              std::min(step + kChunk, column),
                              lane >= step};
                CallOnPath<L, AddSteps<L>>(&sum);
            }
    }

    CORVALE_INLINE static void FinishPanel(const CholeskyWork& work, std::size_t column,
                                           std::size_t end, std::size_t lane) noexcept {
        double* panel = PanelAt<L>(work.w, work.steps, lane, 0);
        const std::size_t from = std::max(column, lane);
        for (std::size_t j = from; j < end; j += kTileRows) {
            Tile<L> sums;
            lane >= column ? sums.Clear() : sums.Load(panel + j * L::kPanel);
            sums.Add(panel + from * L::kPanel, PanelAt<L>(work.u, work.steps, j, from), j - from);
            Columns(work, j, lane, sums);
        }
    }

    /// Four columns of W: minus each sum times the diagonal element of W; on the diagonal that
    /// element, below it zeros.
    CORVALE_INLINE static void Columns(const CholeskyWork& work, std::size_t j, std::size_t lane,
                                       Tile<L>& sums) noexcept {
#pragma GCC unroll 4
        for (std::size_t r = 0; r < kTileRows; ++r) {
            const double diagonal = rootFree ? 1.0 : work.reciprocals[j + r];
            const double* factors = PanelAt<L>(work.u, work.steps, j, j + r);
#pragma GCC unroll 2
            for (std::size_t h = 0; h < 2; ++h) {
                V w = -(sums.row[r][h] * diagonal);
                if (j < lane + L::kPanel) w = OnDiagonal(w, j + r - lane, h, diagonal);
                At<V>(PanelAt<L>(work.w, work.steps, lane + h * L::kLanes, j + r)) = w;
                if constexpr (rootFree)
                    At<V>(PanelAt<L>(work.z, work.steps, lane + h * L::kLanes, j + r)) =
                        w * work.reciprocals[j + r];
#pragma GCC unroll 4
                for (std::size_t later = 0; later < kTileRows; ++later)
                    if (later > r) sums.row[later][h] += w * factors[later];
            }
        }
    }

    CORVALE_INLINE static V OnDiagonal(const V& w, std::size_t at, std::size_t half,
                                       double diagonal) noexcept {
        const V zero{}, lanes = LaneNumbers<L>(half);
        const V position = Splat<V>(static_cast<double>(at));
        const V above = lanes < position ? w : zero;
        return lanes == position ? Splat<V>(diagonal) : above;
    }
};

/// W element by element, with all its zeros, for factors that are not finite.
template <class L, bool rootFree>
struct InvertFactorPlainly {
    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        const std::size_t steps = work->steps;
        for (std::size_t i = 0; i < work->n; ++i)
            for (std::size_t j = i; j < work->n; ++j) {
                const double diagonal = rootFree ? 1.0 : work->reciprocals[j];
                double sum = 0.0;
                for (std::size_t k = i; k < j; ++k)
                    sum += *PanelAt<L>(work->w, steps, i, k) * *PanelAt<L>(work->u, steps, j, k);
                const double w = i == j ? diagonal : -(sum * diagonal);
                *PanelAt<L>(work->w, steps, i, j) = w;
                if (rootFree) *PanelAt<L>(work->z, steps, i, j) = w * work->reciprocals[j];
            }
    }
};

/// Writes the zeros of W that the panels leave out, and the same elements of W D^-1.
template <class L, bool rootFree>
struct FillZeros {
    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        for (std::size_t i = 0; i < work->steps; ++i)
            for (std::size_t k = 0; k < std::min(i, work->n); ++k) {
                *PanelAt<L>(work->w, work->steps, i, k) = 0.0;
                if (rootFree) *PanelAt<L>(work->z, work->steps, i, k) = 0.0 * work->reciprocals[k];
            }
    }
};

/// Whether every element of a triangle in panels is finite: of the upper one down to the diagonal,
/// or of the lower one from there to `end`.
template <class L>
struct AllFinite {
    using V = typename L::Vector;
    CORVALE_INLINE bool operator()(const double* panels, std::size_t steps, std::size_t end,
                                   bool isUpper) const noexcept {
        V sum{};
        for (std::size_t lane = 0; lane < end; lane += L::kPanel) {
            const std::size_t first = isUpper ? 0 : lane;
            const std::size_t past = isUpper ? std::min(end, lane + L::kPanel) : end;
            Add(PanelAt<L>(panels, steps, lane, first), past - first, sum);
        }
        return IsZero(sum);
    }
    // Adds each element times zero: a zero for a finite element, NaN for any other.
    CORVALE_INLINE static void Add(const double* from, std::size_t count, V& sum) noexcept {
        for (std::size_t k = 0; k < count; ++k, from += L::kPanel)
            sum += At<V>(from) * 0.0 + At<V>(from + L::kLanes) * 0.0;
    }
    CORVALE_INLINE static bool IsZero(const V& sum) noexcept {
        double total = 0.0;
        for (std::size_t i = 0; i < L::kLanes; ++i) total += sum[i];
        return total == 0.0;
    }
};

/// The product of W with its transpose, or of W D^-1, written over U. With `wholeRows` the terms
/// with a zero are added, too.
template <class L>
struct Product {
    CORVALE_INLINE void operator()(const CholeskyWork* work, bool wholeRows) const noexcept {
        for (std::size_t step = 0; step < work->n; step += kChunk)
            for (std::size_t row = 0; row < work->steps; row += kBlock)
                AddToRows(*work, step, row, wholeRows);
    }
    CORVALE_INLINE static void AddToRows(const CholeskyWork& work, std::size_t step,
                                         std::size_t row, bool wholeRows) noexcept {
        const std::size_t end = std::min(step + kChunk, work.n);
        for (std::size_t lane = row; lane < work.n; lane += L::kPanel) {
            if (!wholeRows && lane >= end) break;
            const Sum sum{PanelAt<L>(work.u, work.steps, lane, 0),
                          PanelAt<L>(work.w, work.steps, lane, 0),
                          work.z,
                          work.steps,
                          row,
                          std::min({row + kBlock, lane + L::kPanel, work.steps}),
                          wholeRows ? step : std::max(step, lane),
                          end,
                          wholeRows ? step == 0 : lane >= step};
            CallOnPath<L, AddSteps<L>>(&sum);
        }
    }
};

/// Writes the product to both triangles of the result.
template <class L>
struct WriteSymmetric {
    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        const std::size_t n = work->n;
        for (std::size_t lane = 0; lane < n; lane += L::kPanel) {
            const double* panel = PanelAt<L>(work->u, work->steps, lane, 0);
            const std::size_t wholeTiles = lane + L::kPanel <= n ? lane : 0;
            for (std::size_t i = 0; i < wholeTiles; i += kTileRows)
                WriteTile(panel + i * L::kPanel, i, lane, n, work->inverse);
            for (std::size_t i = wholeTiles; i < std::min(lane + L::kPanel, n); ++i)
                for (std::size_t j = std::max(i, lane); j < std::min(lane + L::kPanel, n); ++j)
                    work->inverse[i * n + j] = work->inverse[j * n + i] =
                        panel[i * L::kPanel + j - lane];
        }
    }
    CORVALE_INLINE static void WriteTile(const double* tile, std::size_t i, std::size_t lane,
                                         std::size_t n, double* inverse) noexcept {
        for (std::size_t c = 0; c < L::kPanel; c += L::kLanes)
            for (std::size_t r = 0; r < kTileRows; r += L::kLanes) {
                const double* from = tile + r * L::kPanel + c;
                double* lower = inverse + (i + r) * n + lane + c;
                double* upper = inverse + (lane + c) * n + i + r;
                Block<L> block;
                block.Load([=](std::size_t k) { return from + k * L::kPanel; });
                block.Store([=](std::size_t k) { return lower + k * n; });
                block.Turn();
                block.Store([=](std::size_t k) { return upper + k * n; });
            }
    }
};

/// The inverse from W.
template <class L>
struct MultiplyAndWrite {
    CORVALE_INLINE void operator()(const CholeskyWork* work, bool wholeRows) const noexcept {
        Product<L>{}(work, wholeRows);
        WriteSymmetric<L>{}(work);
    }
};

/// The whole inverse, from the factors.
template <class L, bool rootFree>
struct Invert {
    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        const auto areFinite = [=](const double* panels, std::size_t end, bool isUpper) {
            return CallOnPath<L, AllFinite<L>>(panels, work->steps, end, isUpper);
        };
        bool finite = areFinite(work->u, work->steps, true);
        if (finite) {
            InvertFactor<L, rootFree>{}(work);
            finite = areFinite(work->w, work->n, false) &&
                     (!rootFree || areFinite(work->z, work->n, false));
        } else {
            CallOnPath<L, InvertFactorPlainly<L, rootFree>>(work);
        }
        if (!finite) CallOnPath<L, FillZeros<L, rootFree>>(work);
        CallOnPath<L, MultiplyAndWrite<L>>(work, !finite);
    }
};

template <class L>
struct InvertWithRoots : Invert<L, false> {};
template <class L>
struct InvertWithoutRoots : Invert<L, true> {};

}  // namespace corvale::internal
