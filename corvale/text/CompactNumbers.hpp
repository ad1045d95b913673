// Numbers made short: reals in fixed notation without a useless character, and rows of
// comma-separated values without useless blanks and zeros. The words are explained in
// StrFunctions.hpp.
//
// The two writers render a real with so many decimals: an optional sign, the whole part without
// leading zeros (none for a magnitude below 1: ".500"), a point, the decimals. A negative value
// keeps its sign when it rounds to zero. An infinity is "Inf", not-a-number "NaN".
//
// Bad input  nothing fails and nothing is written out of bounds
// Threads    no state, no lock, no allocation: any number of threads at once
// Exactness  the exact value of the double, rounded once; halfway goes to the even digit, whatever
//            the thread's rounding mode
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::StrFunctions {

/// Writes `value` with a sign always and 8 decimals, cut after `n` characters: 0.5 is "+.50000000",
/// -0.0 is "-.00000000", 1.0 with `n` = 5 is "+1.00".
///
/// Units      the unit of `value` is that of the text
/// Width      the first `n` characters of `out`, at most 20; the others become blank
/// Bad input  a rendering wider than 20 characters, from magnitude 1e10 on, gives `n` asterisks;
///            `n` < 1 gives blanks; an `n` above 20 or the width of `out` counts as that
CORVALE_API void Fx0ToSignAx(double value, std::int32_t n, std::span<char> out) noexcept;

/// Writes `value` with `n` decimals, a sign only when it is negative, cut after `n` characters. So
/// `n` is both the decimals and the width: 3.14159 with `n` = 4 is "3.1416", cut to "3.14".
///
/// Units      the unit of `value` is that of the text
/// Width      the first `n` characters of `out`; the others, if there are any, become blank
/// Bad input  a rendering wider than 30 characters gives `n` asterisks, 30 at most; `n` < 1 writes
///            nothing; an `n` above the width of `out` is cut there
CORVALE_API void Fx0ToAx(double value, std::int32_t n, std::span<char> out) noexcept;

/// Shortens a row of comma-separated values, in place: no blanks, no zeros at the end of a
/// fraction, no zeros at the start of an exponent, and nothing at all for a zero that stands
/// between blanks. "1.500000000000000E+003, 2.000000000000000E-001, 0.000000000000000E+000 , 3"
/// becomes "1.5E+3,2E-1,,3".
///
/// Made for reals in the layout of this example, right-aligned in fields of 23 characters, and for
/// integers, decimals and clock times with ":". Fastest with the former.
///
/// Width      any; the result is blank-filled
/// Bad input  any line goes through the same rules; what would stand beyond 512 characters is lost
CORVALE_API void CompressCsvLine(std::span<char> line) noexcept;

}  // namespace corvale::StrFunctions
