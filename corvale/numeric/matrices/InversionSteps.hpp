// Internal to numeric/matrices/: not installed, may change in any commit.
//
// Gauss-Jordan elimination step by step, on columns of `length` rows that lie one after the other.
// The length is a whole number of vectors; rows past the order hold zeros at first and are never
// looked at.
//
// In a step with pivot row p and q = 1 / pivot, the pivot's own column becomes w(i) = R(i) q with
// w(p) = q, and every other column R(i) - w(i) t, t being its element in row p, for which R(p)
// counts as 0.
#pragma once

#include <corvale/numeric/matrices/VectorTiles.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// Which rows have served as pivot rows, and when.
struct PivotRecord {
    std::int32_t* stepOfRow;  // counted from 1; 0 until the row serves
    std::int64_t* open;       // all bits set until the row serves, then none
    std::size_t order;
    bool searched;  // false: the diagonal elements are taken as they come
};

constexpr std::size_t kNoPivot = SIZE_MAX;

/// The row of the largest magnitude among the open rows of a column, the first of equals; none
/// where all are zero or NaN.
template <class L>
struct FindPivot {
    using V = typename L::Vector;
    using Bits = typename L::Bits;

    CORVALE_INLINE std::size_t operator()(const double* column,
                                          const PivotRecord* record) const noexcept {
        V most{};
        std::size_t i = 0;
        for (; i + L::kLanes <= record->order; i += L::kLanes) {
            const Bits magnitude =
                (Bits)At<V>(column + i) & (Bits{} + INT64_MAX) & OpenAt(record, i);
            most = (V)magnitude > most ? (V)magnitude : most;
        }
        double largest = 0.0;
        for (std::size_t lane = 0; lane < L::kLanes; ++lane)
            largest = most[lane] > largest ? most[lane] : largest;
        for (; i < record->order; ++i) {
            const double magnitude = Magnitude(column, record, i);
            largest = magnitude > largest ? magnitude : largest;
        }
        if (largest == 0.0) return kNoPivot;
        std::size_t row = 0;
        while (Magnitude(column, record, row) != largest) ++row;
        return row;
    }
    CORVALE_INLINE static Bits OpenAt(const PivotRecord* record, std::size_t i) noexcept {
        return *reinterpret_cast<const Bits*>(record->open + i);
    }
    CORVALE_INLINE static double Magnitude(const double* column, const PivotRecord* record,
                                           std::size_t i) noexcept {
        return std::bit_cast<double>(std::bit_cast<std::int64_t>(column[i]) & INT64_MAX &
                                     record->open[i]);
    }
};

/// The pivot row of step k (from 0), noted in the record; kNoPivot where there is none.
template <class L>
CORVALE_INLINE std::size_t TakePivot(const double* column, std::size_t k,
                                     const PivotRecord* record) noexcept {
    std::size_t row = k;
    if (record->searched) {
        row = FindPivot<L>{}(column, record);
        if (row == kNoPivot) return kNoPivot;
    } else if (column[k] == 0.0) {
        return kNoPivot;
    }
    record->stepOfRow[row] = static_cast<std::int32_t>(k) + 1;
    record->open[row] = 0;
    return row;
}

/// One step on `count` columns. `own` is the index of the pivot's column, of which `w` receives a
/// copy after the step.
template <class L>
CORVALE_INLINE void Eliminate(double* columns, std::size_t length, std::size_t count,
                              std::size_t own, std::size_t row, double* w) noexcept {
    using V = typename L::Vector;
    double* pivotColumn = columns + own * length;
    const double q = 1.0 / pivotColumn[row];
    for (std::size_t i = 0; i < length; i += L::kLanes) At<V>(w + i) = At<V>(pivotColumn + i) * q;
    w[row] = q;
    for (std::size_t j = 0; j < count; ++j) {
        double* column = columns + j * length;
        if (j == own) continue;
        const double t = column[row];
        for (std::size_t i = 0; i < length; i += L::kLanes)
            At<V>(column + i) = At<V>(column + i) - At<V>(w + i) * t;
        column[row] = 0.0 - q * t;  // after the vectors: a load would wait for a narrower store
    }
    for (std::size_t i = 0; i < length; i += L::kLanes) At<V>(pivotColumn + i) = At<V>(w + i);
}

/// All steps on a whole matrix. Returns how many could be made.
template <class L>
struct InvertBySteps {
    CORVALE_INLINE std::size_t operator()(double* matrix, std::size_t length,
                                          const PivotRecord* record, double* w) const noexcept {
        for (std::size_t k = 0; k < record->order; ++k) {
            const std::size_t row = TakePivot<L>(matrix + k * length, k, record);
            if (row == kNoPivot) return k;
            Eliminate<L>(matrix, length, record->order, k, row, w);
        }
        return record->order;
    }
};

/// All steps on a matrix whose columns are `length` long: w stays in registers, and element `row`
/// is set by a choice of lanes, because a vector that is loaded right after one of its elements was
/// stored has to wait (Inverse/3 to /12 in bench/MatrixBench.cpp).
template <class L, std::size_t length>
struct InvertShort {
    using V = typename L::Vector;
    static constexpr std::size_t kVectors = length / L::kLanes;

    CORVALE_INLINE std::size_t operator()(double* matrix,
                                          const PivotRecord* record) const noexcept {
        const std::size_t order = std::min(record->order, length);
        for (std::size_t k = 0; k < order; ++k) {
            const std::size_t row = TakePivot<L>(matrix + k * length, k, record);
            if (row == kNoPivot) return k;
            Step(matrix, order, k, row);
        }
        return order;
    }
    CORVALE_INLINE static void Step(double* matrix, std::size_t order, std::size_t own,
                                    std::size_t row) noexcept {
        double* pivotColumn = matrix + own * length;
        const double q = 1.0 / pivotColumn[row];
        V w[kVectors];
#pragma GCC unroll 8
        for (std::size_t c = 0; c < kVectors; ++c) {
            const V product = At<V>(pivotColumn + c * L::kLanes) * q;
            w[c] = IsRow(c, row) ? Splat<V>(q) : product;
        }
        for (std::size_t j = 0; j < order; ++j) {
            if (j == own) continue;
            double* column = matrix + j * length;
            const double t = column[row];
#pragma GCC unroll 8
            for (std::size_t c = 0; c < kVectors; ++c) {
                V& part = At<V>(column + c * L::kLanes);
                part = (IsRow(c, row) ? V{} : part) - w[c] * t;
            }
        }
#pragma GCC unroll 8
        for (std::size_t c = 0; c < kVectors; ++c) At<V>(pivotColumn + c * L::kLanes) = w[c];
    }
    /// All bits set in the lane of `row`, none in the others.
    CORVALE_INLINE static auto IsRow(std::size_t vector, std::size_t row) noexcept {
        return LaneNumbers<L>(vector) == Splat<V>(static_cast<double>(row));
    }
};

template <class L>
struct Invert4 : InvertShort<L, 4> {};
template <class L>
struct Invert8 : InvertShort<L, 8> {};
template <class L>
struct Invert12 : InvertShort<L, 12> {};

}  // namespace corvale::internal
