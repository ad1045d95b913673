#include <corvale/numeric/Cholesky.hpp>

#include <corvale/numeric/Scratch.hpp>
#include <corvale/numeric/matrices/LaneCholesky.hpp>

#include <cstddef>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using internal::FourLanes;
using internal::LaneSystems;
using internal::TwoLanes;

bool Fits(const LaneSystems& systems) noexcept {
    const auto& a = systems.a.First();
    const auto& inverse = systems.inverse.First();
    const std::int32_t n = a.Rows(), count = systems.a.Count();
    return n == a.Columns() && inverse.Rows() >= n && inverse.Columns() >= n &&
           systems.b.First().Size() >= n && systems.x.First().Size() >= n &&
           systems.b.Count() >= count && systems.inverse.Count() >= count &&
           systems.x.Count() >= count;
}

/// One system, by a single procedure for contiguous arrays in `work`.
template <auto solve>
void SolveOne(MatrixView<const double> a, VectorView<const double> b, MatrixView<double> inverse,
              VectorView<double> x, double* work) noexcept {
    const std::int32_t n = a.Rows();
    const MatrixView<double> square(work, n, n);
    const VectorView<double> vector(work + std::ptrdiff_t{n} * n, n);
    for (std::int32_t j = 1; j <= n; ++j) {
        for (std::int32_t i = 1; i <= j; ++i) square(i, j) = a(i, j);
        vector(j) = b(j);
    }
    solve(square.Data(), vector.Data(), n, square.Data(), vector.Data());
    for (std::int32_t j = 1; j <= n; ++j) {
        for (std::int32_t i = 1; i <= n; ++i) inverse(i, j) = square(i, j);
    }
    for (std::int32_t j = 1; j <= n; ++j) x(j) = vector(j);
}

void FillWithNaN(MatrixView<double> inverse, VectorView<double> x, std::int32_t n) noexcept {
    for (std::int32_t j = 1; j <= n; ++j) {
        for (std::int32_t i = 1; i <= n; ++i)
            inverse(i, j) = std::numeric_limits<double>::quiet_NaN();
        x(j) = std::numeric_limits<double>::quiet_NaN();
    }
}

template <auto solve>
void SolveOneByOne(const LaneSystems& systems) noexcept {
    const std::int32_t n = systems.a.First().Rows();
    const auto order = static_cast<std::size_t>(n);
    internal::Scratch<double, 1> work(order * (order + 1));
    for (std::int32_t i = 1; i <= systems.a.Count(); ++i) {
        if (work.Data() == nullptr)
            FillWithNaN(systems.inverse(i), systems.x(i), n);
        else
            SolveOne<solve>(systems.a(i), systems.b(i), systems.inverse(i), systems.x(i),
                            work.Data());
    }
}

bool IsOfFixedOrder(std::int32_t n) noexcept {
    return (n == 3 || n == 6) && (!CORVALE_HAS_AVX2_PATH || internal::HasAvx2());
}

template <auto solve, template <class> class InLanes>
void SolveEach(const LaneSystems& systems, bool rootFree) noexcept {
    const std::int32_t n = systems.a.First().Rows();
    if (n < 1 || !Fits(systems)) return;
    if (static_cast<std::size_t>(n) > internal::kLaneOrder) return SolveOneByOne<solve>(systems);
    if (IsOfFixedOrder(n)) return internal::SolveFixedLanes(systems, rootFree);
    internal::OnBestPath<InLanes, FourLanes, TwoLanes>(&systems);
}

}  // namespace

void CholeskyEach(MatrixSeries<const double> a, VectorSeries<const double> b,
                  MatrixSeries<double> inverse, VectorSeries<double> x) noexcept {
    SolveEach<Cholesky, internal::SolveLanesWithRoots>({a, b, inverse, x}, false);
}

void Cholesky2Each(MatrixSeries<const double> a, VectorSeries<const double> b,
                   MatrixSeries<double> inverse, VectorSeries<double> x) noexcept {
    SolveEach<Cholesky2, internal::SolveLanesWithoutRoots>({a, b, inverse, x}, true);
}

}  // namespace corvale::GenFunctions
