#include <corvale/numeric/MatrixInversion.hpp>

#include <corvale/numeric/matrices/LaneInversion.hpp>

#include <cstddef>

namespace corvale::GenFunctions {
namespace {

using internal::FourLanes;
using internal::LaneInversions;
using internal::TwoLanes;

bool AreComputedInLanes(const MatrixView<const double>& a) noexcept {
    return a.Rows() == a.Columns() && static_cast<std::size_t>(a.Rows()) <= internal::kLaneOrder;
}

template <auto invert, template <class> class InLanes>
void InvertEach(const LaneInversions& inversions) noexcept {
    const auto& [a, result] = inversions;
    const std::int32_t rows = a.First().Rows(), columns = a.First().Columns();
    if (rows == 0 || columns == 0 || result.Count() < a.Count()) return;
    if (result.First().Rows() < rows || result.First().Columns() < columns) return;
    if (AreComputedInLanes(a.First()))
        return internal::OnBestPath<InLanes, FourLanes, TwoLanes>(&inversions);
    for (std::int32_t i = 1; i <= a.Count(); ++i) invert(a(i), result(i));
}

}  // namespace

void MtxInvEach(MatrixSeries<const double> a, MatrixSeries<double> result) noexcept {
    InvertEach<MtxInv, internal::InvertLanesSearched>({a, result});
}

void MInvEach(MatrixSeries<const double> a, MatrixSeries<double> result) noexcept {
    InvertEach<MInv, internal::InvertLanesAsTheyCome>({a, result});
}

}  // namespace corvale::GenFunctions
