// A symmetric matrix packed, solved and inverted; a general one inverted through a view.
#include <corvale/numeric/Cholesky.hpp>
#include <corvale/numeric/MatrixInversion.hpp>
#include <corvale/numeric/PackedSymmetric.hpp>

#include <array>
#include <cstdio>

namespace gen = corvale::GenFunctions;
using View = gen::MatrixView<double>;

static void Print(const char* name, gen::MatrixView<const double> m) {
    std::printf("%s\n", name);
    for (std::int32_t i = 1; i <= m.Rows(); ++i) {
        for (std::int32_t j = 1; j <= m.Columns(); ++j) std::printf(" %8.4f", m(i, j));
        std::printf("\n");
    }
}

int main() {
    // [packed]
    std::array<double, 6> packed = {4.0, 2.0, 5.0, 0.0, 1.0, 3.0};  // rows of the lower triangle
    std::array<double, 9> square{};
    const View a(square.data(), 3, 3);
    gen::Lta2SqrMtx(gen::VectorView<double>(packed.data(), 6), a);
    Print("covariance", a);
    // [packed]

    // [cholesky]
    const std::array<double, 3> b = {8.0, 15.0, 11.0};
    std::array<double, 3> x{};
    std::array<double, 9> inverse{};
    gen::Cholesky(square.data(), b.data(), 3, inverse.data(), x.data());
    std::printf("solution\n %8.4f %8.4f %8.4f\n", x[0], x[1], x[2]);
    Print("inverse", View(inverse.data(), 3, 3));
    // [cholesky]

    // [views]
    std::array<double, 4> rows = {0.0, 2.0, 4.0, 8.0};  // row by row, as C arrays lie
    std::array<double, 4> result{};
    gen::MtxInv(View(rows.data(), 2, 2, 2, 1), View(result.data(), 2, 2, 2, 1));
    Print("inverse of a row-major matrix", View(result.data(), 2, 2, 2, 1));
    // [views]
    return 0;
}
