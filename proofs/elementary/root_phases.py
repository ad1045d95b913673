#!/usr/bin/env python3
"""Proves with Gappa that the fast phases of the cube root and of the power are as good as their rounding
tests assume.

    root_phases.py SOURCE [FACTOR]   a FACTOR above 1 makes the bounds that much too small: must fail

The root is y (1 + Q)^(1/3) with Q = (m - y^3) / y^3, where y^3 and m - y^3 are exact. y is the root but for
2^-20.9 of the first approximation (arc_polynomials.sollya) and 2^-17 of the grid. So Q is at most
3 (2^-17 + 2^-20.8) / y. The power is that times e^lambda, lambda = -ln x 2^-54 / 3 of at most 2^-46, which the
code has but for 2^-18 2^-54 / 3 < 2^-73.5; lambda^2 is below 2^-92."""
from claims import bound, check_coefficients, exact, prove

SERIES = """
@rnd = float<ieee_64, ne>;
e = {e};
c = y * y * y;
q = rnd(dm * rnd(1 / c));
series = rnd(q * rnd(0x1.5555555555556p-2 + rnd(q * rnd(-0x1.c71c71c71c71cp-4 + rnd(q * rnd(0x1.f9adba2a9297bp-5 + rnd(q * -0x1.511e91455c349p-5)))))));
Q = dm / c;
SERIES = Q * (0x1.5555555555556p-2 + Q * (-0x1.c71c71c71c71cp-4 + Q * (0x1.f9adba2a9297bp-5 + Q * -0x1.511e91455c349p-5)));
"""

ROOT = SERIES + """
low = rnd(y * series);
LOW = y * SERIES;
lower = rnd(low - e);
upper = rnd(low + e);
{{ @FIX(y, -16) /\\ @FLT(dm, 53) /\\ y in [{y0}, {y1}] /\\ dm / c in [-{q}, {q}]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
"""

POWER = SERIES + """
low = rnd(y * rnd(series + rnd(late + rnd(late * series))));
LOW = y * (SERIES + (LATE + LATE * SERIES));
lower = rnd(low - e);
upper = rnd(low + e);
{{ @FIX(y, -16) /\\ @FLT(dm, 53) /\\ @FLT(late, 53) /\\ y in [{y0}, {y1}] /\\ dm / c in [-{q}, {q}]
   /\\ late in [-0x1p-46, 0x1p-46] /\\ late - LATE in [-0x1p-73, 0x1p-73]
   -> (lower + e) - LOW in [-{bound}, {bound}] /\\ (upper - e) - LOW in [-{bound}, {bound}] }}
"""

HINTS = """
dm -> c * (dm / c) { c <> 0 };
q - Q -> (q - dm * rnd(1 / c)) + dm * (rnd(1 / c) - 1 / c) { c <> 0 };
lower + e - LOW -> (lower - (low - e)) + (low - LOW);
upper - e - LOW -> (upper - (low + e)) + (low - LOW);
"""


def scripts(claim, unseen):
    """By sixteenths of y; `unseen` relative to y."""
    e = bound("CubeRoots.cpp", "kError")
    for i in range(16):
        y0, y1 = 1 + i / 16, 1 + (i + 1) / 16
        q = 3 * (2.0 ** -17 + 2.0 ** -20.8) / y0 * (1 + 2.0 ** -14)
        yield f"y from {y0}", claim.format(e=exact(e), y0=exact(y0), y1=exact(y1), q=exact(q), bound=exact(e - y1 * unseen)) + HINTS


check_coefficients("CubeRoots.cpp", "double RootSeries", "double RoundedCubeRoot", SERIES)
prove({
    "cube root": lambda: scripts(ROOT, 2.0 ** -71),
    "power of a third": lambda: scripts(POWER, 2.0 ** -71 + 2.0 ** -92),
})
