#!/usr/bin/env python3
"""Proves with Gappa that the fast phases of the arc functions and roots are as good as their rounding
tests assume.

    arc_phases.py SOURCE [FACTOR]   a FACTOR above 1 makes the bounds that much too small: must fail

A fast phase ends with high + lower and high + upper, and high is exact. So what is proved is that the
exact value less high, LOW, lies between lower and upper: |lower + e - LOW| <= e less what Gappa does not
see, the errors of polynomials and tables (arc_polynomials.sollya). There is one script for each
breakpoint of the table, and one for each power of 2 where a bound is relative to a small argument.

In the scripts small letters are the values of the code, capitals the exact ones. Arguments are scaled to
lie near 1, which is exact: the code sends other ones elsewhere."""
import math
import re

from claims import bound, check_coefficients, constant, exact, prove, table

slack = 1 + 2.0 ** -20

breakpoints = [tuple(float.fromhex(v) for v in row.split(", ")) for row in re.findall(r"\{([^{}]*)\}", table("ArcTable.hpp", "kBreakpoints"))]
tangent_cells = [int(v) for v in re.findall(r"\d+", table("ArcTable.hpp", "kTangentCells"))]
cosine_cells = [int(v) for v in re.findall(r"\d+", table("ArcTable.hpp", "kCosineCells"))]


def tangent_edge(cell):
    return 2.0 ** (cell // 32 - 7) * (1 + cell % 32 / 32)


def cells_of(cells, breakpoint, first=0, last=None):
    """The first cell of a breakpoint and the one after the last."""
    found = [i for i, b in enumerate(cells) if b == breakpoint and first <= i < (last or len(cells))]
    return (found[0], found[-1] + 1) if found else None


ARC_TANGENT = """
z = rnd(r * r);
tail = rnd(rnd(r * z) * rnd(rnd(-0x1.5555555555555p-2 + rnd(z * 0x1.999999998c436p-3)) + rnd(rnd(z * z) * rnd(-0x1.24924410f405p-3 + rnd(z * 0x1.c5e20578c65c6p-4)))));
Z = R * R;
TAIL = (R * Z) * ((-0x1.5555555555555p-2 + Z * 0x1.999999998c436p-3) + (Z * Z) * (-0x1.24924410f405p-3 + Z * 0x1.c5e20578c65c6p-4));
"""

ARC_SINE = """
z = rnd(w * w);
tail = rnd(rnd(w * z) * rnd(rnd(0x1.5555555555555p-3 + rnd(z * 0x1.3333333338ba4p-4)) + rnd(rnd(z * z) * rnd(0x1.6db6d981a5ccbp-5 + rnd(z * 0x1.f20a50f1f95b6p-6)))));
Z = w * w;
TAIL = (w * Z) * ((0x1.5555555555555p-3 + Z * 0x1.3333333338ba4p-4) + (Z * Z) * (0x1.6db6d981a5ccbp-5 + Z * 0x1.f20a50f1f95b6p-6));
"""

# h is the ratio's head, d the divisor's, yh and xh those of the arguments: all by their properties alone.
RATIO = """
@rnd = float<ieee_64, ne>;
t = {t};
e = {e};
sum = rnd(x + rnd(t * y));
inv = rnd(1 / sum);
yt = rnd(y - yh);
xt = rnd(x - xh);
m1 = rnd(y - rnd(t * xh));
m2 = rnd(t * xt);
n = rnd(m1 - m2);
r = rnd(n * inv);
dr = rnd(rnd(rnd(xh - d) + rnd(t * yh)) + rnd(xt + rnd(t * yt)));
rest = rnd(rnd(m1 - rnd(h * d)) + rnd(rnd(0 - m2) - rnd(h * dr)));
N = y - t * x;
D = x + t * y;
R = N / D;
"""

ARC_TANGENT_LOW = """
late = rnd(rnd(rest * inv) + tail);
lower = rnd(rnd(early - e) + late);
upper = rnd(rnd(early + e) + late);
LOW = early + ((R - h) + TAIL);
"""

RATIO_CLAIM = """
{{ @FLT(y, 53) /\\ @FLT(x, 53) /\\ @FLT(yh, 26) /\\ @FLT(xh, 26) /\\ @FLT(d, 26) /\\ @FIX(h, -32) /\\ @FLT(early, 53)
   /\\ y in [{y0}, {y1}] /\\ x in [1, {x1}] /\\ yh in [{yh0}, {y1}] /\\ xh in [1, {x1}] /\\ y - yh in [0, {yt}] /\\ x - xh in [0, {xt}]
   /\\ y / x in [{q0}, {q1}] /\\ d in [1, {d1}] /\\ sum - d in [0, {dt}] /\\ r - h in [-0x1p-33, 0x1p-33] /\\ h in [-0x1p-6, 0x1p-6]
   /\\ early in [-{early}, {early}] /\\ x <> 0
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
y -> x * (y / x) {{ x <> 0 }};
N -> x * ((y / x) - t) {{ x <> 0 }};
D -> x * (1 + t * (y / x)) {{ x <> 0 }};
R -> ((y / x) - t) / (1 + t * (y / x)) {{ x <> 0 }};
D - d -> (D - sum) + (sum - d);
(xh - d) + t * yh -> (D - d) - ((x - xh) + t * (y - yh));
dr - (D - d) -> dr - (((xh - d) + t * yh) + ((x - xh) + t * (y - yh)));
y - t * xh -> N + t * (x - xh);
m1 - h * d -> (N - h * D) + (h * (D - d) + t * (x - xh)) + (m1 - (y - t * xh));
N - h * D -> D * (R - h);
n - N -> (n - (m1 - m2)) + ((m1 - (y - t * xh)) - (m2 - t * (x - xh)));
rest - (N - h * D) -> (rest - ((m1 - h * d) + ((0 - m2) - h * dr))) - h * (dr - (D - d)) + ((m1 - (y - t * xh)) - (m2 - t * (x - xh)));
inv - 1 / D -> (inv - 1 / sum) + (D - sum) / (sum * D);
r - R -> (r - n * inv) + ((n - N) * inv + N * (inv - 1 / D));
R - h -> (R - r) + (r - h);
rest * inv - (R - h) -> (rest - (N - h * D)) * inv + (N - h * D) * (inv - 1 / D);
lower + e - LOW -> (lower - ((early - e) + late)) + (late - ((R - h) + TAIL));
upper - e - LOW -> (upper - ((early + e) + late)) + (late - ((R - h) + TAIL));
"""


def table_scripts(x1, early):
    """Arguments x up to x1: 1 for the arc tangent of one argument, 2 for two."""
    for k, (t, angle, low, _, _) in enumerate(breakpoints):
        first, last = cells_of(tangent_cells, k)
        q0, q1 = tangent_edge(first) * (1 - 2.0 ** -52), tangent_edge(last) * (1 + 2.0 ** -52)
        y0, y1 = q0, q1 * x1
        d1 = (1 + t * q1) * x1 * slack
        e = angle * bound("ArcTangents.cpp", "kError")
        reach = max(math.atan(t) - math.atan(q0), math.atan(q1) - math.atan(t)) * slack
        unseen = 2.0 ** -80.5 * (reach * 2 ** 7) + 2.0 ** -102
        script = (RATIO + ARC_TANGENT + ARC_TANGENT_LOW + RATIO_CLAIM).format(
            t=exact(t), e=exact(e), y0=exact(y0), y1=exact(y1), yh0=exact(y0 * (1 - 2.0 ** -25)), x1=exact(x1),
            yt=exact(y1 * 2.0 ** -25), xt=exact(x1 * 2.0 ** -25 if x1 > 1 else 0.0), q0=exact(q0), q1=exact(q1), d1=exact(d1),
            dt=exact(d1 * 2.0 ** -25), early=exact(early), bound=exact(e - unseen))
        yield f"breakpoint {k}", script


# An angle below 2^-7: r is the rounded ratio, R the exact one, h its head, part the rest of it.
SMALL = """
@rnd = float<ieee_64, ne>;
e = {e};
""" + ARC_TANGENT + """
low = rnd(part + tail);
lower = rnd(low - e);
upper = rnd(low + e);
LOW = PART + TAIL;
{{ @FLT(r, 53) /\\ @FLT(part, 53) /\\ r in [{r0}, {r1}] /\\ R in [{r0}, {r1}] /\\ r -/ R in [-0x1.01p-52, 0x1.01p-52]
   /\\ PART in [{part0}, {part1}] /\\ part - PART in [-{partError}, {partError}]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
low - LOW -> (low - (part + tail)) + ((part - PART) + (tail - TAIL));
lower + e - LOW -> (lower - (low - e)) + (low - LOW);
upper - e - LOW -> (upper - (low + e)) + (low - LOW);
"""


def small_scripts():
    """By powers of 2, the last one in eighths. Where the argument is the ratio itself, part is 0."""
    edges = [2.0 ** k for k in range(-27, -8)] + [2.0 ** -8 * (1 + i / 8) for i in range(9)]
    for r0, r1 in zip(edges, edges[1:]):
        e = r0 * (1 - 2.0 ** -24) * bound("ArcTangents.cpp", "kSmallError")
        yield f"from {r0:.3g}", SMALL.format(
            e=exact(e), r0=exact(r0), r1=exact(r1), part0=exact(-r1 * 2.0 ** -50), part1=exact(r1 * 2.0 ** -24),
            partError=exact(r1 * 2.0 ** -75), bound=exact(e - r1 * 2.0 ** -73.5))


# The ratio y / x of two fractions from 1 to 2: h is its head.
SMALL_RATIO = """
@rnd = float<ieee_64, ne>;
inv = rnd(1 / x);
q = rnd(y * inv);
rest = rnd(rnd(y - rnd(h * d)) - rnd(h * rnd(x - d)));
Q = y / x;
part = rnd(rest * inv);
{ @FLT(y, 53) /\\ @FLT(x, 53) /\\ @FLT(h, 26) /\\ @FLT(d, 26) /\\ y in [1, 2] /\\ x in [1, 2] /\\ d in [1, 2]
   /\\ x - d in [0, 0x1p-25] /\\ q - h in [0, 0x1p-25] /\\ h in [0.499999, 2]
   -> part - (Q - h) in [-0x1p-76, 0x1p-76] }
y - h * d -> (y - h * x) + h * (x - d);
y - h * x -> x * (Q - h) { x <> 0 };
Q - h -> (Q - q) + (q - h);
q - Q -> (q - y * inv) + y * (inv - 1 / x) { x <> 0 };
rest - (y - h * x) -> rest - ((y - h * d) - h * (x - d));
part - (Q - h) -> (part - rest * inv) + ((rest - (y - h * x)) * inv + (y - h * x) * (inv - 1 / x)) { x <> 0 };
"""


def small_ratio_scripts():
    yield "part of a ratio", SMALL_RATIO


# A small angle before or behind a quarter or half turn: small is the angle's low part, good to 2^-70.
BESIDE = """
@rnd = float<ieee_64, ne>;
e = {e};
low = rnd(sl + rnd(turn + small));
lower = rnd(low - e);
upper = rnd(low + e);
LOW = sl + (turn + SMALL);
{{ @FLT(sl, 53) /\\ @FLT(small, 53) /\\ @FLT(turn, 53) /\\ sl in [-0x1p-52, 0x1p-52] /\\ turn in [-0x1p-52, 0x1p-52]
   /\\ SMALL in [-0x1p-21, 0x1p-21] /\\ small - SMALL in [-0x1p-70, 0x1p-70]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
low - LOW -> (low - (sl + (turn + small))) + (small - SMALL);
lower + e - LOW -> (lower - (low - e)) + (low - LOW);
upper - e - LOW -> (upper - (low + e)) + (low - LOW);
"""


def beside_scripts():
    for file in ("ArcTangents.cpp", "ArcCosine.cpp"):
        e = bound(file, "kError")
        yield file, BESIDE.format(e=exact(e), bound=exact(e - 2.0 ** -80 - 2.0 ** -105))


COSINE = """
@rnd = float<ieee_64, ne>;
t = {t};
e = {e};
ch = {ch};
cr = {cr};
c = rnd(ch + cr);
mt = rnd(m - mh);
sq = rnd(1 - rnd(mh * mh));
sr = rnd(rnd(mt * rnd(mh + m)) * -1);
root = rnd(sqrt(rnd(1 - rnd(m * m))));
st = rnd(root - sh);
err = rnd(rnd(rnd(sq - rnd(sh * sh)) - rnd(st * rnd(sh + root))) + sr);
half = rnd(0.5 / root);
srest = rnd(st + rnd(err * half));
diff = rnd(sh - rnd(t * mh));
lead = rnd(diff * ch);
rest = rnd(rnd(diff * cr) + rnd(rnd(srest - rnd(t * mt)) * c));
w = rnd(rnd(root - rnd(t * m)) * c);
hs = rnd(0.5 * rnd(w * w));
""" + ARC_SINE + """
series = rnd(tail + rnd(rnd(lead - w) * hs));
early = rnd(first + series);
late = rnd(rest * rnd(1 + hs));
lower = rnd(rnd(early - e) + late);
upper = rnd(rnd(early + e) + late);
U = 1 - m * m;
S = sqrt(U);
C = ch + cr;
W = C * (S - t * m);
HS = 0.5 * (w * w);
LOW = first + ((W - lead) + TAIL + (W - w) * HS);
{{ @FLT(m, 53) /\\ @FIX(m, -60) /\\ @FIX(mh, -26) /\\ @FIX(sh, -26) /\\ @FLT(first, 53)
   /\\ m in [{m0}, {m1}] /\\ mh in [{mh0}, {mh1}] /\\ m - mh in [-0x1p-27, 0x1p-27]
   /\\ sh in [{s0}, {s1}] /\\ root - sh in [-0x1p-27, 0x1p-27] /\\ first in [-0x1p-50, 0x1p-50]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] /\\ W - w in [-{wbound}, {wbound}] }}
U - root * root -> (U - rnd(1 - rnd(m * m))) + (rnd(1 - rnd(m * m)) - root * root);
rnd(1 - rnd(m * m)) - root * root -> (sqrt(rnd(1 - rnd(m * m))) - root) * (sqrt(rnd(1 - rnd(m * m))) + root);
S - root -> (U - root * root) / (S + root);
sq - sh * sh -> (U - root * root) + ((m - mh) * (m + mh) + (root - sh) * (root + sh));
err - (U - root * root) -> err - (((sq - sh * sh) - (root - sh) * (sh + root)) + ((m - mh) * (mh + m)) * -1);
half - 1 / (S + root) -> (half - 0.5 / root) + (S - root) / (2 * root * (S + root));
srest - (S - sh) -> (srest - ((root - sh) + err * half)) + ((err - (U - root * root)) * half + (U - root * root) * (half - 1 / (S + root)));
sh - t * mh -> (S - t * m) + (t * (m - mh) - (S - sh));
S - sh -> (S - root) + (root - sh);
rest - (W - lead) -> (rest - (diff * cr + (srest - t * mt) * C)) + (srest - (S - sh)) * C;
W - w -> C * (S - root) + (C * (root - t * m) - w);
w - C * (root - t * m) -> (w - rnd(root - rnd(t * m)) * C) + (rnd(root - rnd(t * m)) - (root - t * m)) * C;
late - (rest + rest * HS) -> late - rest * (1 + HS);
series - (TAIL + (lead - w) * HS) -> series - (TAIL + (lead - w) * HS);
lower + e - LOW -> (lower - (early - e + late)) + ((early - (first + series)) + (series - (TAIL + (lead - w) * HS)) + (late - rest * (1 + HS)) + (rest - (W - lead)) * (1 + HS));
upper - e - LOW -> (upper - (early + e + late)) + ((early - (first + series)) + (series - (TAIL + (lead - w) * HS)) + (late - rest * (1 + HS)) + (rest - (W - lead)) * (1 + HS));
"""


# Near 1, by quarters of powers of 2 of the root: h is its head, sl what the code calls sine.low.
NEAR_ONE = """
@rnd = float<ieee_64, ne>;
root = rnd(sqrt(sq));
tail = rnd(root - h);
rest = rnd(rnd(sq - rnd(h * h)) - rnd(tail * rnd(h + root)));
sl = rnd(tail + rnd(rest * rnd(0.5 / root)));
both = rnd(h + sl);
ratio = rnd(sq * rnd(0x1.5555555555555p-3 + rnd(sq * rnd(0x1.3333333333b04p-4 + rnd(sq * rnd(0x1.6db6db69a3f21p-5 + rnd(sq * rnd(0x1.f1c72c5015addp-6 + rnd(sq * rnd(0x1.6e7c63fdcf527p-6 + rnd(sq * 0x1.22f17526e9124p-6)))))))))));
RATIO = sq * (0x1.5555555555555p-3 + sq * (0x1.3333333333b04p-4 + sq * (0x1.6db6db69a3f21p-5 + sq * (0x1.f1c72c5015addp-6 + sq * (0x1.6e7c63fdcf527p-6 + sq * 0x1.22f17526e9124p-6)))));
S = sqrt(sq);
low = rnd(sl + rnd(both * ratio));
LOW = (S - h) + S * RATIO;
{{ @FLT(sq, 53) /\\ @FLT(h, 26) /\\ sq in [{z0}, {z1}] /\\ root - h in [0, {tail}] /\\ h in [{s0}, {s1}]
   -> low - LOW in [-{bound}, {bound}] }}
sq - h * h -> (sq - root * root) + (root - h) * (root + h);
sq - root * root -> (S - root) * (S + root);
rest - (sq - root * root) -> rest - ((sq - h * h) - (root - h) * (h + root));
S - root -> (sq - root * root) / (S + root);
sl - (S - h) -> (sl - ((root - h) + rest * rnd(0.5 / root))) + ((rest - (sq - root * root)) * rnd(0.5 / root) + (sq - root * root) * (rnd(0.5 / root) - 1 / (S + root)));
rnd(0.5 / root) - 1 / (S + root) -> (rnd(0.5 / root) - 0.5 / root) + (S - root) / (2 * root * (S + root));
both - S -> (both - (h + sl)) + (sl - (S - h));
low - LOW -> (low - (sl + rnd(both * ratio))) + ((sl - (S - h)) + (rnd(both * ratio) - S * RATIO));
"""


def near_one_scripts():
    """The angle is twice that, and left of the y axis two additions follow: (2 + 2 / 6) 2^-53 of root square in all,
    what the sums lose of sum.low and half.rest, 2^-104, and the polynomial, which is 2^-69 of the root from 2^-7 on, square 2^-54.5 below."""
    for i in range(16, 108):
        s0, s1 = 2.0 ** -((i + 1) / 4), 2.0 ** -(i / 4)
        z0, z1 = s0 * s0, s1 * s1
        allowed = s0 * (bound("ArcCosine.cpp", "kNearOneError") * z0 + bound("ArcCosine.cpp", "kRootError"))
        polynomial = s1 * (2.0 ** -69 if i < 28 else 4 * z1 * 2.0 ** -56.5)
        additions = s1 * z1 * 2.0 ** -53 * 4 / 6 * 1.01 + 2.0 ** -104
        yield f"root from {s0:.3g}", NEAR_ONE.format(
            z0=exact(z0), z1=exact(z1), tail=exact(s1 * 2.0 ** -25), s0=exact(s0 * (1 - 2.0 ** -25)), s1=exact(s1),
            bound=exact((allowed * (1 - 2.0 ** -50) - additions) / 2 - polynomial))


NEAR_ZERO = """
@rnd = float<ieee_64, ne>;
e = {e};
""" + ARC_SINE + """
low = rnd(sl + rnd(0x1.1a62633145c07p-54 - tail));
lower = rnd(low - e);
upper = rnd(low + e);
LOW = sl + (0x1.1a62633145c07p-54 - TAIL);
{{ @FLT(w, 53) /\\ @FLT(sl, 53) /\\ w in [-0x1p-7, 0x1p-7] /\\ sl in [-0x1p-53, 0x1p-53]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
lower + e - LOW -> (lower - (low - e)) + (low - LOW);
upper - e - LOW -> (upper - (low + e)) + (low - LOW);
"""


def near_zero_scripts():
    e = bound("ArcCosine.cpp", "kError")
    yield "below 2^-7", NEAR_ZERO.format(e=exact(e), bound=exact(e - 2.0 ** -80.9 - 2.0 ** -105))


def cosine_scripts():
    """The arc sine of W is W + its tail at w + (W - w) HS but for terms in the square of W - w."""
    for k, (t, angle, _, ch, cr) in enumerate(breakpoints):
        cells = cells_of(cosine_cells, k, 4, 508)
        if cells is None:
            continue
        m0, m1 = cells[0] / 512, cells[1] / 512
        s0, s1 = math.sqrt(1 - m1 * m1) - 2.0 ** -26, math.sqrt(1 - m0 * m0) + 2.0 ** -26
        e = angle * bound("ArcCosine.cpp", "kError")
        wbound = 2.0 ** -48
        unseen = 2.0 ** -80.9 + 2.0 ** -102 + wbound ** 2 + wbound * 2.0 ** -26
        yield f"breakpoint {k}", COSINE.format(
            t=exact(t), e=exact(e), ch=exact(ch), cr=exact(cr), m0=exact(m0), m1=exact(m1), mh0=exact(m0 - 2.0 ** -26),
            mh1=exact(m1 + 2.0 ** -26), s0=exact(s0), s1=exact(s1), wbound=exact(wbound), bound=exact(e - unseen))


check_coefficients("ArcSeries.hpp", "double ArcTangentTail", "/// arcsin r - r", ARC_TANGENT)
check_coefficients("ArcSeries.hpp", "double ArcSineTail", "/// arcsin r / r", ARC_SINE)
check_coefficients("ArcSeries.hpp", "double ArcSineRatio", "}  // namespace", NEAR_ONE)
prove({
    "arc tangents": lambda: table_scripts(2.0, 2.0 ** -50),  # x = 1 in the one of one argument
    "small arc tangents": small_scripts,
    "quotients": small_ratio_scripts,
    "angles beside a quarter or half turn": beside_scripts,
    "arc cosine": cosine_scripts,
    "arc cosine near 1": near_one_scripts,
    "arc cosine near 0": near_zero_scripts,
})
