// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Both solvers for small orders: rows and columns are padded to `width` doubles, one of them at a
// time is held in registers, and the work memory is in the frame of the call (Cholesky/3 to /12 in
// bench/MatrixBench.cpp: half to a third of the time of the panels).
#pragma once

#include <corvale/numeric/matrices/CholeskyPanels.hpp>

#include <cmath>

namespace corvale::internal {

struct SmallSystem {
    const double *a, *b;
    std::size_t n;
    double *inverse, *x;
};

template <class L, std::size_t width, bool rootFree>
struct SolveSmall {
    using V = typename L::Vector;
    static constexpr std::size_t kVectors = width / L::kLanes;

    struct Row {
        V v[kVectors];
    };
    using Rows = Row[width];

    // A row as an array, of which single elements are read.
    CORVALE_INLINE static const double* Of(const Row& row) noexcept {
        return reinterpret_cast<const double*>(row.v);
    }

    struct Work {
        Rows u, w;  // U by rows, W by columns
        Rows z;     // W D^-1 by columns
        double pivots[width], reciprocals[width], y[width];
        V check[kVectors];  // zero as long as U, W and W D^-1 are finite
    };

    /// False where something is not finite: then nothing was written.
    CORVALE_INLINE bool operator()(const SmallSystem* system) const noexcept {
        const std::size_t n = system->n;
        if (n < 1 || n > width) return false;  // never so, but the loops are shorter for it
        Work work;
        for (V& check : work.check) check = V{};
        for (std::size_t k = 0; k < n; ++k) {
            FactorRow(*system, work, k);
            work.y[k] = DownElement(work, k, system->b[k]);
            InverseColumn(work, k);
        }
        double total = 0.0;
        for (const V& check : work.check)
            for (std::size_t lane = 0; lane < L::kLanes; ++lane) total += check[lane];
        if (!(total == 0.0)) return false;
        SolveUp(work, n);
        Multiply(work, n, system->inverse);
        if (rootFree) system->inverse[n * n - 1] = work.reciprocals[n - 1];
        std::copy(work.y, work.y + n, system->x);
        return true;
    }

    CORVALE_INLINE static V Position(std::size_t lane) noexcept {
        return Splat<V>(static_cast<double>(lane));
    }

    /// Row k of A right of the diagonal, zeros elsewhere. Put together in registers: a vector that is
    /// loaded right after its elements were stored has to wait, a tenth of the time at order 3.
    CORVALE_INLINE static Row GivenRow(const SmallSystem& system, std::size_t k) noexcept {
        Row given;
        for (std::size_t c = 0; c < kVectors; ++c) {
            V part{};
#pragma GCC unroll 4
            for (std::size_t lane = 0; lane < L::kLanes; ++lane) {
                const std::size_t j = c * L::kLanes + lane;
                part[lane] = k < j && j < system.n ? system.a[j * system.n + k] : 0.0;
            }
            given.v[c] = part;
        }
        return given;
    }

    /// Row k of U: zeros before the diagonal.
    CORVALE_INLINE static void FactorRow(const SmallSystem& system, Work& work,
                                         std::size_t k) noexcept {
        const Row given = GivenRow(system, k);
        Row sum{};
        for (std::size_t i = 0; i < k; ++i) {
            const double factor = rootFree ? work.pivots[i] * Of(work.u[i])[k] : Of(work.u[i])[k];
#pragma GCC unroll 8
            for (std::size_t c = 0; c < kVectors; ++c) sum.v[c] += work.u[i].v[c] * factor;
        }
        const double pivot = NextPivot(system, work, k);
        const double reciprocal = 1.0 / pivot;
        work.pivots[k] = pivot, work.reciprocals[k] = reciprocal;
#pragma GCC unroll 8
        for (std::size_t c = 0; c < kVectors; ++c) {
            const V rest = LaneNumbers<L>(c) > Position(k) ? given.v[c] - sum.v[c] : V{};
            const V u = rootFree ? rest * reciprocal : rest / pivot;
            work.u[k].v[c] =
                LaneNumbers<L>(c) == Position(k) ? Splat<V>(rootFree ? 1.0 : pivot) : u;
            work.check[c] += work.u[k].v[c] * 0.0;
        }
    }

    /// The sum under a pivot is a chain of its own, so that it does not wait for a whole row.
    CORVALE_INLINE static double NextPivot(const SmallSystem& system, const Work& work,
                                           std::size_t k) noexcept {
        double sum = 0.0;
        for (std::size_t i = 0; i < k; ++i) {
            const double u = Of(work.u[i])[k];
            sum += rootFree ? work.pivots[i] * (u * u) : u * u;
        }
        const double rest = system.a[k * system.n + k] - sum;
        return rootFree ? rest : std::sqrt(rest);
    }

    CORVALE_INLINE static double DownElement(const Work& work, std::size_t k, double b) noexcept {
        if (k == 0) return rootFree ? b : b / work.pivots[0];
        double sum = 0.0;
        for (std::size_t i = 0; i < k; ++i) sum += Of(work.u[i])[k] * work.y[i];
        return rootFree ? b - sum : work.reciprocals[k] * (b - sum);
    }

    /// Column k of W: zeros below the diagonal.
    CORVALE_INLINE static void InverseColumn(Work& work, std::size_t k) noexcept {
        Row sum{};
        for (std::size_t i = 0; i < k; ++i)
#pragma GCC unroll 8
            for (std::size_t c = 0; c < kVectors; ++c)
                sum.v[c] += work.w[i].v[c] * Of(work.u[i])[k];
        const double diagonal = rootFree ? 1.0 : work.reciprocals[k];
#pragma GCC unroll 8
        for (std::size_t c = 0; c < kVectors; ++c) {
            const V above = LaneNumbers<L>(c) < Position(k) ? -(sum.v[c] * diagonal) : V{};
            work.w[k].v[c] = LaneNumbers<L>(c) == Position(k) ? Splat<V>(diagonal) : above;
            work.check[c] += work.w[k].v[c] * 0.0;
            if constexpr (rootFree) {
                work.z[k].v[c] = work.w[k].v[c] * work.reciprocals[k];
                work.check[c] += work.z[k].v[c] * 0.0;
            }
        }
    }

    CORVALE_INLINE static void SolveUp(Work& work, std::size_t n) noexcept {
        double* y = work.y;
        y[n - 1] = y[n - 1] / work.pivots[n - 1];
        for (std::size_t k = n - 1; k > 0; --k) {
            double sum = 0.0;
            for (std::size_t j = n - 1; j >= k; --j) {
                const double u = Of(work.u[k - 1])[j];
                sum += (rootFree ? work.pivots[k - 1] * u : u) * y[j];
            }
            y[k - 1] = (y[k - 1] - sum) * work.reciprocals[k - 1];
        }
    }

    /// The first n elements; whole vectors first, because a call of memcpy for each column takes a
    /// fifth of the time.
    CORVALE_INLINE static void WriteColumn(const Row& row, std::size_t n, double* column) noexcept {
#pragma GCC unroll 8
        for (std::size_t c = 0; c < kVectors; ++c) {
            const std::size_t first = c * L::kLanes;
            if (first + L::kLanes <= n) {
                std::memcpy(column + first, &row.v[c], sizeof row.v[c]);
                continue;
            }
#pragma GCC unroll 4
            for (std::size_t lane = 0; lane < L::kLanes; ++lane)
                if (first + lane < n) column[first + lane] = row.v[c][lane];
        }
    }

    /// The inverse column by column. Element (i,j) and element (j,i) are the same sum.
    CORVALE_INLINE static void Multiply(const Work& work, std::size_t n, double* inverse) noexcept {
        const Row* left = rootFree ? work.z : work.w;
        for (std::size_t i = 0; i < n; ++i) {
            Row sum{};
            for (std::size_t k = i; k < n; ++k)
#pragma GCC unroll 8
                for (std::size_t c = 0; c < kVectors; ++c)
                    sum.v[c] += work.w[k].v[c] * Of(left[k])[i];
            double* column = inverse + i * n;
            if constexpr (rootFree) {
                for (std::size_t j = i; j < n; ++j) column[j] = inverse[j * n + i] = Of(sum)[j];
            } else {
                WriteColumn(sum, n, column);
            }
        }
    }
};

/// For orders above four. With two lanes one width serves all of them, which keeps the library
/// small.
template <class L, bool rootFree>
CORVALE_INLINE bool SolveSmallOrder(const SmallSystem* system) noexcept {
    if (system->n <= 4) return CallOnPath<L, SolveSmall<L, 4, rootFree>>(system);
    if constexpr (L::kLanes == 4)
        if (system->n <= 8) return CallOnPath<L, SolveSmall<L, 8, rootFree>>(system);
    return CallOnPath<L, SolveSmall<L, 12, rootFree>>(system);
}

template <class L>
struct SolveSmallWithRoots {
    CORVALE_INLINE bool operator()(const SmallSystem* system) const noexcept {
        return SolveSmallOrder<L, false>(system);
    }
};
template <class L>
struct SolveSmallWithoutRoots {
    CORVALE_INLINE bool operator()(const SmallSystem* system) const noexcept {
        return SolveSmallOrder<L, true>(system);
    }
};

}  // namespace corvale::internal
