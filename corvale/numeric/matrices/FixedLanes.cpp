#include <corvale/numeric/matrices/LaneCholesky.hpp>

namespace corvale::internal {
namespace {

template <bool rootFree>
void Solve(const LaneSystems& systems) noexcept {
    if (systems.a.First().Rows() == 3)
        CallOnPath<MostLanes, SolveInLanes<MostLanes, rootFree, 3>>(&systems);
    else
        CallOnPath<MostLanes, SolveInLanes<MostLanes, rootFree, 6>>(&systems);
}

}  // namespace

void SolveFixedLanes(const LaneSystems& systems, bool rootFree) noexcept {
    rootFree ? Solve<true>(systems) : Solve<false>(systems);
}

}  // namespace corvale::internal
