// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Gauss-Jordan elimination in lanes. The pivot rows differ from lane to lane, so they are moved: in
// step k each lane swaps its pivot row with row k, and `origin` remembers which row it was. Searched
// is among rows k and up; of equal magnitudes the row of the lowest origin is taken, as where no row
// moves.
//
// A lane without a pivot has stopped. It goes on with factors of zero and an empty pivot row, which
// leave every element as it is: x - 0 * 0 is x.
#pragma once

#include <corvale/numeric/matrices/LaneLines.hpp>

namespace corvale::internal {

struct LaneInversions {
    GenFunctions::MatrixSeries<const double> a;
    GenFunctions::MatrixSeries<double> result;
};

template <class L, bool searched>
struct InvertInLanes {
    using V = typename L::Vector;
    using Bits = typename L::Bits;

    struct Work {
        std::size_t n;
        std::size_t row, column;  // from one row, and column, to the next
        V square[kLaneOrder * kLaneOrder];
        V w[kLaneOrder];
        V origin[kLaneOrder];     // of the row that stands here, counted from 0
        Bits chosen[kLaneOrder];  // the lanes that swap this row in this step
        Bits stopped;
        bool hasMoved;

        CORVALE_INLINE V& At(std::size_t i, std::size_t j) noexcept {
            return square[i * row + j * column];
        }
    };

    CORVALE_INLINE void operator()(const LaneInversions* inversions) const noexcept {
        Work work;
        work.n = static_cast<std::size_t>(inversions->a.First().Rows());
        const auto count = static_cast<std::size_t>(inversions->a.Count());
        for (std::size_t first = 0; first < count; first += L::kLanes) {
            Load(*inversions, first, count, work);
            for (std::size_t k = 0; k < work.n; ++k) Step(work, k);
            Store(*inversions, first, count, work);
        }
    }

    CORVALE_INLINE static bool IsAny(const Bits& bits) noexcept {
        std::int64_t any = 0;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) any |= bits[lane];
        return any != 0;
    }
    /// `v` in the lanes of `mask`, zero elsewhere.
    CORVALE_INLINE static V Where(const Bits& mask, const V& v) noexcept {
        return (V)((Bits)v & mask);
    }

    CORVALE_INLINE static void Load(const LaneInversions& inversions, std::size_t first,
                                    std::size_t count, Work& work) noexcept {
        const auto& a = inversions.a.First();
        const auto starts =
            LaneStarts<L, const double>::Of(a.Data(), inversions.a.Distance(), first, count);
        const auto n = work.n;
        const bool isByRows = a.ColumnStride() == 1;
        work.row = isByRows ? n : 1;
        work.column = isByRows ? 1 : n;
        const std::ptrdiff_t step = isByRows ? a.ColumnStride() : a.RowStride();
        const std::ptrdiff_t next = isByRows ? a.RowStride() : a.ColumnStride();
        if (step == 1 && next == static_cast<std::ptrdiff_t>(n))
            LoadLine<L>(starts, 1, n * n, work.square, 1);
        else
            for (std::size_t i = 0; i < n; ++i)
                LoadLine<L>(starts.From(static_cast<std::ptrdiff_t>(i) * next), step, n,
                            work.square + i * n, 1);
        for (std::size_t i = 0; i < n; ++i) work.origin[i] = Splat<V>(static_cast<double>(i));
        work.stopped = Bits{};
        work.hasMoved = false;
    }

    /// Where each lane's pivot of step k stands.
    CORVALE_INLINE static V FindPivots(Work& work, std::size_t k) noexcept {
        V most{}, origin = Splat<V>(-1.0), place = Splat<V>(static_cast<double>(k));
        for (std::size_t i = k; i < work.n; ++i) {
            const V magnitude = (V)((Bits)work.At(i, k) & (Bits{} + INT64_MAX));
            const Bits isBetter = (magnitude > most) |
                                  ((magnitude == most) & (work.origin[i] < origin));
            most = isBetter ? magnitude : most;
            origin = isBetter ? work.origin[i] : origin;
            place = isBetter ? Splat<V>(static_cast<double>(i)) : place;
        }
        work.stopped |= most == 0.0;
        return work.stopped ? Splat<V>(static_cast<double>(k)) : place;
    }

    /// Notes which rows are to be swapped with row k; false where none is.
    CORVALE_INLINE static bool ChooseRows(Work& work, std::size_t k) noexcept {
        if constexpr (!searched) {
            work.stopped |= work.At(k, k) == 0.0;
            return false;
        }
        const V place = FindPivots(work, k);
        if (!IsAny(place != static_cast<double>(k))) return false;
        const V own = work.origin[k];
        for (std::size_t i = k + 1; i < work.n; ++i) {
            const Bits isChosen = place == static_cast<double>(i);
            work.chosen[i] = isChosen;
            work.origin[k] = isChosen ? work.origin[i] : work.origin[k];
            work.origin[i] = isChosen ? own : work.origin[i];
        }
        work.hasMoved = true;
        return true;
    }

    /// Swaps the chosen rows within column j.
    CORVALE_INLINE static void Swap(Work& work, std::size_t k, std::size_t j) noexcept {
        const V own = work.At(k, j);
        V pivot = own;
        for (std::size_t i = k + 1; i < work.n; ++i) {
            V& element = work.At(i, j);
            pivot = work.chosen[i] ? element : pivot;
            element = work.chosen[i] ? own : element;
        }
        work.At(k, j) = pivot;
    }

    CORVALE_INLINE static void Step(Work& work, std::size_t k) noexcept {
        const std::size_t n = work.n;
        const bool swaps = ChooseRows(work, k);
        if (swaps)
            for (std::size_t j = 0; j < n; ++j) Swap(work, k, j);
        const Bits stopped = work.stopped;
        const V q = 1.0 / (stopped ? Splat<V>(1.0) : work.At(k, k));
        for (std::size_t i = 0; i < n; ++i) {
            V& element = work.At(i, k);
            const V w = i == k ? q : element * q;
            work.w[i] = Where(~stopped, w);
            element = stopped ? element : w;
        }
        for (std::size_t j = 0; j < n; ++j)
            if (j != k) Eliminate(work, k, j);
    }

    CORVALE_INLINE static void Eliminate(Work& work, std::size_t k, std::size_t j) noexcept {
        V& pivot = work.At(k, j);
        const V t = Where(~work.stopped, pivot);
        pivot = Where(work.stopped, pivot);
        for (std::size_t i = 0; i < work.n; ++i) work.At(i, j) -= work.w[i] * t;
    }

    CORVALE_INLINE static void Store(const LaneInversions& inversions, std::size_t first,
                                     std::size_t count, Work& work) noexcept {
        const auto& result = inversions.result.First();
        const auto starts = LaneStarts<L, double>::Of(
            result.Data(), inversions.result.Distance(), first, count);
        if (!searched && IsAny(work.stopped))
            for (std::size_t e = 0; e < work.n * work.n; ++e)
                work.square[e] = Where(~work.stopped, work.square[e]);
        if (work.hasMoved) return StoreMoved(result, starts, work);
        const std::size_t n = work.n;
        const auto order = static_cast<std::ptrdiff_t>(n);
        const bool isByRows = result.ColumnStride() == 1;
        const std::ptrdiff_t step = isByRows ? result.ColumnStride() : result.RowStride();
        const std::ptrdiff_t next = isByRows ? result.RowStride() : result.ColumnStride();
        const std::size_t from = isByRows ? work.column : work.row;
        const std::size_t fromNext = isByRows ? work.row : work.column;
        if (step == 1 && next == order && from == 1)
            StoreLine<L>(work.square, 1, n * n, starts, 1);
        else
            for (std::size_t i = 0; i < n; ++i)
                StoreLine<L>(work.square + i * fromNext, from, n,
                             starts.From(static_cast<std::ptrdiff_t>(i) * next), step);
    }

    /// Element (s, j) of the inverse is element (s, i) of what was reached, row j having served as
    /// pivot row of step i. A lane that has stopped gets its rows back.
    CORVALE_INLINE static void StoreMoved(const GenFunctions::MatrixView<double>& result,
                                          const LaneStarts<L, double>& starts,
                                          Work& work) noexcept {
        const std::size_t n = work.n;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) {
            const double* const from = reinterpret_cast<const double*>(work.square) + lane;
            const bool hasStopped = work.stopped[lane] != 0;
            const std::ptrdiff_t moved = hasStopped ? result.RowStride() : result.ColumnStride();
            const std::ptrdiff_t kept = hasStopped ? result.ColumnStride() : result.RowStride();
            const std::size_t fromMoved = (hasStopped ? work.row : work.column) * L::kLanes;
            const std::size_t fromKept = (hasStopped ? work.column : work.row) * L::kLanes;
            for (std::size_t i = 0; i < n; ++i) {
                double* const to =
                    starts.at[lane] + static_cast<std::ptrdiff_t>(work.origin[i][lane]) * moved;
                for (std::size_t s = 0; s < n; ++s)
                    to[static_cast<std::ptrdiff_t>(s) * kept] = from[i * fromMoved + s * fromKept];
            }
        }
    }
};

template <class L>
struct InvertLanesSearched : InvertInLanes<L, true> {};
template <class L>
struct InvertLanesAsTheyCome : InvertInLanes<L, false> {};

}  // namespace corvale::internal
