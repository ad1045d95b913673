#include <corvale/numeric/Elementary.hpp>

#include <algorithm>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

void SinCos(double x, double& sine, double& cosine) noexcept {
    const Elementary::SineCosine both = Elementary::SinCos(x);
    sine = both.sine;
    cosine = both.cosine;
}

template <class T>
GenFunctions::VectorView<T> Reals(const Lane& lane, Count first, std::int32_t count) noexcept {
    return {reinterpret_cast<T*>(lane.at + first * lane.step), count, lane.step / kReal};
}

enum class Wanted { kSine, kCosine, kBoth };

/// All angles at once, where they lie as the library can take them; the last lanes are what is
/// wanted.
template <Wanted wanted>
void AllSinCos(Count count, const Lane* lanes) noexcept {
    constexpr Signature kOneByOne = wanted == Wanted::kSine     ? kSignature<Elementary::Sin>
                                    : wanted == Wanted::kCosine ? kSignature<Elementary::Cos>
                                                                : kSignature<SinCos>;
    if (!std::all_of(lanes, lanes + kOneByOne.operands, IsOfWholeReals))
        return kOneByOne.loop(count, lanes);
    for (Count first = 0; first < count; first += kMostInOneCall) {
        const auto some = static_cast<std::int32_t>(std::min(count - first, kMostInOneCall));
        GenFunctions::VectorView<double> sines, cosines;
        if (wanted != Wanted::kCosine) sines = Reals<double>(lanes[1], first, some);
        if (wanted != Wanted::kSine)
            cosines = Reals<double>(lanes[kOneByOne.operands - 1], first, some);
        Elementary::SinCosEach(Reals<const double>(lanes[0], first, some), sines, cosines);
    }
}

constexpr Signature With(Signature signature, Loop loop) noexcept {
    signature.loop = loop;
    return signature;
}

constexpr Procedure kProcedures[] = {
    {"sin", "x", "Elementary::Sin",
     "The sine, correctly rounded. An angle of any size is reduced exactly.", "radians",
     "an infinity gives NaN", With(kSignature<Elementary::Sin>, &AllSinCos<Wanted::kSine>)},
    {"cos", "x", "Elementary::Cos",
     "The cosine, correctly rounded. An angle of any size is reduced exactly.", "radians",
     "an infinity gives NaN", With(kSignature<Elementary::Cos>, &AllSinCos<Wanted::kCosine>)},
    {"sin_cos", "x", "Elementary::SinCos",
     "Sine and cosine, correctly rounded, in less time than both alone.", "radians",
     "an infinity gives two NaN", With(kSignature<SinCos>, &AllSinCos<Wanted::kBoth>)},
    {"arc_tan", "x", "Elementary::ArcTan",
     "The angle from -pi/2 to pi/2 whose tangent is `x`, correctly rounded.", "radians",
     "NaN gives NaN", kSignature<Elementary::ArcTan>},
    {"arc_tan2", "y, x", "Elementary::ArcTan2",
     "The angle from -pi to pi whose sine and cosine are proportional to `y` and `x`, in this "
     "order, "
     "correctly rounded. It has the sign of `y`.",
     "radians; y and x share any unit", "two infinities lie on a diagonal",
     kSignature<Elementary::ArcTan2>},
    {"arc_cos", "x", "Elementary::ArcCos",
     "The angle from 0 to pi whose cosine is `x`, correctly rounded.", "radians",
     "|x| > 1 gives NaN", kSignature<Elementary::ArcCos>},
    {"exp", "x", "Elementary::Exp", "e to the power of `x`, correctly rounded.", "x has none",
     "beyond about 709.78 the result is an infinity, below -745.13 it is 0",
     kSignature<Elementary::Exp>},
    {"cube_root", "x", "Elementary::CubeRoot",
     "The cube root, correctly rounded, with the sign of `x`.", "the cube root of that of x",
     "NaN gives NaN", kSignature<Elementary::CubeRoot>},
};

}  // namespace

std::span<const Procedure> ElementaryProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
