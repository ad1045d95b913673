#include <corvale/numeric/Cholesky.hpp>
#include <corvale/numeric/MatrixInversion.hpp>
#include <corvale/numeric/PackedSymmetric.hpp>

#include <algorithm>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace gen = GenFunctions;

template <class T>
gen::MatrixSeries<T> Matrices(const Lane& lane, Count first, std::int32_t count) noexcept {
    const Slot<MatrixView<T>> slot(lane.at + first * lane.step, *lane.form);
    return {slot.Get(), lane.step / kReal, count};
}

template <class T>
gen::VectorSeries<T> Vectors(const Lane& lane, Count first, std::int32_t count) noexcept {
    const Slot<VectorView<T>> slot(lane.at + first * lane.step, *lane.form);
    return {slot.Get(), lane.step / kReal, count};
}

/// Loops that hand all their elements to the library at once.
template <auto solveEach>
void SolveAll(Count count, const Lane* lanes) noexcept {
    for (Count first = 0; first < count; first += kMostInOneCall) {
        const auto some = static_cast<std::int32_t>(std::min(count - first, kMostInOneCall));
        solveEach(Matrices<const double>(lanes[0], first, some),
                  Vectors<const double>(lanes[1], first, some),
                  Matrices<double>(lanes[2], first, some), Vectors<double>(lanes[3], first, some));
    }
}

template <auto invertEach>
void InvertAll(Count count, const Lane* lanes) noexcept {
    for (Count first = 0; first < count; first += kMostInOneCall) {
        const auto some = static_cast<std::int32_t>(std::min(count - first, kMostInOneCall));
        invertEach(Matrices<const double>(lanes[0], first, some),
                   Matrices<double>(lanes[1], first, some));
    }
}

template <auto solveEach>
constexpr Signature kSolution{
    &SolveAll<solveEach>, 2, 4, {Kind::kMatrix, Kind::kVector, Kind::kMatrix, Kind::kVector}, 0};
template <auto invertEach>
constexpr Signature kInverse{&InvertAll<invertEach>, 1, 2, {Kind::kMatrix, Kind::kMatrix}, 0};

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
     kSolution<gen::CholeskyEach>, SolutionShape},
    {"cholesky2", "a, b", "GenFunctions::Cholesky2",
     "As cholesky without square roots: for every symmetric a whose pivots differ from zero, "
     "definite or not.",
     kFit, "infinities and NaN where a pivot is zero; ValueError for shapes that do not fit",
     kSolution<gen::Cholesky2Each>, SolutionShape},
    {"mtx_inv", "a", "GenFunctions::MtxInv",
     "The inverse, by Gauss-Jordan elimination with partial pivoting.", kReciprocal,
     "not square: a copy; singular: the matrix as far as it was reduced", kInverse<gen::MtxInvEach>,
     SameShape},
    {"minv", "a", "GenFunctions::MInv", "The inverse, without pivoting.", kReciprocal,
     "not square, or a pivot of exactly zero: all zeros", kInverse<gen::MInvEach>, SameShape},
};

}  // namespace

std::span<const Procedure> MatrixProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
