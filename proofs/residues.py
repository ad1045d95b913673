"""Multiples of a number modulo another: what the searches for hard arguments have in common."""


def first_in_range(a, m, low, high):
    """The least x >= 0 with low <= a x mod m <= high, where 0 <= low <= high < m; None without one.

    Within one round of m the least multiple of a from low on decides. Otherwise rounds are counted: in
    round y the multiples of a hit the range where -m y mod a does, the same question with a for m.
    """
    if low == 0:
        return 0
    a %= m
    if a == 0:
        return None
    x = -(-low // a)
    if a * x <= high:
        return x
    y = first_in_range(m % a, a, -high % a, -low % a)
    return None if y is None else -(-(low + m * y) // a)
