#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace gen = GenFunctions;

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
     "k is used as passed: only |k| = 1 gives a rotation", kSignature<gen::RodriguesRot>},
};

}  // namespace

std::span<const Procedure> VectorProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
