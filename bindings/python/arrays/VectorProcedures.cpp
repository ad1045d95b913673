#include <algorithm>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace gen = GenFunctions;

constexpr Signature kOneByOne = kSignature<gen::RodriguesRot>;

template <class T>
gen::VectorSeries<T> Vectors(const Lane& lane, Count first, std::int32_t count) noexcept {
    return {{reinterpret_cast<T*>(lane.at + first * lane.step), 3, lane.form->steps[0] / kReal},
            lane.step / kReal,
            count};
}

/// All elements at once, where they lie as the library can take them.
void Turn(Count count, const Lane* lanes) noexcept {
    if (!std::all_of(lanes, lanes + 4, IsOfWholeReals)) return kOneByOne.loop(count, lanes);
    for (Count first = 0; first < count; first += kMostInOneCall) {
        const auto some = static_cast<std::int32_t>(std::min(count - first, kMostInOneCall));
        const auto* const angle =
            reinterpret_cast<const double*>(lanes[1].at + first * lanes[1].step);
        gen::RodriguesRotEach(
            Vectors<const double>(lanes[0], first, some), {angle, some, lanes[1].step / kReal},
            Vectors<const double>(lanes[2], first, some), Vectors<double>(lanes[3], first, some));
    }
}

constexpr Signature Turning() noexcept {
    Signature signature = kOneByOne;
    signature.loop = &Turn;
    return signature;
}

constexpr const char* kSpread = "NaN and infinities spread";

constexpr Procedure kProcedures[] = {
    {"cross", "a, b", "GenFunctions::Cross", "The cross product.", "the product of theirs", kSpread,
     kSignature<gen::Cross>},
    {"unit_vec", "v", "GenFunctions::UnitVec", "The vector divided by its magnitude.",
     "none in the result", "a zero vector gives three NaN", kSignature<gen::UnitVec>},
    {"mag", "v", "GenFunctions::Mag", "The magnitude.", "that of v",
     "squares overflow from about 1e154 and vanish below about 1e-162", kSignature<gen::Mag>},
    {"angle_of_two_vecs", "a, b", "GenFunctions::AngleOf2Vecs",
     "The angle between two vectors, from 0 to pi.", "radians; a and b have any",
     "a zero vector gives NaN", kSignature<gen::AngleOf2Vecs>},
    {"rotate", "v, axis, angle", "GenFunctions::Rotate",
     "The coordinates of `v` in a frame turned by `angle` about its axis `axis` (1 x, 2 y, 3 z): "
     "the frame turns, not the vector.",
     "angle in radians; the result has the unit of v", "another axis returns v",
     kSignature<gen::Rotate>},
    {"rodrigues_rot", "v, angle, k", "GenFunctions::RodriguesRot",
     "The vector `v` turned about the axis `k`, right-handed.",
     "angle in degrees; the result has the unit of v; k has none",
     "k is used as passed: only |k| = 1 gives a rotation", Turning()},
};

}  // namespace

std::span<const Procedure> VectorProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
