#include <corvale/numeric/PackedSymmetric.hpp>

#include <corvale/numeric/matrices/VectorTiles.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using internal::Block;
using internal::FourLanes;
using internal::OnBestPath;
using internal::TwoLanes;

// The order from which blocks are faster than a plain double loop (Packed in
// bench/MatrixBench.cpp).
constexpr std::size_t kBlockedOrder = 16;

// 64 columns: their pages fit the first-level TLB, and a cache line of each stays in the
// first-level cache while the rows are walked.
constexpr std::size_t kStripe = 64;
constexpr std::size_t kNarrowStripe = 8;

/// Where row i, counted from 0, starts in the packed array.
constexpr std::size_t RowStart(std::size_t i) noexcept {
    return i * (i + 1) / 2;
}

/// How far row i + r starts after row i.
constexpr std::size_t RowsAfter(std::size_t i, std::size_t r) noexcept {
    return r * i + r * (r + 1) / 2;
}

/// Columns that lie a multiple of 512 bytes apart compete for few sets of the first-level cache.
constexpr bool SharePlaces(std::size_t columnStride) noexcept {
    return columnStride % 64 == 0;
}

constexpr std::size_t StripeWidth(std::size_t columnStride) noexcept {
    return SharePlaces(columnStride) ? kNarrowStripe : kStripe;
}

/// One direction between the two forms. `Below` moves the block below the diagonal that begins at
/// row i and column j, `Diagonal` the one on it that begins at row and column i.
struct Pack {
    const double* square;
    std::size_t columnStride;
    double* packed;

    template <class L>
    CORVALE_INLINE void Below(std::size_t i, std::size_t j) const noexcept {
        const double* from = square + j * columnStride + i;
        double* to = packed + RowStart(i) + j;
        Block<L> block;
        block.Load([=, *this](std::size_t c) { return from + c * columnStride; });
        block.Turn();
        block.Store([=](std::size_t r) { return to + RowsAfter(i, r); });
    }
    // Element by element, since those above the diagonal must not be read.
    template <class L>
    CORVALE_INLINE void Diagonal(std::size_t i) const noexcept {
        for (std::size_t r = i; r < i + L::kLanes; ++r)
            for (std::size_t c = i; c <= r; ++c)
                packed[RowStart(r) + c] = square[c * columnStride + r];
    }
};

/// Both halves are written while a block is in registers, unless the rows were copied before.
struct Unpack {
    const double* packed;
    double* square;
    std::size_t columnStride;
    bool areRowsCopied;

    template <class L>
    CORVALE_INLINE Block<L> Load(std::size_t i, std::size_t j) const noexcept {
        const double* from = packed + RowStart(i) + j;
        Block<L> block;
        block.Load([=](std::size_t r) { return from + RowsAfter(i, r); });
        return block;
    }
    template <class L>
    CORVALE_INLINE void Store(const Block<L>& block, std::size_t i, std::size_t j) const noexcept {
        double* to = square + j * columnStride + i;
        block.Store([=, *this](std::size_t c) { return to + c * columnStride; });
    }
    template <class L>
    CORVALE_INLINE void Below(std::size_t i, std::size_t j) const noexcept {
        Block<L> block = Load<L>(i, j);
        if (!areRowsCopied) Store(block, j, i);
        block.Turn();
        Store(block, i, j);
    }
    // The elements of a block above the diagonal belong to other rows: they come from its
    // transpose.
    template <class L>
    CORVALE_INLINE void Diagonal(std::size_t i) const noexcept {
        Block<L> block = Load<L>(i, i);
        Block<L> turned = block;
        turned.Turn();
        if constexpr (L::kLanes == 4) {
            block.v1 = __builtin_shufflevector(block.v1, turned.v1, 0, 5, 6, 7);
            block.v2 = __builtin_shufflevector(block.v2, turned.v2, 0, 1, 6, 7);
        }
        block.v0 = turned.v0;
        Store(block, i, i);
    }
    void CopyRows(std::size_t n) const noexcept {
        for (std::size_t i = 0; i < n; ++i)
            std::memmove(square + i * columnStride, packed + RowStart(i), (i + 1) * sizeof(double));
    }
};

/// Walks the lower triangle of order n >= kBlockedOrder in stripes of columns, and each stripe in
/// rows of blocks. Blocks are aligned to the last row and column; where the first rows or columns
/// do not fill a block, the first one overlaps the next.
template <class L, class Way>
CORVALE_INLINE void WalkTriangle(const Way& way, std::size_t n, std::size_t width) noexcept {
    constexpr std::size_t step = L::kLanes;
    const std::size_t unfilled = n % step;
    if (unfilled != 0) {
        way.template Diagonal<L>(0);
        way.template Below<L>(step, 0);
    }
    std::size_t stripe = 0;
    for (std::size_t end = unfilled + width; stripe < n; stripe = end, end += width)
        for (std::size_t i = std::max(stripe, unfilled); i < n; i += step) {
            const std::size_t columnEnd = i < step ? 0 : std::min(i, end);
            for (std::size_t j = stripe; j < columnEnd; j = j < unfilled ? unfilled : j + step)
                way.template Below<L>(i, j);
            if (i < end) way.template Diagonal<L>(i);
        }
}

template <class L>
struct PackByColumns {
    CORVALE_INLINE void operator()(Pack way, std::size_t n) const noexcept {
        WalkTriangle<L>(way, n, StripeWidth(way.columnStride));
    }
};
template <class L>
struct UnpackByColumns {
    CORVALE_INLINE void operator()(Unpack way, std::size_t n) const noexcept {
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
        return OnBestPath<PackByColumns, FourLanes, TwoLanes>(
            Pack{square.Data(), static_cast<std::size_t>(square.ColumnStride()), packed.Data()},
            static_cast<std::size_t>(n));

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) packed(++position) = square(i, j);
}

void Lta2SqrMtx(VectorView<const double> packed, MatrixView<double> square) noexcept {
    const std::int32_t n = SizeOfSqrMtx(packed);
    if (n == 0 || square.Rows() < n || square.Columns() < n) return;
    if (WorthBlocks(packed, square.RowStride(), square.ColumnStride(), n)) {
        const auto stride = static_cast<std::size_t>(square.ColumnStride());
        const Unpack way{packed.Data(), square.Data(), stride, SharePlaces(stride)};
        if (way.areRowsCopied) way.CopyRows(static_cast<std::size_t>(n));
        return OnBestPath<UnpackByColumns, FourLanes, TwoLanes>(way, static_cast<std::size_t>(n));
    }

    std::int32_t position = 0;
    for (std::int32_t i = 1; i <= n; ++i)
        for (std::int32_t j = 1; j <= i; ++j) square(i, j) = square(j, i) = packed(++position);
}

}  // namespace corvale::GenFunctions
