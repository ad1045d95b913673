#include <corvale/numeric/PackedSymmetric.hpp>

#include <corvale/numeric/VectorTiles.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using internal::Block;

// The order from which blocks are faster than a plain double loop (Packed in
// bench/MatrixBench.cpp).
constexpr std::size_t kBlockedOrder = 16;

// Eight rows of a column are a cache line, so a line is fetched once and used whole.
constexpr std::size_t kRows = 8;

/// Where row i, counted from 0, starts in the packed array.
constexpr std::size_t RowStart(std::size_t i) noexcept {
    return i * (i + 1) / 2;
}

/// How far row i + r starts after row i.
constexpr std::size_t RowsAfter(std::size_t i, std::size_t r) noexcept {
    return r * i + r * (r + 1) / 2;
}

/// Packs rows `firstRow` to `endRow` of the columns from `firstColumn` to `endColumn`, one by one.
CORVALE_LOOP void PackPlain(const double* square, std::size_t columnStride, std::size_t firstRow,
                            std::size_t endRow, std::size_t firstColumn, std::size_t endColumn,
                            double* packed) noexcept {
    for (std::size_t i = firstRow; i < endRow; ++i)
        for (std::size_t j = firstColumn; j < std::min(endColumn, i + 1); ++j)
            packed[RowStart(i) + j] = square[j * columnStride + i];
}

/// Unpacks the elements below and on the diagonal, likewise.
CORVALE_LOOP void UnpackPlain(const double* packed, std::size_t firstRow, std::size_t endRow,
                              std::size_t firstColumn, std::size_t endColumn, double* square,
                              std::size_t columnStride) noexcept {
    for (std::size_t i = firstRow; i < endRow; ++i)
        for (std::size_t j = firstColumn; j < std::min(endColumn, i + 1); ++j)
            square[j * columnStride + i] = packed[RowStart(i) + j];
}

/// Packs a matrix stored by columns: stripes of columns, in them blocks that are turned.
template <class L>
struct PackByColumns {
    CORVALE_LOOP void operator()(const double* square, std::size_t n, std::size_t columnStride,
                                 double* packed) const noexcept {
        for (std::size_t j = 0; j < n; j += kRows) {
            const std::size_t diagonalEnd = std::min(j + kRows, n);
            PackPlain(square, columnStride, j, diagonalEnd, j, diagonalEnd, packed);
            std::size_t i = diagonalEnd;
            for (; i + kRows <= n; i += kRows) PackBlock(square, columnStride, i, j, packed);
            PackPlain(square, columnStride, i, n, j, diagonalEnd, packed);
        }
    }
    CORVALE_LOOP static void PackBlock(const double* square, std::size_t columnStride,
                                       std::size_t row, std::size_t column,
                                       double* packed) noexcept {
        for (std::size_t j = column; j < column + kRows; j += L::kLanes)
            for (std::size_t i = row; i < row + kRows; i += L::kLanes) {
                Block<L> block;
                const double* from = square + j * columnStride + i;
                double* to = packed + RowStart(i) + j;
                block.Load([=](std::size_t c) { return from + c * columnStride; });
                block.Turn();
                block.Store([=](std::size_t r) { return to + RowsAfter(i, r); });
            }
    }
};

/// Unpacks to a matrix stored by columns: each packed row is the upper part of a column as it is,
/// and turned in blocks the lower part of a stripe of columns.
template <class L>
struct UnpackByColumns {
    CORVALE_LOOP void operator()(const double* packed, std::size_t n, double* square,
                                 std::size_t columnStride) const noexcept {
        for (std::size_t j = 0; j < n; j += kRows) {
            const std::size_t diagonalEnd = std::min(j + kRows, n);
            for (std::size_t c = j; c < diagonalEnd; ++c)
                std::memmove(square + c * columnStride, packed + RowStart(c),
                             (c + 1) * sizeof(double));
            UnpackPlain(packed, j, diagonalEnd, j, diagonalEnd, square, columnStride);
            std::size_t i = diagonalEnd;
            for (; i + kRows <= n; i += kRows) UnpackBlock(packed, i, j, square, columnStride);
            UnpackPlain(packed, i, n, j, diagonalEnd, square, columnStride);
        }
    }
    CORVALE_LOOP static void UnpackBlock(const double* packed, std::size_t row, std::size_t column,
                                         double* square, std::size_t columnStride) noexcept {
        for (std::size_t j = column; j < column + kRows; j += L::kLanes)
            for (std::size_t i = row; i < row + kRows; i += L::kLanes) {
                Block<L> block;
                const double* from = packed + RowStart(i) + j;
                double* to = square + j * columnStride + i;
                block.Load([=](std::size_t r) { return from + RowsAfter(i, r); });
                block.Turn();
                block.Store([=](std::size_t c) { return to + c * columnStride; });
            }
    }
};

bool WorthBlocks(const VectorView<const double>& packed, std::ptrdiff_t rowStride,
                 std::ptrdiff_t columnStride, std::int32_t n) noexcept {
    return packed.Stride() == 1 && rowStride == 1 && columnStride >= n &&
           n >= std::int32_t{kBlockedOrder};
}

}  // namespace

std::int32_t SizeOfLta(MatrixView<const double> square) noexcept {
    const std::int64_t n = square.Rows();
    constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(n * (n + 1) / 2, kGreatest));
}

std::int32_t SizeOfSqrMtx(VectorView<const double> packed) noexcept {
    // (n + 0.5)^2 is 2 L + 0.25 for L = n (n + 1) / 2, and its root is exact.
    const double twice = 2.0 * packed.Size();
    return static_cast<std::int32_t>(std::sqrt(twice + 0.25) - 0.5);
}

void SqrMtx2Lta(MatrixView<const double> square, VectorView<double> packed) noexcept {
    const std::int32_t n = square.Rows();
    const bool fits = std::int64_t{packed.Size()} >= std::int64_t{n} * (std::int64_t{n} + 1) / 2;
    if (n == 0 || square.Columns() < n || !fits) return;
    if (WorthBlocks(packed, square.RowStride(), square.ColumnStride(), n))
        return internal::OnWidestLanes<PackByColumns>(
            square.Data(), static_cast<std::size_t>(n),
            static_cast<std::size_t>(square.ColumnStride()), packed.Data());

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) packed(++position) = square(i, j);
}

void Lta2SqrMtx(VectorView<const double> packed, MatrixView<double> square) noexcept {
    const std::int32_t n = SizeOfSqrMtx(packed);
    if (n == 0 || square.Rows() < n || square.Columns() < n) return;
    if (WorthBlocks(packed, square.RowStride(), square.ColumnStride(), n))
        return internal::OnWidestLanes<UnpackByColumns>(
            packed.Data(), static_cast<std::size_t>(n), square.Data(),
            static_cast<std::size_t>(square.ColumnStride()));

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) square(i, j) = square(j, i) = packed(++position);
}

}  // namespace corvale::GenFunctions
