// Series of matrices against the single procedures: every order up to the widest lanes and beyond,
// matrices of all kinds side by side, any signs of the steps, results in place.
#include <corvale/numeric/GenFunctions.hpp>

#include "SameBits.hpp"
#include "reference/inputs/MatrixKinds.hpp"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <string>

namespace corvale::GenFunctions {
namespace {

using reference::Matrix;
using test::Bits;
using test::ExpectSameBits;

// Matrices of one order in one memory, with any signs of the steps; between them and their elements
// nothing is written.
struct Steps {
    std::ptrdiff_t row, column, distance;  // 1 or -1
    bool isByRows;
};
constexpr Steps kSteps[] = {{1, 1, 1, false},   {1, 1, 1, true},   {-1, 1, 1, false},
                            {1, -1, -1, true},  {-1, -1, 1, true}, {1, 1, -1, false},
                            {-1, -1, -1, false}};

struct Fleet {
    Fleet(std::int32_t rows, std::int32_t columns, std::int32_t count, const Steps& steps,
          std::ptrdiff_t gap)
        : memory(static_cast<std::size_t>((gap + rows) * (gap + columns) * count), -7.0) {
        const std::ptrdiff_t row = steps.isByRows ? columns + gap : 1;
        const std::ptrdiff_t column = steps.isByRows ? 1 : rows + gap;
        const std::ptrdiff_t distance = (gap + rows) * (gap + columns);
        double* first = memory.data();
        if (steps.row < 0) first += (rows - 1) * row;
        if (steps.column < 0) first += (columns - 1) * column;
        if (steps.distance < 0) first += (count - 1) * distance;
        matrices = {
            MatrixView<double>(first, rows, columns, steps.row * row, steps.column * column),
            steps.distance * distance, count};
        vectors = {VectorView<double>(first, rows, steps.row * row), steps.distance * distance,
                   count};
    }
    Matrix memory;
    MatrixSeries<double> matrices;
    VectorSeries<double> vectors;
};

void Copy(const Matrix& from, const MatrixView<double>& to) {
    for (std::int32_t j = 1; j <= to.Columns(); ++j)
        for (std::int32_t i = 1; i <= to.Rows(); ++i)
            to(i, j) = from[static_cast<std::size_t>((j - 1) * to.Rows() + i - 1)];
}

// All kinds of matrices, in an order in which each comes to lie beside each.
std::vector<Matrix> AllKinds(std::int32_t n) {
    std::vector<Matrix> kinds;
    for (const auto& kind : reference::kMatrixKinds) kinds.push_back(kind.make(n));
    for (std::int32_t i = 0; i < 30; ++i) {
        kinds.push_back(reference::RandomMatrix(n, n, 100 * n + i));
        if (i % 2 == 0)  // small whole numbers: ties and singular ones
            for (double& value : kinds.back()) value = std::nearbyint(2.0 * value);
    }
    return kinds;
}

class OneByOne {
  public:
    OneByOne(std::int32_t n, std::int32_t count, const Steps& steps, std::ptrdiff_t gap)
        : n_(n), count_(count), a_(n, n, count, steps, gap), b_(n, 1, count, steps, gap) {
        const std::vector<Matrix> kinds = AllKinds(n);
        for (std::int32_t i = 1; i <= count; ++i) {
            const auto kind = static_cast<std::size_t>(i * 7 + i * i / 5 + count) % kinds.size();
            given_.push_back(kinds[kind]);
            right_.push_back(reference::RandomMatrix(n, 1, i));
            Copy(given_.back(), a_.matrices(i));
            Copy(right_.back(), b_.matrices(i));
        }
    }

    template <auto solveEach, auto solve>
    void CompareSolutions(const Steps& steps, const char* name) {
        Fleet inverse(n_, n_, count_, steps, 1), x(n_, 1, count_, steps, 1);
        Fleet plain(n_, n_, count_, steps, 1), plainX(n_, 1, count_, steps, 1);
        Matrix result(given_[0].size()), solution(right_[0].size());
        for (std::int32_t i = 1; i <= count_; ++i) {
            const auto place = static_cast<std::size_t>(i) - 1;
            solve(given_[place].data(), right_[place].data(), n_, result.data(), solution.data());
            Copy(result, plain.matrices(i));
            Copy(solution, plainX.matrices(i));
        }
        solveEach(a_.matrices, b_.vectors, inverse.matrices, x.vectors);
        ExpectSameBits(inverse.memory, plain.memory, Say(name));
        ExpectSameBits(x.memory, plainX.memory, Say(name) + ", solution");
    }

    template <auto invertEach, auto invert>
    void CompareInverses(const Steps& steps, const char* name) {
        Fleet result(n_, n_, count_, steps, 1), plain(n_, n_, count_, steps, 1);
        for (std::int32_t i = 1; i <= count_; ++i) invert(a_.matrices(i), plain.matrices(i));
        invertEach(a_.matrices, result.matrices);
        ExpectSameBits(result.memory, plain.memory, Say(name));
        const Matrix before = a_.memory;
        invertEach(a_.matrices, a_.matrices);
        for (std::int32_t i = 1; i <= count_; ++i)
            for (std::int32_t j = 1; j <= n_; ++j)
                for (std::int32_t k = 1; k <= n_; ++k)
                    ASSERT_EQ(Bits(a_.matrices(i)(j, k)), Bits(plain.matrices(i)(j, k)))
                        << Say(name) << " in place";
        std::copy(before.begin(), before.end(), a_.memory.begin());
    }

  private:
    [[nodiscard]] std::string Say(const char* name) const {
        return std::string(name) + " of " + std::to_string(count_) + ", order " +
               std::to_string(n_);
    }
    std::int32_t n_, count_;
    Fleet a_, b_;
    std::vector<Matrix> given_, right_;
};

TEST(Each, AgreesWithTheSingleProcedures) {
    for (std::int32_t n = 1; n <= 18; ++n)
        for (const std::int32_t count : {1, 2, 3, 4, 5, 6, 7, 8, 9, test::Times(1000)})
            for (std::size_t i = 0; i < std::size(kSteps); ++i) {
                const Steps &from = kSteps[i], &to = kSteps[(i * 2 + 1) % std::size(kSteps)];
                if (count > 9 && i > 1) continue;
                OneByOne one(n, count, from, static_cast<std::ptrdiff_t>(i % 2));
                one.CompareSolutions<CholeskyEach, Cholesky>(to, "CholeskyEach");
                one.CompareSolutions<Cholesky2Each, Cholesky2>(to, "Cholesky2Each");
                one.CompareInverses<MtxInvEach, MtxInv>(to, "MtxInvEach");
                one.CompareInverses<MInvEach, MInv>(to, "MInvEach");
            }
}

// One matrix read by all, and none written where something does not fit.
TEST(Each, TakesDistanceZeroAndWritesNothingWhereItDoesNotFit) {
    const Matrix a{4, 2, 2, 3}, b{1, 2};
    Matrix inverse(12, -1.0), x(6, -1.0), one(4), solution(2);
    const MatrixSeries<const double> same({a.data(), 2, 2}, 0, 3);
    const VectorSeries<const double> right({b.data(), 2}, 0, 3);
    const MatrixSeries<double> inverses(inverse.data(), 2, 2, 3), fewer(inverse.data(), 2, 2, 2),
        smaller(inverse.data(), 2, 1, 3);
    const VectorSeries<double> solutions(x.data(), 2, 3), shorter(x.data(), 1, 3);
    for (const auto each : {&CholeskyEach, &Cholesky2Each}) {
        each(same, right, fewer, solutions);
        each(same, right, smaller, solutions);
        each(same, right, inverses, shorter);
        each({a.data(), 1, 2, 2}, right, inverses, solutions);
        each(same, {b.data(), 1, 2}, inverses, solutions);
        each({}, {}, {}, {});
        each({nullptr, 2, 2, 0}, {nullptr, 2, 0}, {nullptr, 2, 2, -1}, {nullptr, 2, -1});
    }
    for (const auto each : {&MtxInvEach, &MInvEach}) {
        each(same, fewer);
        each(same, smaller);
        each({}, {});
        each({nullptr, 2, 2, 0}, {nullptr, 2, 2, 0});
    }
    EXPECT_EQ(inverse, Matrix(12, -1.0));
    EXPECT_EQ(x, Matrix(6, -1.0));
    CholeskyEach(same, right, inverses, solutions);
    Cholesky(a.data(), b.data(), 2, one.data(), solution.data());
    for (std::int32_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(inverses(i)(1, 2), one[2]) << i;
        EXPECT_EQ(solutions(i)(2), solution[1]) << i;
    }
    MtxInvEach({a.data(), 1, 3, 1}, {inverse.data(), 1, 3, 1});
    EXPECT_EQ(inverse[2], 2.0) << "not square: a copy";
}

}  // namespace
}  // namespace corvale::GenFunctions
