#!/usr/bin/env python3
"""Proves what corvale/text/RealConversion.cpp relies on: that the upper 128 bits of one product round
every decimal of up to 64 bits and every exponent to the nearest double, without a second look.

    tables | prove.py

The words. A factor w has 64 bits, the first of them 1: the digits, shifted. P(q) is the power of the
table: 128 bits, exact or too large by less than 1. T is the true power, so the product w P(q) is too
large by w (P - T) < 2^64. The product is high x 2^128 + middle x 2^64 + low; of high the last d bits
are dropped: 10 or 11, more where the double is subnormal. The code takes "middle is not 0" for "something
follows high".

Why that is right, but for the products that are searched here. If middle is not 0, the true product
has the same high word and something follows it. If middle is 0, the true product is high x 2^128 and a
little more or less than that. This matters only where the dropped bits are 1 0...0, a tie: with all
other dropped bits the nearest double is the same on both sides.
"""
import sys

from residues import first_in_range

LEAST, GREATEST = -342, 308
FACTORS = 1 << 63, 1 << 64


def true_power(q):
    """numerator, denominator and shift: 5^q x 2^shift = numerator / denominator in [2^127, 2^128)."""
    if q >= 0:
        shift = 128 - (5**q).bit_length()
        return (5**q << shift, 1) if shift >= 0 else (5**q, 1 << -shift)
    return 1 << (5**-q).bit_length() + 127, 5**-q


def is_exact(q):
    numerator, denominator = true_power(q)
    return numerator % denominator == 0


def check_table(lines):
    rows = [tuple(map(int, line.split())) for line in lines]
    assert [row[0] for row in rows] == list(range(LEAST, GREATEST + 1))
    for q, high, low, binary in rows:
        numerator, denominator = true_power(q)
        assert high << 64 | low == -(-numerator // denominator), q
        assert denominator << 127 <= numerator < denominator << 128, q
        floor = (10**q).bit_length() - 1 if q >= 0 else -(10**-q).bit_length()
        assert binary == floor, q
    print(f"table: {len(rows)} powers are exact or rounded up, binary exponents are floor(log2 10^q)")


def check_range():
    assert 10**19 < 2**64
    assert (10**19) * 2 * 2**1074 < 10**-(LEAST - 1)       # less than half of 2^-1074
    assert 10 ** (GREATEST + 1) >= 2**1024
    print("range: 19 digits and a smaller exponent give 0, a greater one an infinity")


def first_factor(a, m, low, length):
    """The least factor w with (a w - low) mod m < length; None without one."""
    start, end = FACTORS
    low = (low - a * start) % m
    x = 0 if low + length > m else first_in_range(a, m, low, low + length - 1)
    return start + x if x is not None and start + x < end else None


def check_search():
    for m in range(2, 40):
        for a in range(m):
            for low in range(m):
                for high in range(low, m, 3):
                    found = next((x for x in range(m) if low <= a * x % m <= high), None)
                    assert first_in_range(a, m, low, high) == found, (a, m, low, high)
    print("search: agrees with trying every number, for all moduli below 40")


def dropped_counts(binary):
    """How many bits of high may be dropped for one power, whatever the shift of its digits. Of more
    than 64 the first is no bit of high: less than one half, so no tie.
    """
    counts = set()
    for shift in range(64):
        for top in (0, 1):
            biased = binary + 1 - shift + 10 + top + 1075
            counts.add(10 + top + max(0, 1 - biased))
    return {d for d in counts if d <= 64}


def check_ties():
    searched = 0
    for q in range(LEAST, GREATEST + 1):
        numerator, denominator = true_power(q)
        power = -(-numerator // denominator)
        if power % 2**64 == 0 and is_exact(q):
            continue  # the product has 128 bits: middle is all that follows high
        floor = (10**q).bit_length() - 1 if q >= 0 else -(10**-q).bit_length()
        if -27 <= q < 0:
            # Here ties happen. T and a tie are multiples of 2^130 / 5^-q, so T is a tie, and then the
            # error leaves middle 0, or 2^65 away, and then the error does not bring it to one.
            assert numerator % 2**130 == 0 and 2**130 // denominator > 2**65
            continue
        for d in dropped_counts(floor):
            searched += 1
            assert first_factor(power, 1 << 128 + d, 1 << 127 + d, 1 << 64) is None, (q, d)
    print(f"ties: no product of {searched} kinds has middle 0 behind one half, beyond true ties")


def check_long_arithmetic():
    """The greatest of the whole numbers that ExactDecimal.cpp compares. Both sides of a comparison have
    as many bits or differ by one, so one of them is counted.
    """
    all_digits, kept = 512, 19
    exponent = LEAST + kept - all_digits
    assert exponent == -835 and (5**835).bit_length() == 1939
    middle = 2**54 - 1
    negative = (middle * 5**-exponent).bit_length()   # middle x 5^-exponent against digits x 2^k
    longest = (10**all_digits).bit_length()           # or against the digits alone
    positive = 1024                                   # digits x 5^exponent, at most the number itself
    most = max(negative, longest, positive) + 1
    assert most <= 1939 + 54 + 64
    print(f"long arithmetic: {most} bits at most")


check_table(sys.stdin)
check_range()
check_search()
check_ties()
check_long_arithmetic()
