#include <corvale/numeric/Elementary.hpp>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

void SinCos(double x, double& sine, double& cosine) noexcept {
    const Elementary::SineCosine both = Elementary::SinCos(x);
    sine = both.sine;
    cosine = both.cosine;
}

constexpr Procedure kProcedures[] = {
    {"sin", "x", "Elementary::Sin",
     "The sine, correctly rounded. An angle of any size is reduced exactly.", "radians",
     "an infinity gives NaN", kSignature<Elementary::Sin>},
    {"cos", "x", "Elementary::Cos",
     "The cosine, correctly rounded. An angle of any size is reduced exactly.", "radians",
     "an infinity gives NaN", kSignature<Elementary::Cos>},
    {"sin_cos", "x", "Elementary::SinCos",
     "Sine and cosine, correctly rounded, in less time than both alone.", "radians",
     "an infinity gives two NaN", kSignature<SinCos>},
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
