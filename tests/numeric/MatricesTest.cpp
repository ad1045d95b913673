// What the fuzz target, which compares with plain loops, does not see: large orders, small known
// results, bad shapes, missing memory, floating-point traps.
#include <corvale/numeric/GenFunctions.hpp>

#include "SameBits.hpp"
#include "reference/Cholesky.hpp"
#include "reference/MatrixInversion.hpp"
#include "reference/inputs/MatrixKinds.hpp"

#include <gtest/gtest.h>
#include <algorithm>
#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <new>
#include <string>

namespace {
bool gNoMemory = false;
}

// The library takes its scratch with this form alone.
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    const auto unit = static_cast<std::size_t>(alignment);
    if (gNoMemory) return nullptr;
    const std::size_t bytes = (size + unit - 1) / unit * unit;
    auto* words = static_cast<std::uint64_t*>(std::aligned_alloc(unit, bytes));
    // Signalling NaNs: a read of what was never written raises a trap.
    if (words != nullptr) std::fill_n(words, bytes / sizeof *words, 0x7ff0000000000001U);
    return words;
}
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(p);
}

namespace corvale::GenFunctions {
namespace {

using reference::Matrix;
using test::Bits;
using test::ExpectSameBits;

TEST(PackedSizes, AreExactOrSaturate) {
    struct Case {
        std::int32_t order, length;
        const char* why;
    };
    for (const auto& [order, length, why] :
         {Case{0, 0, "empty"}, Case{1, 1, "one element"}, Case{4, 10, "small"},
          Case{46340, 1073720970, "the last n n + n of 32 bits"},
          Case{46341, 1073767311, "the first beyond them"},
          Case{65535, 2147450880, "the last length of 32 bits"}}) {
        EXPECT_EQ(SizeOfLta(MatrixView<const double>(nullptr, order, 1)), length) << why;
        EXPECT_EQ(SizeOfSqrMtx(VectorView<const double>(nullptr, length)), order) << why;
        const std::int32_t before = std::max(order - 1, 0);
        EXPECT_EQ(SizeOfSqrMtx(VectorView<const double>(nullptr, length - 1)), before) << why;
    }
    EXPECT_EQ(SizeOfLta(MatrixView<const double>(nullptr, 65536, 1)), INT32_MAX);
    EXPECT_EQ(SizeOfLta(MatrixView<const double>(nullptr, -3, 1)), 0) << "no rows";
    EXPECT_EQ(SizeOfSqrMtx(VectorView<const double>(nullptr, INT32_MAX)), 65535);
}

TEST(Packed, GoesRowByRow) {
    Matrix packed{1, 2, 3, 4, 5, 6, 99, 98}, square(9, -1.0), again(8, 0.0);
    Lta2SqrMtx(VectorView<const double>(packed.data(), 8), MatrixView<double>(square.data(), 3, 3));
    EXPECT_EQ(square, (Matrix{1, 2, 4, 2, 3, 5, 4, 5, 6})) << "incomplete rows are ignored";
    square[3] = square[6] = square[7] = reference::kNaN;
    SqrMtx2Lta(MatrixView<const double>(square.data(), 3, 3), VectorView<double>(again.data(), 8));
    EXPECT_EQ(again, (Matrix{1, 2, 3, 4, 5, 6, 0, 0})) << "nothing above the diagonal is read";
}

TEST(Packed, MovesEveryBit) {
    const auto value = [](std::int32_t i, std::int32_t j) {  // arithmetic would change it
        return std::bit_cast<double>(
            0xfff4000000000123U +
            static_cast<std::uint64_t>(std::max(i, j) * 128 + std::min(i, j)));
    };
    for (const std::int32_t n : {2, 37, 64, 67}) {
        const std::int32_t stride = (n + 31) / 32 * 32;  // a multiple of 64 is walked otherwise
        const std::int32_t length = n * (n + 1) / 2;
        Matrix square(static_cast<std::size_t>(n * stride), 1.0), again(square);
        Matrix packed(static_cast<std::size_t>(length + 1), 2.0);
        const MatrixView<double> given(square.data(), n, n, 1, stride);
        const MatrixView<double> result(again.data(), n, n, 1, stride);
        for (std::int32_t j = 1; j <= n; ++j)
            for (std::int32_t i = j; i <= n; ++i) given(i, j) = value(i, j);
        SqrMtx2Lta(given, VectorView<double>(packed.data(), length));
        EXPECT_EQ(packed.back(), 2.0) << n << ": nothing behind is written";
        Lta2SqrMtx(VectorView<const double>(packed.data(), length), result);
        for (std::int32_t j = 1; j <= n; ++j)
            for (std::int32_t i = 1; i <= n; ++i)
                ASSERT_EQ(Bits(result(i, j)), Bits(value(i, j))) << n << ": " << i << ", " << j;
    }
}

TEST(Packed, WritesNothingWhereItDoesNotFit) {
    Matrix square(400, 1.0), packed(210, 2.0);
    for (const std::int32_t n : {3, 20}) {
        const std::int32_t length = n * (n + 1) / 2;
        SqrMtx2Lta(MatrixView<const double>(square.data(), n, n),
                   VectorView<double>(packed.data(), length - 1));
        SqrMtx2Lta(MatrixView<const double>(square.data(), n, n - 1),
                   VectorView<double>(packed.data(), length));
        Lta2SqrMtx(VectorView<const double>(packed.data(), length),
                   MatrixView<double>(square.data(), n, n - 1));
        Lta2SqrMtx(VectorView<const double>(packed.data(), length),
                   MatrixView<double>(square.data(), n - 1, n));
    }
    SqrMtx2Lta({}, {});
    Lta2SqrMtx({}, {});
    EXPECT_EQ(square, Matrix(400, 1.0));
    EXPECT_EQ(packed, Matrix(210, 2.0));
}

TEST(Inversion, KnownSmallMatrices) {
    struct Case {
        std::int32_t rows, columns;
        Matrix a, mtxInv, mInv;  // by columns
        const char* why;
    };
    const Case cases[] = {
        {1, 1, {4}, {0.25}, {0.25}, "one element"},
        {2, 2, {0, 1, 1, 0}, {0, 1, 1, 0}, {0, 0, 0, 0}, "needs pivoting"},
        {2, 2, {1, 2, 2, 4}, {0.5, 0.5, 0, -2}, {0, 0, 0, 0}, "singular: as far as reduced"},
        {2, 2, {2, -2, 1, -1}, {0.5, -1, -0.5, 0}, {0, 0, 0, 0}, "a tie goes to the first row"},
        {2, 2, {0, -0.0, 1, 2}, {0, -0.0, 1, 2}, {0, 0, 0, 0}, "zeros of either sign are no pivot"},
        {1, 1, {0x1p-1074}, {reference::kInfinity}, {reference::kInfinity}, "a subnormal pivot"},
        {1,
         1,
         {reference::kNaN},
         {reference::kNaN},
         {reference::kNaN},
         "a NaN: not chosen, but taken"},
        {2,
         2,
         {reference::kNaN, 2, 1, 0},
         {reference::kNaN, 0.5, reference::kNaN, 0},
         Matrix(4, reference::kNaN),
         "the row without NaN comes first, then only a NaN is left"},
        {2, 3, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, {0, 0, 0, 0, 0, 0}, "not square"},
    };
    for (const auto& [rows, columns, a, mtxInv, mInv, why] : cases) {
        Matrix result(a.size(), -1.0);
        MtxInv(MatrixView<const double>(a.data(), rows, columns),
               MatrixView<double>(result.data(), rows, columns));
        ExpectSameBits(result, mtxInv, why);
        MInv(MatrixView<const double>(a.data(), rows, columns),
             MatrixView<double>(result.data(), rows, columns));
        ExpectSameBits(result, mInv, why);
    }
}

TEST(Inversion, CopiesOverlappingShapesAndLeavesSmallResultsAlone) {
    Matrix a{1, 2, 3, 4, 5, 6, 7, 8};
    MtxInv(MatrixView<const double>(a.data(), 2, 3), MatrixView<double>(a.data() + 1, 2, 3));
    EXPECT_EQ(a, (Matrix{1, 1, 2, 3, 4, 5, 6, 8}));
    for (const auto invert : {&MtxInv, &MInv}) {
        invert(MatrixView<const double>(a.data(), 2, 2), MatrixView<double>(a.data() + 4, 2, 1));
        invert(MatrixView<const double>(a.data(), 2, 2), MatrixView<double>(a.data() + 4, 1, 2));
        for (const std::int32_t rows : {0, 2})
            invert(MatrixView<const double>(a.data(), rows, 2 - rows),
                   MatrixView<double>(a.data() + 4, 2, 2));
        invert({}, {});
    }
    EXPECT_EQ(a, (Matrix{1, 1, 2, 3, 4, 5, 6, 8}));
}

using Solver = void (*)(const double*, const double*, std::int32_t, double*, double*) noexcept;
constexpr Solver kSolvers[] = {&Cholesky, &Cholesky2};

TEST(Cholesky, KnownSmallSystems) {
    const Matrix indefinite{1, 2, 2, 1}, ones{1, 1};
    Matrix inverse(4), x(2);
    Cholesky2(indefinite.data(), ones.data(), 2, inverse.data(), x.data());
    EXPECT_DOUBLE_EQ(x[0], 1.0 / 3);
    EXPECT_DOUBLE_EQ(inverse[1], 2.0 / 3) << "the inverse, not only the solution";
    EXPECT_EQ(inverse[3], -1.0 / 3) << "1/D(2)";
    Cholesky(indefinite.data(), ones.data(), 2, inverse.data(), x.data());
    inverse.insert(inverse.end(), x.begin(), x.end());
    ExpectSameBits(inverse, Matrix(6, reference::kNaN), "not positive definite");
}

// U is finite and its inverse is not, or that is and its product with 1/D is not.
TEST(Cholesky, TakesInZerosWhereTheyMeetInfinities) {
    // The first diagonal elements, between two the one beside them, then the rest of the third row.
    // What follows gives ones in U, with signs by which infinite elements of W never cancel.
    const double bands[][6] = {{0x1p-1000, 0x1p-500, 0x1.0000000000001p+0, 0x1p+484, 1.0, 1.0},
                               {0x1p-1000, 0x1p-999, 0x1.0000008p-998, 0.0, 1.0, 0.0},
                               {0x1p-1074, 0x1p-537, 0x1.0000000000001p+0, 0x1p+474,
                                0x1.0000000000001p+1000, 0x1p+474}};  // with roots
    for (const std::size_t n : {4U, 14U, 260U})
        for (const auto& band : bands) {
            Matrix a(n * n, 0.0), got(n * n), wanted(n * n), x(n), wantedX(n);
            for (std::size_t k = 0; k < 5; ++k) a[(k + 1) / 2 * n + k / 2] = band[k];
            for (std::size_t j = 3; j < n; ++j) {
                a[j * n + 2] = band[5];
                for (std::size_t i = 3; i <= j; ++i)
                    a[j * n + i] = static_cast<double>(i < j ? i - 3 : i - 1);
            }
            const auto order = static_cast<std::int32_t>(n);
            for (const bool hasRoots : {false, true}) {
                kSolvers[hasRoots ? 0 : 1](a.data(), a.data(), order, got.data(), x.data());
                (hasRoots ? reference::Cholesky : reference::Cholesky2)(
                    a.data(), a.data(), order, wanted.data(), wantedX.data());
                ExpectSameBits(got, wanted, "inverse");
                ExpectSameBits(x, wantedX, "solution");
                (hasRoots ? CholeskyEach : Cholesky2Each)(
                    {a.data(), order, order, 1}, {a.data(), order, 1},
                    {got.data(), order, order, 1}, {x.data(), order, 1});
                ExpectSameBits(got, wanted, "inverse, of a series");
                ExpectSameBits(x, wantedX, "solution, of a series");
            }
        }
}

TEST(Cholesky, TouchesNothingBelowOrderOne) {
    for (const Solver solve : kSolvers) {
        solve(nullptr, nullptr, 0, nullptr, nullptr);
        solve(nullptr, nullptr, -1, nullptr, nullptr);
    }
}

// Beyond 256 and 512 columns another block begins.
TEST(Matrices, AgreeWithPlainLoopsAtLargeOrders) {
    for (const std::int32_t n : {270, test::Times(520)}) {
        const Matrix a = reference::RandomMatrix(n, n, n), spd = reference::PositiveDefinite(n);
        Matrix got(a.size()), wanted(a.size()), x(520), wantedX(520);
        MtxInv({a.data(), n, n}, {got.data(), n, n});
        reference::MtxInv(a.data(), n, wanted.data());
        ExpectSameBits(got, wanted, "MtxInv");
        Cholesky(spd.data(), a.data(), n, got.data(), x.data());
        reference::Cholesky(spd.data(), a.data(), n, wanted.data(), wantedX.data());
        ExpectSameBits(got, wanted, "Cholesky, inverse");
        ExpectSameBits(x, wantedX, "Cholesky, solution");
    }
}

TEST(Matrices, AreNaNWithoutMemory) {
    const std::int32_t n = 20;
    const Matrix a = reference::PositiveDefinite(n), nan(a.size(), reference::kNaN);
    Matrix result(a.size()), x(20);
    gNoMemory = true;
    for (const Solver solve : kSolvers) {
        solve(a.data(), a.data(), n, result.data(), x.data());
        ExpectSameBits(result, nan, "inverse");
        ExpectSameBits(x, Matrix(20, reference::kNaN), "solution");
    }
    for (const auto invert : {&MtxInv, &MInv}) {
        result.assign(result.size(), 0.0);
        invert(MatrixView<const double>(a.data(), n, n), MatrixView<double>(result.data(), n, n));
        ExpectSameBits(result, nan, "inverse of a general matrix");
    }
    CholeskyEach({a.data(), n, n, 1}, {a.data(), n, 1}, {result.data(), n, n, 1}, {x.data(), n, 1});
    ExpectSameBits(result, nan, "inverse, of a series");
    ExpectSameBits(x, Matrix(20, reference::kNaN), "solution, of a series");
    Cholesky(reference::PositiveDefinite(16).data(), a.data(), 16, result.data(), x.data());
    EXPECT_FALSE(std::isnan(x[0])) << "no memory is needed up to order 16";
    gNoMemory = false;
}

#if defined(__GLIBC__) && defined(__x86_64__)
TEST(Matrices, RaiseNoTrapOnGoodInput) {
    for (std::int32_t n = 1; n <= 70; ++n) {
        const Matrix a = reference::PositiveDefinite(n), b = reference::RandomMatrix(n, 1, n);
        Matrix result(a.size()), x(b.size());
        std::feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
        for (const Solver solve : kSolvers) solve(a.data(), b.data(), n, result.data(), x.data());
        for (const auto invert : {&MtxInv, &MInv})
            invert(MatrixView<const double>(a.data(), n, n),
                   MatrixView<double>(result.data(), n, n));
        for (const auto each : {&CholeskyEach, &Cholesky2Each})
            each({a.data(), n, n, 1}, {b.data(), n, 1}, {result.data(), n, n, 1}, {x.data(), n, 1});
        for (const auto each : {&MtxInvEach, &MInvEach})
            each({a.data(), n, n, 1}, {result.data(), n, n, 1});
        fedisableexcept(FE_ALL_EXCEPT);
    }
}
#endif

}  // namespace
}  // namespace corvale::GenFunctions
