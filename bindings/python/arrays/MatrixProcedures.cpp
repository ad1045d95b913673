#include <corvale/numeric/Cholesky.hpp>
#include <corvale/numeric/MatrixInversion.hpp>
#include <corvale/numeric/PackedSymmetric.hpp>

#include <limits>
#include <memory>
#include <new>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace gen = GenFunctions;

using Solver = void (*)(const double*, const double*, std::int32_t, double*, double*) noexcept;

/// Memory for `count` reals; without memory there is none.
class Scratch {
  public:
    explicit Scratch(std::size_t count) noexcept {
        if (count <= own_.size()) return;
        heap_.reset(new (std::nothrow) double[count]);
        data_ = heap_.get();
    }
    [[nodiscard]] double* Data() const noexcept { return data_; }

  private:
    // Two matrices and two vectors of order 12: small matrices come by the million.
    static constexpr std::size_t kOwn = 2 * 12 * 13;
    std::array<double, kOwn> own_;
    std::unique_ptr<double[]> heap_;
    double* data_ = own_.data();
};

bool IsColumnByColumn(MatrixView<const double> a) noexcept {
    return a.RowStride() == 1 && a.ColumnStride() == a.Rows();
}

// Symmetric results lie the same way row by row and column by column.
bool IsContiguous(MatrixView<double> a) noexcept {
    const bool isRowByRow = a.ColumnStride() == 1 && a.RowStride() == a.Rows();
    return isRowByRow || IsColumnByColumn(a);
}

/// The diagonal and what is above it, column by column.
void CopyUpper(MatrixView<const double> a, double* to) noexcept {
    for (std::int32_t j = 1; j <= a.Rows(); ++j) {
        for (std::int32_t i = 1; i <= j; ++i) to[i - 1] = a(i, j);
        to += a.Rows();
    }
}

void CopyVector(VectorView<const double> from, VectorView<double> to) noexcept {
    for (std::int32_t i = 1; i <= from.Size(); ++i) to(i) = from(i);
}

void CopySquare(MatrixView<const double> from, MatrixView<double> to) noexcept {
    for (std::int32_t i = 1; i <= from.Rows(); ++i)
        for (std::int32_t j = 1; j <= from.Rows(); ++j) to(i, j) = from(i, j);
}

void FillWithNaN(MatrixView<double> inverse, VectorView<double> x) noexcept {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    CopySquare({&nan, x.Size(), x.Size(), 0, 0}, inverse);
    CopyVector({&nan, x.Size(), 0}, x);
}

/// A solver of contiguous arrays, for any steps: what is not contiguous is copied for the call.
template <Solver solve>
void Solve(MatrixView<const double> a, VectorView<const double> b, MatrixView<double> inverse,
           VectorView<double> x) noexcept {
    const std::int32_t n = a.Rows();
    const auto order = static_cast<std::size_t>(n);
    const Scratch scratch(2 * order * (order + 1));
    if (scratch.Data() == nullptr) return FillWithNaN(inverse, x);

    double* const ownA = scratch.Data();
    double* const ownInverse = ownA + order * order;
    double* const ownB = ownInverse + order * order;
    double* const ownX = ownB + order;
    const bool isInPlace = IsContiguous(inverse);
    if (!IsColumnByColumn(a)) CopyUpper(a, ownA);
    CopyVector(b, {ownB, n});
    solve(IsColumnByColumn(a) ? a.Data() : ownA, ownB, n, isInPlace ? inverse.Data() : ownInverse,
          ownX);
    if (!isInPlace) CopySquare({ownInverse, n, n}, inverse);
    CopyVector({ownX, n}, x);
}

std::int32_t PackedLength(std::int32_t order) noexcept {
    return gen::SizeOfLta({nullptr, order, order});
}

std::int32_t OrderOf(std::int32_t length) noexcept {
    return gen::SizeOfSqrMtx({nullptr, length});
}

// ---- shapes of what is written

const char* SolutionShape(const Form* inputs, Form* outputs) noexcept {
    const auto [rows, columns] = inputs[0].extents;
    if (rows != columns) return "a: the matrices are not square";
    if (inputs[1].extents[0] != rows) return "b: as many elements are needed as a has rows";
    outputs[0].extents = inputs[0].extents;
    outputs[1].extents = {rows, 0};
    return nullptr;
}

const char* SameShape(const Form* inputs, Form* outputs) noexcept {
    outputs[0].extents = inputs[0].extents;
    return nullptr;
}

const char* PackedShape(const Form* inputs, Form* outputs) noexcept {
    const auto [rows, columns] = inputs[0].extents;
    if (columns < rows) return "square: fewer columns than rows";
    if (rows > 65535) return "square: more than 65535 rows";
    outputs[0].extents = {PackedLength(static_cast<std::int32_t>(rows)), 0};
    return nullptr;
}

const char* SquareShape(const Form* inputs, Form* outputs) noexcept {
    const auto length = static_cast<std::int32_t>(inputs[0].extents[0]);
    const std::int32_t order = OrderOf(length);
    if (PackedLength(order) != length) return "packed: the length is no n(n+1)/2";
    outputs[0].extents = {order, order};
    return nullptr;
}

constexpr const char* kFit = "b, the solution and the matrices fit together";
constexpr const char* kReciprocal = "the reciprocal of that of a";

constexpr Procedure kProcedures[] = {
    {"sqr_mtx_to_lta", "square", "GenFunctions::SqrMtx2Lta",
     "The packed form of symmetric matrices: the lower triangle row by row. What is above the "
     "diagonal is never read.",
     "that of the elements", "ValueError for fewer columns than rows", kSignature<gen::SqrMtx2Lta>,
     PackedShape},
    {"lta_to_sqr_mtx", "packed", "GenFunctions::Lta2SqrMtx",
     "The square symmetric matrices of packed ones.", "that of the elements",
     "ValueError for a length that is no n(n+1)/2", kSignature<gen::Lta2SqrMtx>, SquareShape},
    {"size_of_lta", "order", "GenFunctions::SizeOfLta",
     "The packed length n(n+1)/2 of a square matrix of order n.", nullptr,
     "0 for an order below 1; 2147483647 where the length does not fit", kSignature<PackedLength>},
    {"size_of_sqr_mtx", "length", "GenFunctions::SizeOfSqrMtx",
     "The order of the square matrix for a packed length: the largest n with n(n+1)/2 <= length.",
     nullptr, "0 for a length below 1", kSignature<OrderOf>},
    {"cholesky", "a, b", "GenFunctions::Cholesky",
     "Solves a x = b for positive definite a. Gives the inverse of a, then x. Only the diagonal of "
     "a and what is above it are read.",
     kFit,
     "infinities and NaN where a is not positive definite; ValueError for shapes that do not fit",
     kSignature<Solve<gen::Cholesky>>, SolutionShape},
    {"cholesky2", "a, b", "GenFunctions::Cholesky2",
     "As cholesky without square roots: for every symmetric a whose pivots differ from zero, "
     "definite or not.",
     kFit, "infinities and NaN where a pivot is zero; ValueError for shapes that do not fit",
     kSignature<Solve<gen::Cholesky2>>, SolutionShape},
    {"mtx_inv", "a", "GenFunctions::MtxInv",
     "The inverse, by Gauss-Jordan elimination with partial pivoting.", kReciprocal,
     "not square: a copy; singular: the matrix as far as it was reduced", kSignature<gen::MtxInv>,
     SameShape},
    {"minv", "a", "GenFunctions::MInv", "The inverse, without pivoting.", kReciprocal,
     "not square, or a pivot of exactly zero: all zeros", kSignature<gen::MInv>, SameShape},
};

}  // namespace

std::span<const Procedure> MatrixProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
