#include <corvale/numeric/Vectors.hpp>

#include <corvale/numeric/elementary/SineLanes.hpp>
#include <corvale/numeric/matrices/LaneLines.hpp>

#include <algorithm>
#include <cstddef>

namespace corvale::GenFunctions {
namespace {

using internal::kMostLanes;

constexpr double kRadiansPerDegree = 0.017453292519943295;

// So many at a time, so that what is computed first is still in the cache.
constexpr std::size_t kBlock = 64;

struct Block {
    alignas(internal::kLaneAlignment) double radians[kBlock], sines[kBlock], cosines[kBlock];
    VectorSeries<const double> v, k;
    VectorSeries<double> result;
    std::size_t first, count;  // of them, those of the block
};

template <class L>
struct Turn {
    using V = typename L::Vector;
    using Given = internal::LaneStarts<L, const double>;

    CORVALE_INLINE void operator()(const Block* block) const noexcept {
        for (std::size_t i = 0; i < block->count; i += L::kLanes) TurnGroup(*block, i);
    }

    /// The formula of RodriguesRot, in its order.
    CORVALE_INLINE static void TurnGroup(const Block& block, std::size_t i) noexcept {
        const Given from = StartsOf(block.v, block, i), axes = StartsOf(block.k, block, i);
        const std::ptrdiff_t step = block.v.First().Stride(), axisStep = block.k.First().Stride();
        const V v[3] = {from.Gather(0), from.Gather(step), from.Gather(2 * step)};
        const V k[3] = {axes.Gather(0), axes.Gather(axisStep), axes.Gather(2 * axisStep)};
        V turned[3];
        const V s = internal::At<V>(block.sines + i), c = internal::At<V>(block.cosines + i);
        const V w[3] = {k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                        k[0] * v[1] - k[1] * v[0]};
        const V along = 0.0 + k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
#pragma GCC unroll 3
        for (std::size_t j = 0; j < 3; ++j)
            turned[j] = w[j] * s + v[j] * c + k[j] * along * (1.0 - c);
        const auto& to = block.result;
        internal::StoreLine<L>(
            turned, 1, 3,
            internal::LaneStarts<L, double>::Of(to.First().Data(), to.Distance(), block.first + i,
                                                block.first + block.count),
            to.First().Stride());
    }
    CORVALE_INLINE static Given StartsOf(const VectorSeries<const double>& from, const Block& block,
                                         std::size_t i) noexcept {
        return Given::Of(from.First().Data(), from.Distance(), block.first + i,
                         block.first + block.count);
    }
};

bool Fits(const VectorSeries<const double>& series, std::int32_t count) noexcept {
    return series.Count() >= count && series.First().Size() >= 3;
}

}  // namespace

void RodriguesRotEach(VectorSeries<const double> v, VectorView<const double> angle,
                      VectorSeries<const double> k, VectorSeries<double> result) noexcept {
    const std::int32_t count = v.Count();
    if (!Fits(v, count) || !Fits(k, count) || !Fits(result, count) || angle.Size() < count) return;

    Block block;
    block.v = v, block.k = k, block.result = result;
    const auto all = static_cast<std::size_t>(count);
    for (block.first = 0; block.first < all; block.first += kBlock) {
        block.count = std::min(kBlock, all - block.first);
        const std::size_t padded = internal::RoundUp(block.count, kMostLanes);
        for (std::size_t i = 0; i < block.count; ++i)
            block.radians[i] =
                angle(static_cast<std::int32_t>(block.first + i) + 1) * kRadiansPerDegree;
        // Of a last group that is not full, lanes behind the end do what its first one does.
        for (std::size_t i = block.count; i < padded; ++i)
            block.radians[i] = block.radians[block.count / kMostLanes * kMostLanes];
        internal::SinCosOfMany(block.radians, padded, block.sines, block.cosines);
        internal::OnBestPath<Turn, internal::FourLanes, internal::TwoLanes>(&block);
    }
}

}  // namespace corvale::GenFunctions
