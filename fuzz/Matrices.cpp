// Packed forms, Cholesky and inversion, bit for bit against plain loops: matrices of every kind with
// any elements changed, all orders to 8, many to 40 and some to 140, strides of any sign, results in place.
#include "MatrixInputs.hpp"

#include "reference/Cholesky.hpp"
#include "reference/MatrixInversion.hpp"
#include "reference/PackedSymmetric.hpp"

#include <corvale/numeric/GenFunctions.hpp>

#include <algorithm>

namespace corvale::fuzz {
namespace matrices {

using namespace GenFunctions;
using reference::Matrix;

void ExpectElements(const double* got, const Matrix& wanted, const char* what) {
    for (std::size_t i = 0; i < wanted.size(); ++i) ExpectSame(got[i], wanted[i], what);
}

// Memory for the largest matrix with the widest strides.
constexpr std::size_t kMost = 140;  // the largest order
using GuardedMatrix = GuardedMemory<16 * (kMost + 3) * (kMost + 3) * 8>;
thread_local GuardedMatrix gFromMemory, gToMemory;

// A matrix with any strides, in guarded memory not one element larger than they need.
class Strided {
  public:
    Strided(GuardedMatrix& guarded, std::int32_t rows, std::int32_t columns, Choices& in) {
        const std::ptrdiff_t gap = 1 + in.Byte() % 3;
        std::ptrdiff_t row = gap, column = gap * (rows + in.Byte() % 3);
        if (in.Flip()) column = gap, row = gap * (columns + in.Byte() % 3);
        size_ = static_cast<std::size_t>((rows - 1) * row + (columns - 1) * column + 1);
        memory_ = guarded.Of<double>(size_);
        std::fill_n(memory_, size_, kAround);
        double* first = memory_;
        if (in.Flip()) first += (rows - 1) * row, row = -row;
        if (in.Flip()) first += (columns - 1) * column, column = -column;
        view_ = {first, rows, columns, row, column};
    }
    [[nodiscard]] MatrixView<double> View() const { return view_; }

    template <class Action>
    void ForEach(Action action) const {
        for (std::int32_t j = 1; j <= view_.Columns(); ++j)
            for (std::int32_t i = 1; i <= view_.Rows(); ++i) action(view_(i, j));
    }
    void Fill(const Matrix& from) const {
        ForEach([next = from.begin()](double& element) mutable { element = *next++; });
    }
    // Its elements and, in between, nothing changed. For the last look at it.
    void Expect(const Matrix& wanted, const char* what) const {
        ForEach([&, next = wanted.begin()](double& element) mutable {
            ExpectSame(element, *next++, what);
            element = kAround;
        });
        for (std::size_t i = 0; i < size_; ++i) ExpectSame(memory_[i], kAround, "between elements");
    }

  private:
    double* memory_;
    std::size_t size_;
    MatrixView<double> view_;
};

void Solve(Choices& in, std::int32_t n, bool hasRoots) {
    static thread_local GuardedMemory<8 * kMost * kMost> aMemory, inverseMemory;
    static thread_local GuardedMemory<8 * kMost> bMemory, xMemory;
    const bool isInPlace = in.Flip();
    const Matrix a = AnyMatrix(in, n, in), b = reference::RandomMatrix(n, 1, n);
    Matrix inverse(a.size()), x(b.size());
    (hasRoots ? reference::Cholesky : reference::Cholesky2)(a.data(), b.data(), n, inverse.data(),
                                                            x.data());
    auto* const given = aMemory.Of<double>(a.size());
    auto* const right = bMemory.Of<double>(b.size());
    std::copy(a.begin(), a.end(), given);
    std::copy(b.begin(), b.end(), right);
    const auto order = static_cast<std::size_t>(n);
    for (std::size_t j = 0; j < order; ++j)  // what lies below the diagonal has no influence
        std::fill(given + j * order + j + 1, given + (j + 1) * order, reference::kNaN);
    double* const result = isInPlace ? given : inverseMemory.Of<double>(a.size());
    double* const solution = isInPlace ? right : xMemory.Of<double>(b.size());
    (hasRoots ? GenFunctions::Cholesky : GenFunctions::Cholesky2)(given, right, n, result,
                                                                  solution);
    ExpectElements(result, inverse, hasRoots ? "Cholesky, inverse" : "Cholesky2, inverse");
    ExpectElements(solution, x, hasRoots ? "Cholesky, solution" : "Cholesky2, solution");
}

void Invert(Choices& in, std::int32_t n, bool pivots) {
    const bool isInPlace = in.Flip();
    const Strided from(gFromMemory, n, n, in);
    const Matrix a = AnyMatrix(in, n, in);
    Matrix wanted(a.size());
    (pivots ? reference::MtxInv : reference::MInv)(a.data(), n, wanted.data());
    from.Fill(a);
    const auto invert = pivots ? GenFunctions::MtxInv : GenFunctions::MInv;
    if (isInPlace) {
        invert(from.View(), from.View());
        return from.Expect(wanted, "an inverse in place");
    }
    const Strided result(gToMemory, n, n, in);
    invert(from.View(), result.View());
    result.Expect(wanted, pivots ? "MtxInv" : "MInv");
    from.Expect(a, "the matrix that was inverted");
}

void CopyOblong(Choices& in, std::int32_t rows, bool pivots) {
    const auto columns = static_cast<std::int32_t>(1 + in.Below(12));
    if (columns == rows) return;
    const Strided from(gFromMemory, rows, columns, in), result(gToMemory, rows, columns, in);
    const Matrix a = reference::RandomMatrix(rows, columns, rows);
    from.Fill(a);
    (pivots ? GenFunctions::MtxInv : GenFunctions::MInv)(from.View(), result.View());
    result.Expect(pivots ? a : Matrix(a.size()), "what comes of a matrix that is not square");
}

void Pack(Choices& in, std::int32_t n) {
    static thread_local GuardedMemory<8 * 3 * kMost*(kMost + 1) / 2> guarded;
    const Strided from(gFromMemory, n, n, in), back(gToMemory, n, n, in);
    const std::ptrdiff_t stride = 1 + in.Byte() % 3;
    const Matrix a = AnyMatrix(in, n, in);
    from.Fill(a);
    const std::int32_t length = SizeOfLta(from.View());
    const auto count = static_cast<std::size_t>(length);
    ExpectSame(length, n * (n + 1) / 2, "SizeOfLta");
    const bool isTurned = in.Flip();
    const auto last = static_cast<std::ptrdiff_t>(count - 1) * stride;
    auto* const memory = guarded.Of<double>(static_cast<std::size_t>(last) + 1);
    const VectorView<double> packed(isTurned ? memory + last : memory, length,
                                    isTurned ? -stride : stride);
    Matrix wanted(count), square(a.size());
    reference::SqrMtx2Lta(a.data(), n, wanted.data());
    reference::Lta2SqrMtx(wanted.data(), n, square.data());
    SqrMtx2Lta(from.View(), packed);
    for (std::int32_t i = 1; i <= length; ++i)
        ExpectSame(packed(i), wanted[static_cast<std::size_t>(i) - 1], "SqrMtx2Lta");
    Lta2SqrMtx(packed, back.View());
    back.Expect(square, "Lta2SqrMtx");
    from.Expect(a, "the matrix that was packed");
}

// Sizes alone: views of any extent, over no memory.
void Sizes(std::int32_t extent) {
    const std::int64_t n = std::max(extent, 0), length = n * (n + 1) / 2;
    ExpectSame(SizeOfLta({nullptr, extent, extent}),
               static_cast<std::int32_t>(std::min<std::int64_t>(length, INT32_MAX)), "SizeOfLta");
    const std::int64_t order = SizeOfSqrMtx({nullptr, extent});
    Expect(order * (order + 1) / 2 <= n && n < (order + 1) * (order + 2) / 2, "SizeOfSqrMtx");
}

}  // namespace matrices

void Matrices(Choices in) {
    using namespace matrices;
    const std::size_t kind = in.Below(8);
    const std::uint8_t size = in.Byte();
    const std::int32_t n = 1 + (size < 192   ? size % 8
                                : size < 252 ? size % 40
                                             : in.Byte() % std::int32_t{kMost});
    if (kind < 2) return Solve(in, n, kind == 0);
    if (kind < 4) return Invert(in, n, kind == 2);
    if (kind < 6) return CopyOblong(in, n, kind == 4);
    if (kind == 6) return Pack(in, n);
    Sizes(in.Int32());
}

}  // namespace corvale::fuzz
