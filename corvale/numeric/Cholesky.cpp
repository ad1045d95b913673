#include <corvale/numeric/Cholesky.hpp>

#include <corvale/numeric/Scratch.hpp>
#include <corvale/numeric/matrices/CholeskyFactor.hpp>
#include <corvale/numeric/matrices/CholeskyInverse.hpp>
#include <corvale/numeric/matrices/CholeskySmall.hpp>
#include <corvale/numeric/matrices/CholeskySolve.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using internal::CholeskyWork;
using internal::FourLanes;
using internal::kLongestPanelRow;
using internal::kOrderWithoutHeap;
using internal::OnBestPath;
using internal::RoundUp;
using internal::TwoLanes;

/// The doubles that `matrices` matrices in panels and four vectors take.
constexpr std::size_t ScratchLength(std::size_t n, std::size_t matrices) noexcept {
    const std::size_t lanes = RoundUp(n, kLongestPanelRow);
    return (matrices * RoundUp(n, internal::kTileRows) + 4) * lanes;
}

// Up to here one row fits in the registers (CholeskySmall.hpp).
constexpr std::size_t kSmallOrder = 12;

/// Lays the work out in `scratch`. Two matrices stand for four where no D is formed.
CholeskyWork LayOut(double* scratch, std::size_t n, bool rootFree) noexcept {
    const std::size_t lanes = RoundUp(n, kLongestPanelRow);
    CholeskyWork work{};
    work.n = n;
    work.rootFree = rootFree;
    work.steps = RoundUp(n, internal::kTileRows);
    work.u = scratch;
    work.w = work.u + lanes * work.steps;
    work.v = rootFree ? work.w + lanes * work.steps : work.u;
    work.z = rootFree ? work.v + lanes * work.steps : work.w;
    work.pivots = work.z + lanes * work.steps;
    work.reciprocals = work.pivots + lanes;
    work.squares = work.reciprocals + lanes;
    work.y = work.squares + lanes;
    std::fill(work.squares, work.squares + lanes, 0.0);
    return work;
}

void FillWithNaN(std::size_t n, double* inverse, double* x) noexcept {
    std::fill(inverse, inverse + n * n, std::numeric_limits<double>::quiet_NaN());
    std::fill(x, x + n, std::numeric_limits<double>::quiet_NaN());
}

template <bool rootFree>
void Run(CholeskyWork& work) noexcept {
    if constexpr (rootFree) {
        OnBestPath<internal::FactorWithoutRoots, FourLanes, TwoLanes>(&work);
        OnBestPath<internal::Solve, FourLanes, TwoLanes>(&work);
        OnBestPath<internal::InvertWithoutRoots, FourLanes, TwoLanes>(&work);
    } else {
        OnBestPath<internal::FactorWithRoots, FourLanes, TwoLanes>(&work);
        OnBestPath<internal::Solve, FourLanes, TwoLanes>(&work);
        OnBestPath<internal::InvertWithRoots, FourLanes, TwoLanes>(&work);
    }
}

/// False where the panels have to do it: the order is too large or something is not finite.
template <bool rootFree>
bool DoneSmall(const internal::SmallSystem& system) noexcept {
    if (system.n > kSmallOrder) return false;
    if constexpr (rootFree) {
        return OnBestPath<internal::SolveSmallWithoutRoots, FourLanes, TwoLanes>(&system);
    } else {
        return OnBestPath<internal::SolveSmallWithRoots, FourLanes, TwoLanes>(&system);
    }
}

// Out of line, so that its scratch memory does not take stack where small systems are solved.
template <bool rootFree>
[[gnu::noinline]] void SolveByPanels(const double* a, const double* b, std::size_t n,
                                     double* inverse, double* x) noexcept {
    constexpr std::size_t kMatrices = rootFree ? 4 : 2;
    internal::Scratch<double, ScratchLength(kOrderWithoutHeap, kMatrices)> scratch(
        ScratchLength(n, kMatrices));
    if (scratch.Data() == nullptr) return FillWithNaN(n, inverse, x);

    CholeskyWork work = LayOut(scratch.Data(), n, rootFree);
    work.a = a, work.b = b, work.inverse = inverse;
    Run<rootFree>(work);
    if (rootFree) inverse[n * n - 1] = work.reciprocals[n - 1];
    std::copy(work.y, work.y + n, x);
}

template <bool rootFree>
void SolveAndInvert(const double* a, const double* b, std::int32_t order, double* inverse,
                    double* x) noexcept {
    if (order < 1) return;
    const auto n = static_cast<std::size_t>(order);
    if (!DoneSmall<rootFree>({a, b, n, inverse, x})) SolveByPanels<rootFree>(a, b, n, inverse, x);
}

}  // namespace

void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse,
              double* x) noexcept {
    SolveAndInvert<false>(a, b, n, inverse, x);
}

void Cholesky2(const double* a, const double* b, std::int32_t n, double* inverse,
               double* x) noexcept {
    SolveAndInvert<true>(a, b, n, inverse, x);
}

}  // namespace corvale::GenFunctions
