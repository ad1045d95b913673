"""What the array procedures compute, beside plain Python and NumPy."""

from __future__ import annotations

import math
import unittest
from typing import Any

import numpy as np

import corvale

TWO_PI = 6.283185307179586
LETTERS = "ABCDEFGHJKLMNPQRSTUVWXYZ"
RANDOM = np.random.default_rng(7)


def code(number: int) -> bytes:
    """The five characters of a satellite number, the plain way."""
    if number < 100000:
        return b"%05d" % max(number, 0)
    if number < 340000:
        return (LETTERS[number // 10000 - 10] + f"{number % 10000:04d}").encode()
    return b"%05d" % (number % 100000)


class Texts(unittest.TestCase):
    def test_examples(self) -> None:
        rows: list[tuple[Any, tuple[Any, ...], Any, str]] = [
            (corvale.to_upper, (b"a1z{\xe9",), b"A1Z{\xe9", "ASCII only"),
            (corvale.to_upper, ("ab\0",), b"AB ", "a NUL at the end fills, as in an array"),
            (corvale.replace, (b"a\\b\\c", "\\", "/"), b"a/b/c", "every occurrence"),
            (corvale.replace, (b"a b\0\0", b"b ", b"c"), b"a c  ", "what fills an element is blank"),
            (corvale.replace, (b"abc", b"b", b"xyz"), b"axy", "growth is cut"),
            (corvale.null_to_space, (b"a\0b\0",), b"a b ", "inside too"),
            (corvale.is_blank, (b"",), True, "no width"),
            (corvale.is_blank, (b"\0a",), False, "a NUL in front"),
            (corvale.blank_to_zero, (b" 5:03",), b"05:03", "every blank"),
            (corvale.keep_digits, (b"2023/10/05",), b"20231005  ", "blank-filled"),
            (corvale.get_input_str, (b"Mode =  abc",), b"ABC        ", "in capitals"),
            (corvale.get_input_file_name, (b"F = a/B",), b"a/B    ", "case kept"),
            (corvale.compress_csv_line, (b"12.50, 0.000,1E+05",), b"12.5,0,1E+05      ", "shortened"),
            (corvale.str_to_two_reals, (b"1.5E3 2",), (1.5, 3.0), "letters separate"),
            (corvale.str_to_two_ints, (b"(3, 4)",), (3, 4), "anywhere"),
            (corvale.input_str_to_real, (b"MASS = 12.5",), 12.5, "after ="),
            (corvale.input_str_to_int, (b"FLAG = yes",), 1, "a word"),
            (corvale.on_off_to_int, (b" oNly",), 1, "two characters"),
            (corvale.fx0_to_signed, (0.5, 20), b"+.50000000          ", "8 decimals"),
            (corvale.fx0_to_text, (3.14159, 4), b"3.14", "cut"),
            (corvale.ck_sum, (b"1-2 A9", 1, 6), (3, 0), "a minus counts 1"),
            (corvale.ck_sum, (b"19", 0, 2), (0, 2), "positions count from 1"),
            (corvale.deg_to_ddmmsss, (10.1,), (10, 5, 59.999999999998735), "no rounding"),
            (corvale.deg_to_hhmmsss_str, (-15,), b"2300000", "an integer is a real"),
        ]
        for call, given, wanted, why in rows:
            with self.subTest(f"{call.__name__}: {why}"):
                self.assertEqual(call(*given), wanted)

    def test_widths(self) -> None:
        lines = np.array([b"STEP = 60 seconds"])
        self.assertEqual(corvale.input_str_to_num_str(lines, width=3)[1].dtype, np.dtype("S3"))
        wide = np.zeros(1, "S40")
        corvale.to_lower(lines, out=wide)
        self.assertEqual(wide[0], b"step = 60 seconds".ljust(40))
        for call in (lambda: corvale.to_lower(lines, out=np.zeros(1, "S3")),
                     lambda: corvale.fx0_to_text(1.0, 31), lambda: corvale.fx0_to_signed(1.0, 0),
                     lambda: corvale.input_str_to_num_str(lines, width=0)):
            with self.assertRaises(ValueError):
                call()

    def test_numbers_as_python_reads_them(self) -> None:
        values = RANDOM.normal(size=3000) * 10.0 ** RANDOM.integers(-30, 30, 3000)
        texts = np.array([repr(value).encode() for value in values])
        self.assertEqual(corvale.str_to_real(texts).tobytes(), values.tobytes())
        integers = RANDOM.integers(-2**31, 2**31, 3000)
        self.assertTrue((corvale.str_to_int(integers.astype("S11")) == integers).all())

    def test_satellite_numbers(self) -> None:
        numbers = np.arange(-3, 341000)
        codes = corvale.num_to_alpha5(numbers)
        self.assertEqual(codes.tobytes(), b"".join(code(number) for number in numbers.tolist()))
        good = numbers[(numbers >= 0) & (numbers < 340000)]
        self.assertTrue((corvale.alpha5_to_num(codes[(numbers >= 0) & (numbers < 340000)]) == good).all())


class Reals(unittest.TestCase):
    def test_angles_and_keys(self) -> None:
        x = RANDOM.normal(size=500) * 20
        turned = np.fmod(x, TWO_PI)
        turned[turned < 0] += TWO_PI
        self.assertTrue((corvale.fmod2p(x) == np.where((x < 0) & (x > -TWO_PI), x + TWO_PI, turned)).all())
        np.testing.assert_allclose(np.sin(corvale.ac_tan(np.sin(x), np.cos(x))), np.sin(x), atol=1e-14)
        self.assertEqual(corvale.ac_sin(-2.0), -math.pi / 2)
        self.assertEqual(corvale.delta_angle_lt180([10, 350], 10).tolist(), [0, -20])
        keys = np.array([0, 120, -25, 2**63 - 1, -(2**63)])
        self.assertEqual(corvale.is_dma(keys).tolist(), [False, True, False, False, False])
        self.assertEqual(corvale.is_no_dup(keys).tolist(), [True, False, True, False, True])
        self.assertEqual(corvale.sat_key_to_addr(keys[1:3]).tolist(), [12, -2])
        with np.errstate(over="ignore"):
            self.assertTrue((corvale.next_sat_key(keys) == keys + 10**10).all())

    def test_elementary(self) -> None:
        x = RANDOM.normal(size=500) * 1e5
        sine, cosine = corvale.sin_cos(x)
        self.assertTrue((sine == corvale.sin(x)).all() and (cosine == corvale.cos(x)).all())
        for own, model in ((sine, np.sin(x)), (cosine, np.cos(x)), (corvale.arc_tan(x), np.arctan(x)),
                           (corvale.arc_tan2(x, sine), np.arctan2(x, sine)), (corvale.arc_cos(sine), np.arccos(sine)),
                           (corvale.exp(sine), np.exp(sine)), (corvale.cube_root(x), np.cbrt(x))):
            np.testing.assert_allclose(own, model, rtol=1e-14)
        self.assertEqual(corvale.cube_root([-27, 1000]).tolist(), [-3, 10])
        self.assertEqual(float(corvale.sin(1e22)).hex(), "-0x1.b453ab76bf397p-1")

    def test_vectors(self) -> None:
        a, b = RANDOM.normal(size=(2, 200, 3))
        self.assertTrue((corvale.cross(a, b) == np.cross(a, b)).all())
        squares = a * a
        magnitudes = np.sqrt(squares[:, 0] + squares[:, 1] + squares[:, 2])
        self.assertTrue((corvale.mag(a) == magnitudes).all())
        self.assertTrue((corvale.unit_vec(a) == a / magnitudes[:, None]).all())
        turned = corvale.rotate(a, [[1], [2], [3]], 0.5)
        back = corvale.rodrigues_rot(turned, np.rad2deg(0.5), np.eye(3)[:, None])
        np.testing.assert_allclose(back, np.broadcast_to(a, (3, 200, 3)), atol=1e-14)
        with self.assertRaises(ValueError):
            corvale.mag(np.zeros((3, 2)))

    def test_matrices(self) -> None:
        m = RANDOM.normal(size=(50, 6, 6))
        a, b = m @ m.transpose(0, 2, 1) + np.eye(6), RANDOM.normal(size=(50, 6))
        upper = np.triu(a) + np.tril(np.full((6, 6), np.nan), -1)
        for solve in (corvale.cholesky, corvale.cholesky2):
            inverse, x = solve(a, b)
            np.testing.assert_allclose(inverse @ a, np.broadcast_to(np.eye(6), a.shape), atol=1e-8)
            np.testing.assert_allclose((a @ x[..., None])[..., 0], b, atol=1e-8)
            self.assertEqual(solve(upper, b)[0].tobytes(), inverse.tobytes(), "reads the upper triangle")
            columns = solve(np.asfortranarray(a[0]), b[0], out=(np.zeros((6, 6), order="F"), np.zeros(6)))
            self.assertEqual((columns[0].tobytes(), columns[1].tobytes()), (inverse[0].tobytes(), x[0].tobytes()))
        np.testing.assert_allclose(corvale.mtx_inv(m), np.linalg.inv(m), rtol=1e-6, atol=1e-8)
        np.testing.assert_allclose(corvale.minv(a), np.linalg.inv(a), rtol=1e-6, atol=1e-8)
        self.assertEqual(corvale.mtx_inv([[1.0, 2.0], [2.0, 4.0]]).tolist(), [[0.5, 0], [0.5, -2]])
        self.assertFalse(corvale.minv(np.ones((2, 3))).any())

        packed = corvale.sqr_mtx_to_lta(a)
        self.assertTrue((packed == a[:, *np.tril_indices(6)]).all())
        self.assertTrue((corvale.lta_to_sqr_mtx(packed) == np.tril(a) + np.tril(a, -1).transpose(0, 2, 1)).all())
        self.assertEqual((corvale.size_of_lta(6), corvale.size_of_sqr_mtx([21, 20]).tolist()), (21, [6, 5]))
        for call in (lambda: corvale.lta_to_sqr_mtx(np.zeros(5)), lambda: corvale.sqr_mtx_to_lta(np.zeros((3, 2))),
                     lambda: corvale.cholesky(np.zeros((2, 3)), np.zeros(2)),
                     lambda: corvale.cholesky(np.eye(3), np.zeros(2))):
            with self.assertRaises(ValueError):
                call()


class Lists(unittest.TestCase):
    def test_integers(self) -> None:
        values = RANDOM.integers(1, 900, 1000)
        self.assertEqual(corvale.isort(values).tolist(), sorted(set(values.tolist())))
        self.assertEqual(corvale.isort(values, -1).tolist(), sorted(set(values.tolist()), reverse=True))
        last = dict.fromkeys(values[::-1].tolist())
        self.assertEqual(corvale.idupe(values).tolist(), list(last)[::-1])
        own = np.array([5, 3, 5], np.int32)
        self.assertEqual((corvale.idupe(own, out=own).tolist(), own.tolist()), ([3, 5], [3, 5, 0]))
        with self.assertRaises(ValueError):
            corvale.idupe(values, out=np.zeros(2000, np.int32)[::2])
        table = np.sort(RANDOM.normal(size=100))
        wanted = np.clip(np.searchsorted(table, [-9.0, 0.1, 9.0], "right"), 1, 100)
        self.assertEqual(corvale.find_rec_idx(table, [-9.0, 0.1, 9.0]).tolist(), wanted.tolist())

    def test_keys(self) -> None:
        keys = np.array([b"%d" % number for number in RANDOM.integers(0, 10**6, 2000)])
        ordered, places = corvale.quick_sort(keys)
        self.assertEqual(ordered.tolist(), sorted(key.ljust(32) for key in keys.tolist()))
        self.assertEqual([key.rstrip() for key in ordered.tolist()], keys[places].tolist())
        own, companion = keys.astype("S32"), np.arange(2000)
        corvale.quick_sort(own, companion, out=(own, companion))
        self.assertEqual((own.tobytes(), companion.tobytes()), (ordered.tobytes(), places.tobytes()))

        few, numbers = np.array([b"c", b"a", b"b"], "S32"), np.arange(3)
        self.assertEqual(corvale.partition(1, 3, few, numbers), 2)
        self.assertEqual((few[1].rstrip(), numbers.tolist()), (b"b", [1, 2, 0]))
        for call in (lambda: corvale.quick_sort([b"x" * 33]), lambda: corvale.quick_sort(keys, [1]),
                     lambda: corvale.partition(0, 3, few, numbers), lambda: corvale.partition(1, 4, few, numbers)):
            with self.assertRaises(ValueError):
                call()


if __name__ == "__main__":
    unittest.main()
