#!/usr/bin/env python3
"""Finds arguments of the elementary functions whose results are hard to round, and prints them:

    hard_cases.py > tests/cases/hard_arguments.txt

One argument. Over a window of consecutive doubles x + k u a function is a + b k but for a curvature that
is measured. The distance of its result from a midpoint of two doubles, in units of the result, is
(a + b k) mod 1; the least k with a small distance follows from continued fractions (residues.py), and the
exact value decides. The windows are spread at random over all exponents; the nearest cases are kept.

Large angles. For each exponent the double m 2^e, m of 53 bits, that comes nearest to a multiple of pi/2,
by the same search in the multiples of 2^e modulo pi/2: reducing it loses the most leading bits.

Two arguments. For a random midpoint the fraction y/x, of at most 53 bits each, nearest to its tangent, by
continued fractions.

Results are MPFR's, of 53 bits, to nearest."""
import random

import gmpy2
from gmpy2 import mpfr

from residues import first_in_range

gmpy2.get_context().precision = 400
THIRD = mpfr(0.3333333333333333)

# Name, function, exponents of the arguments, signs.
FUNCTIONS = [
    ("Sin", gmpy2.sin, (-26, 7), (1, -1)),
    ("Cos", gmpy2.cos, (-26, 7), (1,)),
    ("Exp", gmpy2.exp, (-53, 9), (1, -1)),
    ("ArcTan", gmpy2.atan, (-26, 30), (1, -1)),
    ("ArcCos", gmpy2.acos, (-40, -1), (1, -1)),
    ("CubeRoot", gmpy2.cbrt, (-1022, 1023), (1, -1)),
    ("CubRt", lambda x: x ** THIRD, (-1022, 1023), (1,)),
]
WINDOWS, KEPT, SPARE_BITS = 60_000, 320, 22
POINTS = 320
SCALE = 1 << 128  # the modulus that stands for 1


def exponent_of(value):
    """The e with 2^e <= |value| < 2^(e + 1)."""
    return gmpy2.get_exp(value) - 1


def unit_of(value):
    return mpfr(2) ** (exponent_of(value) - 52)


def distance(value):
    """From the nearest midpoint of two doubles, in units."""
    scaled = abs(value) / unit_of(value) - mpfr(0.5)
    return abs(scaled - gmpy2.rint(scaled))


def rounded(value):
    return float(mpfr(value, 53))


def is_ordinary(value):
    return abs(value) > mpfr(2) ** -1000 and abs(value) < mpfr(2) ** 1000


def window_cases(function, start, unit, length):
    """The arguments start + k unit, k < length, at a distance below 2^-SPARE_BITS."""
    ends = [function(start + unit * k) for k in (0, length // 2, length)]
    if not all(is_ordinary(end) for end in ends) or len({exponent_of(end) for end in ends}) > 1:
        return
    first, middle, last = (end / unit_of(end) for end in ends)
    slack = abs(first - 2 * middle + last) / 2 + mpfr(2) ** -SPARE_BITS
    if slack > mpfr(2) ** -12:  # curved too much to find what is rare
        return
    step = int((last - first) / length * SCALE) % SCALE
    width = int(2 * slack * SCALE)
    k = -1
    for _ in range(4):  # where the function is flat, neighbours are all alike
        here = int((first - mpfr(0.5) + slack) * SCALE) + (k + 1) * step
        found = first_in_range(step, SCALE, -here % SCALE, (-here + width) % SCALE) \
            if (-here % SCALE) + width < SCALE else 0
        if found is None or k + 1 + found >= length:
            return
        k += 1 + found
        yield start + unit * k


def length_of(function, x, unit):
    """As many doubles as leave the curvature below the distance that is looked for."""
    step = x * mpfr(2) ** -20
    bend = abs(function(x) - 2 * function(x + step) + function(x + 2 * step)) / step ** 2 / unit_of(function(x))
    return 1 << 40 if bend == 0 else min(1 << 40, int(gmpy2.sqrt(mpfr(2) ** -SPARE_BITS / bend) / unit))


def hard_arguments(function, exponents, signs, choice):
    """The KEPT nearest cases as (distance, argument)."""
    cases = {}
    for _ in range(WINDOWS):
        unit = mpfr(2) ** (choice.randint(*exponents) - 52)
        start = choice.choice(signs) * mpfr(choice.getrandbits(52) | 1 << 52) * unit
        unit = gmpy2.copy_sign(unit, start)
        if not is_ordinary(function(start)):
            continue
        length = length_of(function, start, abs(unit))
        for x in window_cases(function, start, unit, length) if length > 1 else ():
            if abs(x) < 2 ** 53 * abs(unit):
                cases[float(x)] = distance(function(x))
    return sorted((d, x) for x, d in cases.items() if d < mpfr(2) ** -SPARE_BITS)[:KEPT]


def large_angles():
    """For each exponent the double nearest to a multiple of a quarter turn."""
    gmpy2.get_context().precision = 2400
    quarters = 2 / gmpy2.const_pi()
    modulus = 1 << 1200
    for e in range(1, 972, 3):
        step = int(quarters * mpfr(2) ** e % 1 * modulus)
        start, width = (step << 52) % modulus, modulus >> 40
        found = None
        while width > 1:  # halves the distance until no m is left
            k = first_in_range(step, modulus, (-start - width) % modulus, (-start + width) % modulus) \
                if (-start - width) % modulus + 2 * width < modulus else 0
            if k is None or k >= 1 << 52:
                break
            found, width = k, width // 2
        if found is not None:
            yield float(mpfr((1 << 52) + found) * mpfr(2) ** e)
    gmpy2.get_context().precision = 400


def best_fraction(value):
    """The convergent of a number from 1 up with the greatest numerator of at most 53 bits."""
    (p, q), (p0, q0), rest = (1, 0), (0, 1), value
    while True:
        whole = int(gmpy2.floor(rest))
        following = whole * p + p0, whole * q + q0
        if following[0] >= 1 << 53 or rest == whole:
            return p, q
        (p0, q0), (p, q), rest = (p, q), following, 1 / (rest - whole)


def hard_points(choice):
    """Points whose angle, up to half a turn, is all but a midpoint."""
    for _ in range(POINTS):
        midpoint = 2 * (choice.getrandbits(52) | 1 << 52) + 1
        angle = midpoint * mpfr(2) ** (choice.randint(-30, 1) - 53)
        if angle > gmpy2.const_pi():
            angle /= 2
        tangent = abs(gmpy2.tan(angle))
        scale = mpfr(2) ** exponent_of(tangent)
        y, x = best_fraction(tangent / scale)
        yield choice.choice((1, -1)) * y, (x if angle < gmpy2.const_pi() / 2 else -x) / scale


def show(name, value, *arguments):
    bits = int(gmpy2.floor(gmpy2.log2(distance(value)))) if distance(value) != 0 else 0
    print(name, *(float(a).hex() for a in arguments), rounded(value).hex(), bits)


def main():
    print("# Made by proofs/elementary/hard_cases.py: function, argument or arguments, result, and the power")
    print("# of 2 below the distance of the exact value from a midpoint of two doubles, in units.")
    choice = random.Random(1)
    for name, function, exponents, signs in FUNCTIONS:
        for _, x in hard_arguments(function, exponents, signs, choice):
            show(name, function(mpfr(x)), x)
    for x in large_angles():
        gmpy2.get_context().precision = 2400
        show("Sin", gmpy2.sin(mpfr(x)), x)
        show("Cos", gmpy2.cos(mpfr(x)), x)
        gmpy2.get_context().precision = 400
    for y, x in hard_points(choice):
        show("ArcTan2", gmpy2.atan2(mpfr(y), mpfr(x)), y, x)


main()
