#!/usr/bin/env python3
"""Proves with Gappa that the fast phases of sine, cosine and exponential are as good as their rounding
tests assume: one script for each entry of the tables, read from the headers of the library.

    sine_phases.py SOURCE [FACTOR]   a FACTOR above 1 makes the bounds that much too small: must fail

The result is high + low, high + (sum.low) = a.head + b.head head exactly. So the error is that of low,
and of both ends low - e and low + e. Given are, as variables within bounds: t = th + tl, the head h of
th, the rounding error sl of the leading sum, and with them what is exact only up to a bound from
elsewhere: table entries (2^-80), the reduction (2^-78), the polynomials (sine_polynomials.sollya)."""
import math
import re

from claims import bound, check_coefficients, exact, factor, prove, table


def entries(name, symbol):
    return re.findall(r"\{(\S+), (\S+)\}", table(name, symbol))


# What Gappa does not see. Sine: table 2^-81 and t 2^-80, reduction 2^-81.5, polynomials 2^-85, and t^2/2
# times tl, 2^-79.6: below 2^-78.3. Exponential, relative to T: table 2^-80, reduction 2^-78.4, polynomial
# 2^-77.2: below 2^-76.4.
SINE_REST = 2.0 ** -78
EXPONENTIAL_REST = 2.0 ** -76

LOW = """
tail = rnd((th - h) + tl);
slope = rnd(rnd(bh * tail) + rnd(br * th));
low = rnd(sl + rnd(ar + rnd(slope + curve)));
lower = rnd(low - e);
upper = rnd(low + e);
"""

SINE = """
@rnd = float<ieee_64, ne>;
z = rnd(th * th);
ps = rnd(rnd(th * z) * rnd(-0x1.5555555555555p-3 + rnd(z * rnd(0x1.1111110f8755cp-7 + rnd(z * -0x1.9fafdf4a16769p-13)))));
pc = rnd(rnd(rnd(z * z) * rnd(0x1.555555555549ep-5 + rnd(z * -0x1.6c16bb2a49e76p-10))) - rnd(rnd(0.5 * z) + rnd(th * tl)));
Z = th * th;
PS = (th * Z) * (-0x1.5555555555555p-3 + Z * (0x1.1111110f8755cp-7 + Z * -0x1.9fafdf4a16769p-13));
PC = (Z * Z) * (0x1.555555555549ep-5 + Z * -0x1.6c16bb2a49e76p-10) - (0.5 * Z + th * tl);
curve = rnd(rnd(rnd(ah + ar) * pc) + rnd(rnd(bh + br) * ps));
CURVE = (ah + ar) * PC + (bh + br) * PS;
"""

EXPONENTIAL = """
@rnd = float<ieee_64, ne>;
z = rnd(th * th);
even = rnd(0x1.55555555554cp-5 + rnd(z * 0x1.6c16c6f942f9dp-10));
odd = rnd(0x1.555555555549p-3 + rnd(z * 0x1.111115b67353cp-7));
q = rnd(rnd(z * rnd(0.5 + rnd(rnd(th * odd) + rnd(z * even)))) + rnd(th * tl));
Z = th * th;
Q = Z * (0.5 + (th * (0x1.555555555549p-3 + Z * 0x1.111115b67353cp-7) + Z * (0x1.55555555554cp-5 + Z * 0x1.6c16c6f942f9dp-10))) + th * tl;
curve = rnd(rnd(ah + ar) * q);
CURVE = (ah + ar) * Q;
"""

# What low stands for, and the claims: the exact value lies between the two ends.
CLAIM = """
LOW = sl + (ar + ((bh * ((th - h) + tl) + br * th) + CURVE));
LOWER = (lower + e) - LOW;
UPPER = (upper - e) - LOW;
{{ @FLT(h, 26) /\\ @FLT(th, 53) /\\ @FLT(tl, 53) /\\ @FLT(sl, 53) /\\ th in [{t0}, {t1}] /\\ h in [{t0}, {t1}]
   /\\ th - h in [-{m}, {m}] /\\ tl in [-{tl}, {tl}] /\\ sl in [-{sl}, {sl}] /\\ e in [{e0}, {e1}]
   -> LOWER in [-{bound}, {bound}] /\\ UPPER in [-{bound}, {bound}] }}
LOWER -> (lower - (low - e)) + (low - LOW);
UPPER -> (upper - (low + e)) + (low - LOW);
"""


def script(head, a, b, t0, t1, greatest, scale, rest, error):
    """`greatest` bounds the result; the test allows for `error` of `scale`, of which `rest` is for what
    Gappa does not see."""
    t = max(abs(t0), abs(t1))
    e0 = scale[0] * error * (1 - 2.0 ** -50)
    names = "".join(f"{n} = {v};\n" for n, v in zip(("ah", "ar", "bh", "br"), (*a, *b)))
    claim = CLAIM.format(t0=exact(t0), t1=exact(t1), m=exact(t * 2.0 ** -25), tl=exact(t * 2.0 ** -52),
                         sl=exact(0.0 if a[0] == "0x0p+0" else greatest * 2.0 ** -53), e0=exact(e0),
                         e1=exact(scale[1] * error * factor * 1.01), bound=exact(e0 - rest))
    return names + head + LOW + claim


def sine_scripts():
    nodes = entries("SineTable.hpp", "kSines")
    error = bound("SineCosine.cpp", "kError")
    half = math.pi / 1024 * (1 + 2.0 ** -20)
    for k in range(1, 257):
        greatest, lead = math.sin(min(k + 0.5001, 256) * math.pi / 512), float.fromhex(nodes[k][0])
        yield f"sine, node {k}", script(SINE, nodes[k], nodes[256 - k], -half, half, greatest, (lead, lead), SINE_REST, error)
    # At node 0 the result is t itself: a script for each power of 2, and what Gappa does not see shrinks with t.
    # The angle nearest of all to a multiple of a quarter turn leaves 2^-60.9.
    for i in range(8, 62):
        t0, t1 = 2.0 ** -(i + 1), min(2.0 ** -i, half)
        yield f"sine, node 0, t from 2^-{i + 1}", script(
            SINE, nodes[0], nodes[256], t0, t1, t1, (t0 * (1 - 2.0 ** -25), t1), t0 * 2.0 ** -69.5, error)


def exponential_scripts():
    half = math.log(2) / 256 * (1 + 2.0 ** -20)
    for i, node in enumerate(entries("ExponentialTable.hpp", "kPowersOfTwo")):
        value = 2.0 ** (i / 128)
        yield f"exponential, node {i}", script(EXPONENTIAL, node, node, -half, half, value * math.exp(half),
                                               (value * math.exp(-half), value * math.exp(half)), value * EXPONENTIAL_REST, bound("Exponential.cpp", "kError"))


check_coefficients("SineCosine.cpp", "Remainder<Real> PowersOf", "Both ends", SINE)
check_coefficients("Exponential.cpp", "double Curve", "Both ends", EXPONENTIAL)
prove({"sine and cosine": sine_scripts, "exponential": exponential_scripts})
