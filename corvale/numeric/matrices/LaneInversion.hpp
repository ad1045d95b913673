// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Gauss-Jordan elimination in lanes. The pivot rows differ from lane to lane, so they are moved: in
// step k each lane takes its pivot row out, moves those before it, from row k on, down by one and puts
// it into row k. `origin` remembers which row is which. The rows that are left so keep their order, in
// which the first of equal magnitudes is found.
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

/// `fixed` is the order where the compiler is to know it, or 0.
template <class L, bool searched, std::size_t fixed>
struct InvertInLanes {
    using V = typename L::Vector;
    using Bits = typename L::Bits;
    static constexpr std::size_t kMost = fixed > 0 ? fixed : kLaneOrder, kSquare = kMost * kMost;

    struct Work {
        V square[kSquare];
        V w[kMost], numbers[kMost];
        V origin[kMost];  // of the row that stands here, counted from 0
        V place;          // where the pivot of this step is found
        Bits stopped;
        std::ptrdiff_t placeOf[L::kLanes];  // and as offsets of doubles
        std::size_t any;
        std::size_t row, column;  // from one row, and column, to the next
        bool hasMoved;

        CORVALE_INLINE std::size_t N() const noexcept { return fixed > 0 ? fixed : any; }
        CORVALE_INLINE V& At(std::size_t i, std::size_t j) noexcept {
            return square[i * row + j * column];
        }
    };

    CORVALE_INLINE void operator()(const LaneInversions* inversions) const noexcept {
        Work work;
        work.any = static_cast<std::size_t>(inversions->a.First().Rows());
        for (std::size_t i = 0; i < work.N(); ++i)
            work.numbers[i] = Splat<V>(static_cast<double>(i));
        const auto count = static_cast<std::size_t>(inversions->a.Count());
        for (std::size_t first = 0; first < count; first += L::kLanes) {
            Load(*inversions, first, count, work);
            for (std::size_t k = 0; k < work.N(); ++k) Step(work, k);
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
        const auto n = work.N();
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
        V most{}, place = work.numbers[k];
        for (std::size_t i = k; i < work.N(); ++i) {
            const V magnitude = (V)((Bits)work.At(i, k) & (Bits{} + INT64_MAX));
            place = magnitude > most ? work.numbers[i] : place;
            most = magnitude > most ? magnitude : most;
        }
        work.stopped |= most == 0.0;
        return work.stopped ? work.numbers[k] : place;
    }

    /// Finds the pivot rows; false where each stands in row k.
    CORVALE_INLINE static bool ChooseRows(Work& work, std::size_t k) noexcept {
        if constexpr (!searched) {
            work.stopped |= work.At(k, k) == 0.0;
            return false;
        }
        const V place = work.place = FindPivots(work, k);
        if (!IsAny(place != work.numbers[k])) return false;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane)
            work.placeOf[lane] = static_cast<std::ptrdiff_t>(place[lane]) *
                                     static_cast<std::ptrdiff_t>(work.row * L::kLanes) +
                                 static_cast<std::ptrdiff_t>(lane);
        V carried = work.origin[k];
        for (std::size_t i = k + 1; i < work.N(); ++i) {
            work.origin[k] = place == work.numbers[i] ? work.origin[i] : work.origin[k];
            work.origin[i] = Moved<true>(place, work.numbers[i], carried, work.origin[i]);
        }
        work.hasMoved = true;
        return true;
    }

    /// What comes to stand in a row: up to the lane's pivot row, at `place`, what stood in the row
    /// before it.
    template <bool moves>
    CORVALE_INLINE static V Moved(const V& place, const V& number, V& carried,
                                  const V& old) noexcept {
        if constexpr (!moves) return old;
        const V before = carried;
        carried = old;
        return place >= number ? before : carried;
    }

    /// What each lane holds in its pivot row of `column`.
    CORVALE_INLINE static V Chosen(const Work& work, const V* column) noexcept {
        const auto* const from = reinterpret_cast<const double*>(column);
        if constexpr (L::kLanes == 4)
            return V{from[work.placeOf[0]], from[work.placeOf[1]], from[work.placeOf[2]],
                     from[work.placeOf[3]]};
        else
            return V{from[work.placeOf[0]], from[work.placeOf[1]]};
    }

    CORVALE_INLINE static void Step(Work& work, std::size_t k) noexcept {
        ChooseRows(work, k) ? StepOn<true>(work, k) : StepOn<false>(work, k);
    }

    /// `moves`: the rows move while they are read.
    template <bool moves>
    CORVALE_INLINE static void StepOn(Work& work, std::size_t k) noexcept {
        const std::size_t n = work.N();
        V carried = work.At(k, k);
        const V pivot = moves ? Chosen(work, &work.At(0, k)) : carried, place = work.place;
        const Bits stopped = work.stopped;
        const V q = 1.0 / (stopped ? Splat<V>(1.0) : pivot);
        for (std::size_t i = 0; i < n; ++i) {
            V& element = work.At(i, k);
            const V old = i > k ? Moved<moves>(place, work.numbers[i], carried, element) : element;
            const V w = i == k ? q : old * q;
            work.w[i] = Where(~stopped, w);
            element = stopped ? old : w;
        }
        for (std::size_t j = 0; j < n; ++j)
            if (j != k) Eliminate<moves>(work, k, j);
    }

    template <bool moves>
    CORVALE_INLINE static void Eliminate(Work& work, std::size_t k, std::size_t j) noexcept {
        V* element = &work.At(0, j);
        const std::size_t row = work.row, n = work.N();
        V carried = element[k * row];
        const V pivot = moves ? Chosen(work, element) : carried, place = work.place;
        const V t = Where(~work.stopped, pivot);
        for (std::size_t i = 0; i < k; ++i, element += row) *element -= work.w[i] * t;
        *element = Where(work.stopped, pivot) - work.w[k] * t;
        for (std::size_t i = k + 1; i < n; ++i) {
            element += row;
            *element = Moved<moves>(place, work.numbers[i], carried, *element) - work.w[i] * t;
        }
    }

    CORVALE_INLINE static void Store(const LaneInversions& inversions, std::size_t first,
                                     std::size_t count, Work& work) noexcept {
        const auto& result = inversions.result.First();
        const auto starts =
            LaneStarts<L, double>::Of(result.Data(), inversions.result.Distance(), first, count);
        if (!searched && IsAny(work.stopped))
            for (std::size_t e = 0; e < work.N() * work.N(); ++e)
                work.square[e] = Where(~work.stopped, work.square[e]);
        if (work.hasMoved) return StoreMoved(result, starts, work);
        const std::size_t n = work.N();
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

    /// Column i of what was reached is column `origin` of the inverse; the rows are in place. A lane
    /// that has stopped gets its rows back instead.
    CORVALE_INLINE static void StoreMoved(const GenFunctions::MatrixView<double>& result,
                                          const LaneStarts<L, double>& starts,
                                          const Work& work) noexcept {
        const std::size_t n = work.N();
        if (result.RowStride() == 1 && !IsAny(work.stopped))
            for (std::size_t i = 0; i < n; ++i) {
                LaneStarts<L, double> columns = starts;
                for (std::size_t lane = 0; lane < L::kLanes; ++lane)
                    columns.at[lane] += Origin(work, i, lane) * result.ColumnStride();
                StoreLine<L>(work.square + i * work.column, work.row, n, columns, 1);
            }
        else
            for (std::size_t lane = 0; lane < L::kLanes; ++lane)
                StoreLane(result, starts.at[lane], lane, work);
    }
    CORVALE_INLINE static void StoreLane(const GenFunctions::MatrixView<double>& result, double* to,
                                         std::size_t lane, const Work& work) noexcept {
        const double* const from = reinterpret_cast<const double*>(work.square) + lane;
        const bool hasStopped = work.stopped[lane] != 0;
        const std::ptrdiff_t moved = hasStopped ? result.RowStride() : result.ColumnStride();
        const std::ptrdiff_t kept = hasStopped ? result.ColumnStride() : result.RowStride();
        const std::size_t fromMoved = (hasStopped ? work.row : work.column) * L::kLanes;
        const std::size_t fromKept = (hasStopped ? work.column : work.row) * L::kLanes;
        for (std::size_t i = 0; i < work.N(); ++i) {
            double* const line = to + Origin(work, i, lane) * moved;
            for (std::size_t s = 0; s < work.N(); ++s)
                line[static_cast<std::ptrdiff_t>(s) * kept] = from[i * fromMoved + s * fromKept];
        }
    }
    CORVALE_INLINE static std::ptrdiff_t Origin(const Work& work, std::size_t i,
                                                std::size_t lane) noexcept {
        return static_cast<std::ptrdiff_t>(work.origin[i][lane]);
    }
};

template <class L, bool searched>
CORVALE_INLINE void InvertLanes(const LaneInversions* inversions) noexcept {
    const std::int32_t n = inversions->a.First().Rows();
    if constexpr (std::is_same_v<L, MostLanes>) {
        if (n == 3) return CallOnPath<L, InvertInLanes<L, searched, 3>>(inversions);
        if (n == 6) return CallOnPath<L, InvertInLanes<L, searched, 6>>(inversions);
    }
    CallOnPath<L, InvertInLanes<L, searched, 0>>(inversions);
}
template <class L>
struct InvertLanesSearched {
    CORVALE_INLINE void operator()(const LaneInversions* inversions) const noexcept {
        InvertLanes<L, true>(inversions);
    }
};
template <class L>
struct InvertLanesAsTheyCome {
    CORVALE_INLINE void operator()(const LaneInversions* inversions) const noexcept {
        InvertLanes<L, false>(inversions);
    }
};

}  // namespace corvale::internal
