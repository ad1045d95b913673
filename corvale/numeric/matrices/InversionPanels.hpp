// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Gauss-Jordan elimination for large orders, with delayed updates. The matrix lies in panels of rows
// (VectorTiles.hpp; the columns are the steps of a panel). A group of steps is first made on its own
// columns alone; then every tile of the other columns is loaded once, takes all steps of the group in
// their order, and is stored.
//
// A step subtracts w(s) t(s), t(s) being what the column holds in the pivot row p(s) when step s
// begins. So the t of the whole group come first, by forward substitution in the pivot rows:
//
//     t(s) = R(p(s)) - w(0) t(0) - ... - w(s-1) t(s-1), with the w of row p(s)
//
// Step s leaves 0 in row p(s) before its own product. In the tiles the row therefore starts from 0,
// with a w of 0 for the steps before s, which change nothing as long as their t are finite. Where a t
// is not, the work is given up and done again step by step.
#pragma once

#include <corvale/numeric/matrices/InversionSteps.hpp>

#include <algorithm>

namespace corvale::internal {

// How many steps are made on their own columns at once, and how many are then applied to all other
// columns together.
constexpr std::size_t kInnerSteps = 8;
constexpr std::size_t kOuterSteps = 32;
// How many columns a group of steps is applied to at a time: their t stay in the second-level
// cache.
constexpr std::size_t kColumns = 512;

struct InversionWork {
    double* matrix;     // row panels of `order` steps
    double* w;          // row panels of kOuterSteps steps: the w of each step of the group
    double* pivotW;     // panels of kOuterSteps steps: the w of earlier steps in the pivot rows
    double* t;          // panels of kOuterSteps steps: the t of up to kColumns columns
    double* columns;    // kInnerSteps columns of whole panels, then one w
    std::size_t* rows;  // the pivot rows of the group
    PivotRecord record;
};

enum class Outcome { Done, Stopped, NotFinite };

template <class L>
struct InvertByPanels {
    using V = typename L::Vector;

    CORVALE_INLINE Outcome operator()(const InversionWork* work) const noexcept {
        const std::size_t n = work->record.order;
        for (std::size_t k = 0; k < n; k += kOuterSteps) {
            const std::size_t end = std::min(k + kOuterSteps, n);
            std::size_t made = 0;
            std::fill(work->pivotW, work->pivotW + kOuterSteps * kOuterSteps, 0.0);
            if (!ReduceGroup(*work, k, end, made)) return Outcome::NotFinite;
            if (!CallOnPath<L, TakeStepsToColumns>(work, std::size_t{0}, made, std::size_t{0}, k) ||
                !CallOnPath<L, TakeStepsToColumns>(work, std::size_t{0}, made, end, n))
                return Outcome::NotFinite;
            if (k + made < end) return Outcome::Stopped;
        }
        return Outcome::Done;
    }

    /// Makes the steps from k to `end` on the columns k to `end`. `made` is how many there were
    /// pivots for. False where something is not finite.
    CORVALE_INLINE static bool ReduceGroup(const InversionWork& work, std::size_t k,
                                           std::size_t end, std::size_t& made) noexcept {
        for (std::size_t first = k; first < end; first += kInnerSteps) {
            const std::size_t innerEnd = std::min(first + kInnerSteps, end);
            const std::size_t before = made;
            made += CallOnPath<L, ReduceColumns>(&work, k, first, innerEnd);
            if (!CallOnPath<L, TakeStepsToColumns>(&work, before, made, k, first) ||
                !CallOnPath<L, TakeStepsToColumns>(&work, before, made, innerEnd, end))
                return false;
            if (k + made < innerEnd) break;
        }
        return true;
    }

    /// Makes the steps `first` to `end` of the group that began with step k on their own columns.
    /// Returns how many there were pivots for.
    struct ReduceColumns {
        CORVALE_INLINE std::size_t operator()(const InversionWork* work, std::size_t k,
                                              std::size_t first, std::size_t end) const noexcept {
            const std::size_t length = Length(*work);
            double* w = work->columns + kInnerSteps * length;
            CopyColumns<true>(*work, first, end);
            std::size_t step = first;
            for (; step < end; ++step) {
                const double* column = work->columns + (step - first) * length;
                const std::size_t row = TakePivot<L>(column, step, &work->record);
                if (row == kNoPivot) break;
                Eliminate<L>(work->columns, length, end - first, step - first, row, w);
                KeepStep(*work, step - k, row, w);
            }
            CopyColumns<false>(*work, first, end);
            return step - first;
        }
    };

    CORVALE_INLINE static std::size_t Length(const InversionWork& work) noexcept {
        return (work.record.order + L::kPanel - 1) / L::kPanel * L::kPanel;
    }

    template <bool out>
    CORVALE_INLINE static void CopyColumns(const InversionWork& work, std::size_t first,
                                           std::size_t end) noexcept {
        const std::size_t length = Length(work), order = work.record.order;
        for (std::size_t i = 0; i < length; i += L::kPanel)
            for (std::size_t j = first; j < end; ++j) {
                double* panel = work.matrix + i * order + j * L::kPanel;
                double* column = work.columns + (j - first) * length + i;
                for (std::size_t c = 0; c < L::kPanel; c += L::kLanes)
                    out ? At<V>(column + c) = At<V>(panel + c)
                        : At<V>(panel + c) = At<V>(column + c);
            }
    }

    /// Puts the w of step s of the group, made with pivot row `row`, where the tiles read them.
    CORVALE_INLINE static void KeepStep(const InversionWork& work, std::size_t s, std::size_t row,
                                        const double* w) noexcept {
        work.rows[s] = row;
        double* rowW = work.w + row / L::kPanel * L::kPanel * kOuterSteps + row % L::kPanel;
        double* pivotW = work.pivotW + s / L::kPanel * L::kPanel * kOuterSteps + s % L::kPanel;
        for (std::size_t before = 0; before < s; ++before) {
            pivotW[before * L::kPanel] = rowW[before * L::kPanel];
            rowW[before * L::kPanel] = 0.0;
        }
        for (std::size_t i = 0; i < Length(work); i += L::kPanel) {
            double* to = work.w + i * kOuterSteps + s * L::kPanel;
            At<V>(to) = At<V>(w + i), At<V>(to + L::kLanes) = At<V>(w + i + L::kLanes);
        }
    }

    /// Applies the steps `first` to `end` of the group to the columns from `column` to `columnEnd`.
    /// False where a t is not finite.
    struct TakeStepsToColumns {
        CORVALE_INLINE bool operator()(const InversionWork* work, std::size_t first,
                                       std::size_t end, std::size_t column,
                                       std::size_t columnEnd) const noexcept {
            for (std::size_t from = column; from < columnEnd; from += kColumns) {
                const std::size_t to = std::min(from + kColumns, columnEnd);
                for (std::size_t j = from; j < to; j += L::kPanel)
                    if (!FindT(*work, first, end, j, std::min(j + L::kPanel, to),
                               work->t + (j - from) * kOuterSteps))
                        return false;
                for (std::size_t i = 0; i < Length(*work); i += L::kPanel)
                    UpdateRows(*work, first, end, from, to, i);
            }
            return true;
        }
    };

    /// The t of up to a panel of columns, taken out of the matrix. False where one is not finite.
    CORVALE_INLINE static bool FindT(const InversionWork& work, std::size_t first, std::size_t end,
                                     std::size_t column, std::size_t columnEnd,
                                     double* t) noexcept {
        for (std::size_t s = first; s < end; ++s) {
            const std::size_t row = work.rows[s];
            double* element = work.matrix + row / L::kPanel * L::kPanel * work.record.order +
                              column * L::kPanel + row % L::kPanel;
            for (std::size_t c = 0; c < L::kPanel; ++c) {
                const bool inside = column + c < columnEnd;
                t[s * L::kPanel + c] = inside ? element[c * L::kPanel] : 0.0;
                if (inside) element[c * L::kPanel] = 0.0;
            }
        }
        for (std::size_t s = end; s % kTileRows != 0; ++s)
            for (std::size_t c = 0; c < L::kPanel; ++c) t[s * L::kPanel + c] = 0.0;
        return SolveT(work, first, end, t);
    }

    CORVALE_INLINE static bool SolveT(const InversionWork& work, std::size_t first, std::size_t end,
                                      double* t) noexcept {
        V check{};
        for (std::size_t s = first; s < end; s += kTileRows) {
            const double* pivotW =
                work.pivotW + s / L::kPanel * L::kPanel * kOuterSteps + s % L::kPanel;
            Tile<L> tile;
            tile.Load(t + s * L::kPanel);
            tile.Subtract(t + first * L::kPanel, pivotW + first * L::kPanel, s - first);
#pragma GCC unroll 4
            for (std::size_t r = 0; r < kTileRows; ++r) {
#pragma GCC unroll 2
                for (std::size_t h = 0; h < 2; ++h) {
                    check += tile.row[r][h] * 0.0;
#pragma GCC unroll 4
                    for (std::size_t later = 0; later < kTileRows; ++later)
                        if (later > r)
                            tile.row[later][h] -=
                                tile.row[r][h] * pivotW[(s + r) * L::kPanel + later];
                }
            }
            tile.Store(t + s * L::kPanel);
        }
        double total = 0.0;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) total += check[lane];
        return total == 0.0;
    }

    /// All steps on one panel of rows, tile by tile.
    CORVALE_INLINE static void UpdateRows(const InversionWork& work, std::size_t first,
                                          std::size_t end, std::size_t column,
                                          std::size_t columnEnd, std::size_t row) noexcept {
        double* panel = work.matrix + row * work.record.order;
        const double* w = work.w + row * kOuterSteps + first * L::kPanel;
        std::size_t j = column;
        for (; j + kTileRows <= columnEnd; j += kTileRows) {
            Tile<L> tile;
            tile.Load(panel + j * L::kPanel);
            tile.Subtract(w, TAt(work, j - column, first), end - first);
            tile.Store(panel + j * L::kPanel);
        }
        for (; j < columnEnd; ++j)
            UpdateColumn(panel + j * L::kPanel, w, TAt(work, j - column, first), end - first);
    }

    CORVALE_INLINE static const double* TAt(const InversionWork& work, std::size_t column,
                                            std::size_t step) noexcept {
        return work.t + column / L::kPanel * L::kPanel * kOuterSteps + step * L::kPanel +
               column % L::kPanel;
    }

    CORVALE_INLINE static void UpdateColumn(double* column, const double* w, const double* t,
                                            std::size_t steps) noexcept {
        V r0 = At<V>(column), r1 = At<V>(column + L::kLanes);
        for (; steps > 0; --steps, w += L::kPanel, t += L::kPanel)
            r0 -= At<V>(w) * *t, r1 -= At<V>(w + L::kLanes) * *t;
        At<V>(column) = r0, At<V>(column + L::kLanes) = r1;
    }
};

}  // namespace corvale::internal
