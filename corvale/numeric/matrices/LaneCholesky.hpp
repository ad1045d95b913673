// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Both solvers in lanes. One square of vectors holds everything: U above the diagonal (A at first, the
// inverse at last), W = U^-1 turned below it. Its diagonal holds that of A, then that of the inverse;
// the diagonals of U and W are vectors of their own.
//
// No element is tested. Where the single procedures add zeros times what need not be finite, so do
// the sums here, in the same place: those are the running sums `zeros` in Multiply.
#pragma once

#include <corvale/numeric/matrices/LaneLines.hpp>

#include <cmath>
#include <utility>

namespace corvale::internal {

struct LaneSystems {
    GenFunctions::MatrixSeries<const double> a;
    GenFunctions::VectorSeries<const double> b;
    GenFunctions::MatrixSeries<double> inverse;
    GenFunctions::VectorSeries<double> x;
};

/// `fixed` is the order where the compiler is to know it, or 0.
template <class L, bool rootFree, std::size_t fixed>
struct SolveInLanes {
    using V = typename L::Vector;
    static constexpr std::size_t kMost = fixed > 0 ? fixed : kLaneOrder, kSquare = kMost * kMost;

    struct Work {
        V square[kSquare];
        V pivots[kMost], reciprocals[kMost], y[kMost];
        std::size_t any;

        CORVALE_INLINE std::size_t N() const noexcept { return fixed > 0 ? fixed : any; }

        /// Row i of U and of the inverse, from the diagonal on.
        CORVALE_INLINE V* Row(std::size_t i) noexcept { return square + i * N(); }
        /// Element (i,k) of W, above its diagonal.
        CORVALE_INLINE V& W(std::size_t i, std::size_t k) noexcept { return square[k * N() + i]; }
        /// What row k of U is made with: it lies where column k of W comes to lie.
        CORVALE_INLINE V* Factors(std::size_t k) noexcept { return Row(k); }
        CORVALE_INLINE V DiagonalOfW(std::size_t k) const noexcept {
            return rootFree ? Splat<V>(1.0) : reciprocals[k];
        }
    };

    CORVALE_INLINE void operator()(const LaneSystems* systems) const noexcept {
        Work work;
        work.any = static_cast<std::size_t>(systems->a.First().Rows());
        const auto count = static_cast<std::size_t>(systems->a.Count());
        for (std::size_t first = 0; first < count; first += L::kLanes) {
            Load(*systems, first, count, work);
            for (std::size_t k = 0; k < work.N(); ++k) {
                FactorRow(work, k);
                SolveDown(work, k);
                InverseColumn(work, k);
            }
            SolveUp(work);
            Multiply(work);
            Store(*systems, first, count, work);
        }
    }

    CORVALE_INLINE static V Root(V v) noexcept {
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) v[lane] = std::sqrt(v[lane]);
        return v;
    }

    CORVALE_INLINE static void Load(const LaneSystems& systems, std::size_t first,
                                    std::size_t count, Work& work) noexcept {
        const auto& a = systems.a.First();
        const auto starts =
            LaneStarts<L, const double>::Of(a.Data(), systems.a.Distance(), first, count);
        const std::ptrdiff_t row = a.RowStride(), column = a.ColumnStride();
        const std::size_t n = work.N();
        if (row == 1)
            for (std::size_t j = 0; j < n; ++j)
                LoadLine<L>(starts.From(static_cast<std::ptrdiff_t>(j) * column), row, j + 1,
                            work.square + j, n);
        else
            for (std::size_t i = 0; i < n; ++i)
                LoadLine<L>(starts.From(static_cast<std::ptrdiff_t>(i) * (row + column)), column,
                            n - i, work.Row(i) + i, 1);
        const auto& b = systems.b.First();
        LoadLine<L>(LaneStarts<L, const double>::Of(b.Data(), systems.b.Distance(), first, count),
                    b.Stride(), n, work.y, 1);
    }

    CORVALE_INLINE static void FactorRow(Work& work, std::size_t k) noexcept {
        V* const row = work.Row(k);
        V* const factors = work.Factors(k);
        V sum{};
        for (std::size_t i = 0; i < k; ++i) {
            const V u = work.Row(i)[k];
            factors[i] = rootFree ? work.pivots[i] * u : u;
            sum += rootFree ? work.pivots[i] * (u * u) : u * u;
        }
        const V rest = row[k] - sum;
        const V pivot = rootFree ? rest : Root(rest);
        const V reciprocal = 1.0 / pivot;
        work.pivots[k] = pivot, work.reciprocals[k] = reciprocal;
        InPieces<FactorPiece>(k + 1, work.N(), work, k);
    }

    /// Elements j and up of row k of U.
    template <std::size_t width>
    struct FactorPiece {
        CORVALE_INLINE static void Run(std::size_t j, Work& work, std::size_t k) noexcept {
            const V* const factors = work.Factors(k);
            Sums<L, width> sums{};
            for (std::size_t i = 0; i < k; ++i) sums.Add(work.Row(i) + j, factors[i]);
            V* const row = work.Row(k) + j;
            sums.ForEach([&](const V& sum, std::size_t r) {
                row[r] = rootFree ? (row[r] - sum) * work.reciprocals[k]
                                  : (row[r] - sum) / work.pivots[k];
            });
        }
    };

    CORVALE_INLINE static void SolveDown(Work& work, std::size_t k) noexcept {
        V sum{};
        for (std::size_t i = 0; i < k; ++i) sum += work.Row(i)[k] * work.y[i];
        const V rest = work.y[k] - sum;
        if (rootFree)
            work.y[k] = rest;
        else
            work.y[k] = k == 0 ? work.y[k] / work.pivots[k] : work.reciprocals[k] * rest;
    }

    CORVALE_INLINE static void InverseColumn(Work& work, std::size_t k) noexcept {
        InPieces<InversePiece>(0, k, work, k);
    }

    /// Elements i and up of column k of W.
    template <std::size_t width>
    struct InversePiece {
        CORVALE_INLINE static void Run(std::size_t i, Work& work, std::size_t k) noexcept {
            Sums<L, width> sums{};
            Corner(std::make_index_sequence<width>{}, sums, i, work, k);
            for (std::size_t m = i + width; m < k; ++m) sums.Add(&work.W(i, m), work.Row(m)[k]);
            const V diagonal = work.DiagonalOfW(k);
            V* const column = &work.W(i, k);
            sums.ForEach([&](const V& sum, std::size_t r) { column[r] = -(sum * diagonal); });
        }
        template <std::size_t... s>
        CORVALE_INLINE static void Corner(std::index_sequence<s...>, Sums<L, width>& sums,
                                          std::size_t i, Work& work, std::size_t k) noexcept {
            ((sums.template Add<s>(&work.W(i, i + s), work.Row(i + s)[k]),
              sums.template At<s>() += work.DiagonalOfW(i + s) * work.Row(i + s)[k]),
             ...);
        }
    };

    CORVALE_INLINE static void SolveUp(Work& work) noexcept {
        const std::size_t n = work.N();
        V* const y = work.y;
        y[n - 1] = y[n - 1] / work.pivots[n - 1];
        for (std::size_t k = n - 1; k-- > 0;) {
            V sum{};
            for (std::size_t j = n - 1; j > k; --j) {
                const V u = work.Row(k)[j];
                sum += (rootFree ? work.pivots[k] * u : u) * y[j];
            }
            y[k] = (y[k] - sum) * work.reciprocals[k];
        }
    }

    /// Row j of the inverse from the diagonal on: the sums over k of W(j,k), times 1/D(k) without
    /// roots, and W(i,k).
    CORVALE_INLINE static void Multiply(Work& work) noexcept {
        const std::size_t n = work.N();
        const V zero{};
        V before{};                      // what k < j brings
        V* const factors = work.pivots;  // no longer needed
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = j; k < n; ++k) {
                const V w = k == j ? work.DiagonalOfW(k) : work.W(j, k);
                factors[k] = rootFree ? w * work.reciprocals[k] : w;
            }
            V zeros = before;  // and what k < i does
            InPieces<ProductPiece>(j, n, work, j, zeros);
            if (rootFree) before += (zero * work.reciprocals[j]) * zero;
        }
        if (rootFree) work.Row(n - 1)[n - 1] = work.reciprocals[n - 1];
    }

    /// Elements i and up of row j of the inverse.
    template <std::size_t width>
    struct ProductPiece {
        CORVALE_INLINE static void Run(std::size_t i, Work& work, std::size_t j,
                                       V& zeros) noexcept {
            Sums<L, width> sums;
            Corner(std::make_index_sequence<width>{}, sums, i, work, zeros);
            for (std::size_t k = i + width; k < work.N(); ++k)
                sums.Add(&work.W(i, k), work.pivots[k]);
            V* const row = work.Row(j) + i;
            sums.ForEach([&](const V& sum, std::size_t r) { row[r] = sum; });
        }
        template <std::size_t... s>
        CORVALE_INLINE static void Corner(std::index_sequence<s...>, Sums<L, width>& sums,
                                          std::size_t i, Work& work, V& zeros) noexcept {
            const V zero{};
            ((sums.template At<s>() = zeros,
              sums.template Add<s>(&work.W(i, i + s), work.pivots[i + s]),
              sums.template At<s>() += work.DiagonalOfW(i + s) * work.pivots[i + s],
              zeros += zero * work.pivots[i + s]),
             ...);
        }
    };

    CORVALE_INLINE static void Store(const LaneSystems& systems, std::size_t first,
                                     std::size_t count, Work& work) noexcept {
        const std::size_t n = work.N();
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < i; ++j) work.Row(i)[j] = work.Row(j)[i];
        const auto& inverse = systems.inverse.First();
        const auto starts =
            LaneStarts<L, double>::Of(inverse.Data(), systems.inverse.Distance(), first, count);
        const std::ptrdiff_t row = inverse.RowStride(), column = inverse.ColumnStride();
        const auto order = static_cast<std::ptrdiff_t>(n);
        const bool isTurned = column == 1;  // the inverse is symmetric
        const std::ptrdiff_t step = isTurned ? column : row, next = isTurned ? row : column;
        if (step == 1 && next == order)
            StoreLine<L>(work.square, 1, n * n, starts, 1);
        else
            for (std::size_t i = 0; i < n; ++i)
                StoreLine<L>(work.Row(i), 1, n, starts.From(static_cast<std::ptrdiff_t>(i) * next),
                             step);
        const auto& x = systems.x.First();
        StoreLine<L>(work.y, 1, n,
                     LaneStarts<L, double>::Of(x.Data(), systems.x.Distance(), first, count),
                     x.Stride());
    }
};

template <class L>
struct SolveLanesWithRoots : SolveInLanes<L, false, 0> {};
template <class L>
struct SolveLanesWithoutRoots : SolveInLanes<L, true, 0> {};

/// Systems of order 3 or 6 in lanes of the fastest path. A file of its own for its own optimisation.
void SolveFixedLanes(const LaneSystems& systems, bool rootFree) noexcept;

}  // namespace corvale::internal
