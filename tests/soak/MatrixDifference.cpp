// Compares the matrix procedures with the literal loops, bit for bit, over kinds of matrices,
// orders and strides. Needs no test framework, so that it also runs under an emulator.
//
// Usage: matrix_difference LAST [ORDER...]
// All orders up to LAST with every kind of matrix, then each ORDER with the first kinds alone.
// Prints what differs; ends with 0 if nothing does.
#include <corvale/numeric/GenFunctions.hpp>

#include "Bits.hpp"
#include "literal/LiteralMatrices.hpp"
#include "literal/MatrixKinds.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace corvale {
namespace {

using namespace GenFunctions;
using test::Bits;
using test::Matrix;

long gCompared = 0, gDifferent = 0;

void Compare(const Matrix& got, const Matrix& wanted, const std::string& what) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        ++gCompared;
        if (Bits(got[i]) == Bits(wanted[i])) continue;
        if (++gDifferent <= 20)
            std::printf("%s: element %zu is %a, not %a\n", what.c_str(), i, got[i], wanted[i]);
        return;
    }
}

using Solver = void (*)(const double*, const double*, std::int32_t, double*, double*) noexcept;
using LiteralSolver = void (*)(const double*, const double*, std::int32_t, double*, double*);

void CompareSolvers(Solver solve, LiteralSolver literal, const Matrix& a, std::int32_t n,
                    const std::string& what) {
    const Matrix b = test::RandomMatrix(n, 1, n);
    Matrix inverse(a.size(), -1.0), x(b.size(), -1.0), wantedInverse(a.size()), wantedX(b.size());
    literal(a.data(), b.data(), n, wantedInverse.data(), wantedX.data());
    Matrix poisoned = a;  // what lies below the diagonal has no influence
    for (std::int32_t j = 0; j < n; ++j)
        for (std::int32_t i = j + 1; i < n; ++i)
            poisoned[static_cast<std::size_t>(j) * static_cast<std::size_t>(n) +
                     static_cast<std::size_t>(i)] = test::kNaN;
    solve(poisoned.data(), b.data(), n, inverse.data(), x.data());
    Compare(inverse, wantedInverse, what + " inverse");
    Compare(x, wantedX, what + " solution");
}

/// A matrix in memory with any strides, surrounded by elements that must not change.
struct Strided {
    Strided(std::int32_t n, std::ptrdiff_t rowStride, std::ptrdiff_t columnStride)
        : memory(static_cast<std::size_t>(2 * Reach(n, rowStride, columnStride) + 1), kAround),
          view(memory.data() + Reach(n, rowStride, columnStride), n, n, rowStride, columnStride) {}
    static std::ptrdiff_t Reach(std::int32_t n, std::ptrdiff_t rows, std::ptrdiff_t columns) {
        return n * (std::abs(rows) + std::abs(columns));
    }
    Matrix Contents() const {
        Matrix contents;
        for (std::int32_t j = 1; j <= view.Columns(); ++j)
            for (std::int32_t i = 1; i <= view.Rows(); ++i) contents.push_back(view(i, j));
        return contents;
    }
    void Fill(const Matrix& from) {
        auto next = from.begin();
        for (std::int32_t j = 1; j <= view.Columns(); ++j)
            for (std::int32_t i = 1; i <= view.Rows(); ++i) view(i, j) = *next++;
    }
    auto Untouched() const { return std::count(memory.begin(), memory.end(), kAround); }

    static constexpr double kAround = 0x1.23456789abcdep+77;
    Matrix memory;
    MatrixView<double> view;
};

std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> Strides(std::int32_t n) {
    return {{1, n}, {n, 1}, {1, n + 3}, {-1, n}, {1, -n}, {-1, -n}, {3, 3 * n}, {-n - 1, -1}};
}

using Inverter = void (*)(MatrixView<const double>, MatrixView<double>) noexcept;
using LiteralInverter = void (*)(const double*, std::int32_t, double*);

void CompareInverters(Inverter invert, LiteralInverter literal, const Matrix& a, std::int32_t n,
                      bool allStrides, const std::string& what) {
    Matrix wanted(a.size()), got(a.size(), -1.0);
    literal(a.data(), n, wanted.data());
    invert(MatrixView<const double>(a.data(), n, n), MatrixView<double>(got.data(), n, n));
    Compare(got, wanted, what);
    if (!allStrides) return;
    for (const auto& [inRow, inColumn] : Strides(n)) {
        Strided in(n, inRow, inColumn), out(n, inColumn, -inRow);
        in.Fill(a);
        invert(in.view, out.view);
        Compare(out.Contents(), wanted, what + " strided");
        Compare(in.Contents(), a, what + " input kept");
        const auto around = static_cast<std::ptrdiff_t>(out.memory.size() - a.size());
        if (out.Untouched() < around) ++gDifferent, std::printf("%s writes around\n", what.c_str());
        invert(in.view, in.view);
        Compare(in.Contents(), wanted, what + " in place");
    }
}

void ComparePacked(const Matrix& a, std::int32_t n) {
    const std::string what = "packed order " + std::to_string(n);
    const std::int32_t length = SizeOfLta(MatrixView<const double>(a.data(), n, n));
    const auto count = static_cast<std::size_t>(length);
    Matrix wanted(count), got(count), square(a.size());
    literal::SqrMtx2Lta(a.data(), n, wanted.data());
    literal::Lta2SqrMtx(wanted.data(), n, square.data());
    for (const auto& [rowStride, columnStride] : Strides(n))
        for (const std::ptrdiff_t stride : {1, -1, 3}) {
            Matrix memory(3 * count);
            VectorView<double> packed(memory.data() + (stride < 0 ? count - 1 : 0), length, stride);
            Strided in(n, rowStride, columnStride), out(n, rowStride, columnStride);
            in.Fill(a);
            SqrMtx2Lta(in.view, packed);
            for (std::int32_t i = 1; i <= length; ++i)
                got[static_cast<std::size_t>(i) - 1] = packed(i);
            Compare(got, wanted, what);
            Lta2SqrMtx(packed, out.view);
            Compare(out.Contents(), square, what + " unpacked");
        }
}

void CompareOrder(std::int32_t n, std::size_t kinds, bool allStrides) {
    for (std::size_t kind = 0; kind < kinds; ++kind) {
        const auto& [name, make] = test::kMatrixKinds[kind];
        const Matrix a = make(n);
        const std::string what = " order " + std::to_string(n) + " " + name;
        CompareSolvers(&Cholesky, &literal::Cholesky, a, n, "Cholesky" + what);
        CompareSolvers(&Cholesky2, &literal::Cholesky2, a, n, "Cholesky2" + what);
        CompareInverters(&MtxInv, &literal::MtxInv, a, n, allStrides && kind == 1, "MtxInv" + what);
        CompareInverters(&MInv, &literal::MInv, a, n, allStrides && kind == 1, "MInv" + what);
    }
    ComparePacked(test::RandomMatrix(n, n, n), n);
}

}  // namespace
}  // namespace corvale

int main(int argc, char** argv) {
    const std::int32_t last = argc > 1 ? std::atoi(argv[1]) : 40;
    for (std::int32_t n = 1; n <= last; ++n)
        corvale::CompareOrder(n, std::size(corvale::test::kMatrixKinds), true);
    for (int i = 2; i < argc; ++i) corvale::CompareOrder(std::atoi(argv[i]), 2, false);
    std::printf("%ld elements compared, %ld differences\n", corvale::gCompared,
                corvale::gDifferent);
    return corvale::gDifferent == 0 ? 0 : 1;
}
