#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/SineLanes.hpp>

#include <algorithm>

namespace corvale::Elementary {
namespace {

using GenFunctions::VectorView;
using internal::kLaneAlignment;

// So many at a time: whatever the strides are, the lanes work on memory of their own.
constexpr std::int32_t kBlock = 64;
static_assert(kBlock % internal::kMostLanes == 0);

void Put(const double* from, std::int32_t first, std::int32_t end, VectorView<double> to) noexcept {
    if (to.Size() == 0) return;
    for (std::int32_t i = first; i <= end; ++i) to(i) = *from++;
}

bool Fits(const VectorView<double>& result, std::int32_t count) noexcept {
    return result.Size() == 0 || result.Size() >= count;
}

}  // namespace

void SinCosEach(VectorView<const double> x, VectorView<double> sines,
                VectorView<double> cosines) noexcept {
    const std::int32_t count = x.Size();
    if (!Fits(sines, count) || !Fits(cosines, count)) return;
    alignas(kLaneAlignment) double angles[kBlock];
    alignas(kLaneAlignment) double ownSines[kBlock];
    alignas(kLaneAlignment) double ownCosines[kBlock];
    for (std::int32_t done = 0; done < count;) {
        const std::int32_t some = std::min(kBlock, count - done);
        for (std::int32_t i = 0; i < some; ++i) angles[i] = x(done + i + 1);
        const std::size_t padded =
            internal::RoundUp(static_cast<std::size_t>(some), internal::kMostLanes);
        std::fill(angles + some, angles + padded, angles[0]);
        internal::SinCosOfMany(angles, padded, ownSines, ownCosines);
        Put(ownSines, done + 1, done + some, sines);
        Put(ownCosines, done + 1, done + some, cosines);
        done += some;
    }
}

}  // namespace corvale::Elementary
