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

// Eight rows of a column are a cache line, so a line is fetched once and used whole. The columns of
// a stripe lie in as many pages as the processor translates without a search.
constexpr std::size_t kRows = 8;
constexpr std::size_t kStripe = 64;

/// Where row i, counted from 0, starts in the packed array.
constexpr std::size_t RowStart(std::size_t i) noexcept {
    return i * (i + 1) / 2;
}

/// How far row i + r starts after row i.
constexpr std::size_t RowsAfter(std::size_t i, std::size_t r) noexcept {
    return r * i + r * (r + 1) / 2;
}

/// How many columns are taken together. Columns that lie a multiple of 512 bytes apart share few
/// places in the first-level cache.
constexpr std::size_t StripeWidth(std::size_t columnStride) noexcept {
    return columnStride % 64 == 0 ? kRows : kStripe;
}

/// One way between the two forms: where an element lies, and what a block of them goes through.
struct Pack {
    const double* square;
    std::size_t columnStride;
    double* packed;

    CORVALE_LOOP void Element(std::size_t i, std::size_t j) const noexcept {
        packed[RowStart(i) + j] = square[j * columnStride + i];
    }
    template <class L>
    CORVALE_LOOP void Move(std::size_t i, std::size_t j) const noexcept {
        const double* from = square + j * columnStride + i;
        double* to = packed + RowStart(i) + j;
        Block<L> block;
        block.Load([=, *this](std::size_t c) { return from + c * columnStride; });
        block.Turn();
        block.Store([=](std::size_t r) { return to + RowsAfter(i, r); });
    }
};

struct Unpack {
    const double* packed;
    double* square;
    std::size_t columnStride;

    CORVALE_LOOP void Element(std::size_t i, std::size_t j) const noexcept {
        square[j * columnStride + i] = packed[RowStart(i) + j];
    }
    template <class L>
    CORVALE_LOOP void Move(std::size_t i, std::size_t j) const noexcept {
        const double* from = packed + RowStart(i) + j;
        double* lower = square + j * columnStride + i;
        Block<L> block;
        block.Load([=](std::size_t r) { return from + RowsAfter(i, r); });
        block.Turn();
        block.Store([=, *this](std::size_t c) { return lower + c * columnStride; });
    }
};

/// Rows `row` to `rowEnd` of the columns `column` to `columnEnd`, up to the diagonal.
template <class L, class Way>
CORVALE_LOOP void WalkBand(const Way& way, std::size_t row, std::size_t rowEnd, std::size_t column,
                           std::size_t columnEnd) noexcept {
    const std::size_t whole = std::min(columnEnd, row) / L::kLanes * L::kLanes;
    const std::size_t wholeRows = row + (rowEnd - row) / L::kLanes * L::kLanes;
    for (std::size_t i = row; i < wholeRows; i += L::kLanes)
        for (std::size_t j = column; j < whole; j += L::kLanes) way.template Move<L>(i, j);
    for (std::size_t i = wholeRows; i < rowEnd; ++i)
        for (std::size_t j = column; j < whole; ++j) way.Element(i, j);
    for (std::size_t i = row; i < rowEnd; ++i)
        for (std::size_t j = std::max(whole, column); j < std::min(columnEnd, i + 1); ++j)
            way.Element(i, j);
}

/// kRows rows of as many columns.
template <class L, class Way>
CORVALE_LOOP void MoveWhole(const Way& way, std::size_t row, std::size_t column) noexcept {
    for (std::size_t j = column; j < column + kRows; j += L::kLanes)
        for (std::size_t i = row; i < row + kRows; i += L::kLanes) way.template Move<L>(i, j);
}

/// Walks the lower triangle in stripes of `width` columns, in them in bands of kRows rows, in those
/// in square blocks; what does not fill a block goes element by element.
template <class L, class Way>
CORVALE_LOOP void WalkTriangle(const Way& way, std::size_t n, std::size_t width) noexcept {
    for (std::size_t stripe = 0; stripe < n; stripe += width) {
        const std::size_t stripeEnd = std::min(stripe + width, n);
        for (std::size_t band = stripe; band < n; band += kRows) {
            if (width == kRows && band >= stripeEnd && band + kRows <= n) {
                MoveWhole<L>(way, band, stripe);
            } else {
                WalkBand<L>(way, band, std::min(band + kRows, n), stripe, stripeEnd);
            }
        }
    }
}

template <class L>
struct PackByColumns {
    CORVALE_LOOP void operator()(Pack way, std::size_t n) const noexcept {
        WalkTriangle<L>(way, n, StripeWidth(way.columnStride));
    }
};
template <class L>
struct UnpackByColumns {
    CORVALE_LOOP void operator()(Unpack way, std::size_t n) const noexcept {
        for (std::size_t i = 0; i < n; ++i)
            std::memmove(way.square + i * way.columnStride, way.packed + RowStart(i),
                         (i + 1) * sizeof(double));
        WalkTriangle<L>(way, n, StripeWidth(way.columnStride));
    }
};

bool WorthBlocks(const VectorView<const double>& packed, std::ptrdiff_t rowStride,
                 std::ptrdiff_t columnStride, std::int32_t n) noexcept {
    return packed.Stride() == 1 && rowStride == 1 && columnStride >= n &&
           n >= std::int32_t{kBlockedOrder};
}

}  // namespace

std::int32_t SizeOfLta(MatrixView<const double> square) noexcept {
    const std::int64_t n = square.Columns() > 0 ? square.Rows() : 0;
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
            Pack{square.Data(), static_cast<std::size_t>(square.ColumnStride()), packed.Data()},
            static_cast<std::size_t>(n));

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) packed(++position) = square(i, j);
}

void Lta2SqrMtx(VectorView<const double> packed, MatrixView<double> square) noexcept {
    const std::int32_t n = SizeOfSqrMtx(packed);
    if (n == 0 || square.Rows() < n || square.Columns() < n) return;
    if (WorthBlocks(packed, square.RowStride(), square.ColumnStride(), n))
        return internal::OnWidestLanes<UnpackByColumns>(
            Unpack{packed.Data(), square.Data(), static_cast<std::size_t>(square.ColumnStride())},
            static_cast<std::size_t>(n));

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) square(i, j) = square(j, i) = packed(++position);
}

}  // namespace corvale::GenFunctions
