// Many matrices, rotations and angles in one call, bit for bit as one by one: series of up to nine
// matrices of order 18 and below, forwards and backwards, with any strides, results in place.
#include "MatrixInputs.hpp"

#include "reference/Cholesky.hpp"
#include "reference/MatrixInversion.hpp"
#include "reference/Vectors.hpp"

#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/GenFunctions.hpp>

#include <algorithm>

namespace corvale::fuzz {
namespace series {

using namespace GenFunctions;
using reference::Matrix;

constexpr std::size_t kMostOrder = 18, kMostCount = 9;
using Guarded = GuardedMemory<8 * kMostCount * 4 * (kMostOrder + 2) * (kMostOrder + 2)>;
thread_local Guarded gFrom, gTo;

// Matrices in one memory, side by side or with a gap, forwards or backwards, each with any strides.
class Series {
  public:
    Series(Guarded& guarded, std::int32_t rows, std::int32_t columns, std::int32_t count,
           Choices& in) {
        const std::ptrdiff_t gap = 1 + in.Byte() % 2;
        std::ptrdiff_t row = gap, column = gap * (rows + in.Byte() % 2);
        if (in.Flip()) column = gap, row = gap * (columns + in.Byte() % 2);
        const std::ptrdiff_t size = (rows - 1) * row + (columns - 1) * column + 1;
        std::ptrdiff_t distance = size + in.Byte() % 3;
        size_ = static_cast<std::size_t>((count - 1) * distance + size);
        memory_ = guarded.Of<double>(size_);
        std::fill_n(memory_, size_, kAround);
        double* first = memory_;
        if (in.Flip()) first += (rows - 1) * row, row = -row;
        if (in.Flip()) first += (columns - 1) * column, column = -column;
        if (in.Flip()) first += (count - 1) * distance, distance = -distance;
        view_ = {MatrixView<double>(first, rows, columns, row, column), distance, count};
    }
    [[nodiscard]] const MatrixSeries<double>& View() const { return view_; }
    [[nodiscard]] VectorSeries<double> Vectors() const {
        const MatrixView<double>& first = view_.First();
        return {VectorView<double>(first.Data(), first.Rows(), first.RowStride()), view_.Distance(),
                view_.Count()};
    }
    void Fill(std::int32_t number, const Matrix& from) const {
        ForEach(number, [next = from.begin()](double& element) mutable { element = *next++; });
    }
    /// Takes what is expected out of the memory, so that what is left lies between the elements.
    void Expect(std::int32_t number, const Matrix& wanted, const char* what) const {
        ForEach(number, [&, next = wanted.begin()](double& element) mutable {
            ExpectSame(element, *next++, what);
            element = kAround;
        });
    }
    void ExpectNothingElse() const {
        for (std::size_t i = 0; i < size_; ++i) ExpectSame(memory_[i], kAround, "between matrices");
    }

  private:
    template <class Action>
    void ForEach(std::int32_t number, Action action) const {
        const MatrixView<double> matrix = view_(number);
        for (std::int32_t j = 1; j <= matrix.Columns(); ++j)
            for (std::int32_t i = 1; i <= matrix.Rows(); ++i) action(matrix(i, j));
    }

    double* memory_;
    std::size_t size_;
    MatrixSeries<double> view_;
};

// How many, and whether the results lie on what they are made of.
struct SeriesChoice {
    std::int32_t count;
    bool isInPlace;
};

void SolveEach(Choices& in, std::int32_t n, bool hasRoots) {
    static thread_local Guarded gRight, gSolution;
    const SeriesChoice choice{1 + in.Byte() % 9, in.Flip()};
    const Series a(gFrom, n, n, choice.count, in), b(gRight, n, 1, choice.count, in);
    const Series ownInverse(gTo, n, n, choice.count, in), ownX(gSolution, n, 1, choice.count, in);
    const Series& inverse = choice.isInPlace ? a : ownInverse;
    const Series& x = choice.isInPlace ? b : ownX;
    const Choices changes = in;
    std::vector<Matrix> wanted, wantedX;
    for (std::int32_t number = 1; number <= choice.count; ++number) {
        Matrix given = AnyMatrix(in, n, number % 2 == 0 ? changes : Choices(nullptr, 0));
        const Matrix right = reference::RandomMatrix(n, 1, n + number);
        Matrix& result = wanted.emplace_back(given.size());
        Matrix& solution = wantedX.emplace_back(right.size());
        (hasRoots ? reference::Cholesky : reference::Cholesky2)(given.data(), right.data(), n,
                                                                result.data(), solution.data());
        const auto order = static_cast<std::size_t>(n);
        for (std::size_t j = 0; j < order; ++j)  // what lies below the diagonal has no influence
            std::fill_n(given.begin() + static_cast<std::ptrdiff_t>(j * order + j + 1),
                        order - j - 1, reference::kNaN);
        a.Fill(number, given);
        b.Fill(number, right);
    }
    (hasRoots ? CholeskyEach : Cholesky2Each)(a.View(), b.Vectors(), inverse.View(), x.Vectors());
    for (std::int32_t number = 1; number <= choice.count; ++number) {
        const auto place = static_cast<std::size_t>(number) - 1;
        inverse.Expect(number, wanted[place],
                       hasRoots ? "CholeskyEach, inverse" : "Cholesky2Each, inverse");
        x.Expect(number, wantedX[place],
                 hasRoots ? "CholeskyEach, solution" : "Cholesky2Each, solution");
    }
    inverse.ExpectNothingElse();
    x.ExpectNothingElse();
}

void InvertEach(Choices& in, std::int32_t n, bool pivots) {
    const SeriesChoice choice{1 + in.Byte() % 9, in.Flip()};
    const Series a(gFrom, n, n, choice.count, in), own(gTo, n, n, choice.count, in);
    const Series& result = choice.isInPlace ? a : own;
    const Choices changes = in;
    std::vector<Matrix> wanted;
    for (std::int32_t number = 1; number <= choice.count; ++number) {
        const Matrix given = AnyMatrix(in, n, number % 2 == 0 ? changes : Choices(nullptr, 0));
        Matrix& inverse = wanted.emplace_back(given.size());
        (pivots ? reference::MtxInv : reference::MInv)(given.data(), n, inverse.data());
        a.Fill(number, given);
    }
    (pivots ? MtxInvEach : MInvEach)(a.View(), result.View());
    for (std::int32_t number = 1; number <= choice.count; ++number)
        result.Expect(number, wanted[static_cast<std::size_t>(number) - 1],
                      pivots ? "MtxInvEach" : "MInvEach");
    result.ExpectNothingElse();
}

void Rotations(Choices& in) {
    constexpr std::int32_t count = 5;
    Vector3 vectors[count], axes[count], turned[count];
    double angles[count], sines[count], cosines[count];
    for (std::size_t i = 0; i < std::size_t{count}; ++i) {
        for (double& element : vectors[i]) element = in.Real();
        for (double& element : axes[i]) element = in.Real();
        angles[i] = in.Real();
    }
    RodriguesRotEach({vectors[0].data(), 3, count}, {angles, count}, {axes[0].data(), 3, count},
                     {turned[0].data(), 3, count});
    Elementary::SinCosEach({angles, count}, {sines + count - 1, count, -1}, {cosines, count});
    for (std::size_t i = 0; i < std::size_t{count}; ++i) {
        const Vector3 wanted = reference::RodriguesRot(vectors[i], angles[i], axes[i]);
        for (std::size_t axis = 0; axis < 3; ++axis)
            ExpectSame(turned[i][axis], wanted[axis], "RodriguesRotEach");
        ExpectSame(sines[count - 1 - i], Elementary::Sin(angles[i]), "SinCosEach, sine");
        ExpectSame(cosines[i], Elementary::Cos(angles[i]), "SinCosEach, cosine");
    }
}

}  // namespace series

void Series(Choices in) {
    using namespace series;
    const std::size_t kind = in.Below(5);
    const std::int32_t n = 1 + in.Byte() % std::int32_t{kMostOrder};
    if (kind < 2) return SolveEach(in, n, kind == 0);
    if (kind < 4) return InvertEach(in, n, kind == 2);
    Rotations(in);
}

}  // namespace corvale::fuzz
