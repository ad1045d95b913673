// Numbers and yes/no words from text fields and from input lines. The words are explained in
// StrFunctions.hpp. For all of them:
//
// A real is an optional sign, digits with at most one point, and an optional exponent: E, e, D or d
// with an optionally signed number, or a sign directly after the digits ("1.5-3" is 0.0015). There
// are no implied decimals; what is missing counts as 0 ("." is 0, "1.5e" is 1.5, "e5" is 0). Only
// its first 80 characters are looked at. An integer is an optional sign and decimal digits; only
// its first 12 characters are looked at.
//
// Width      any; a text of width 0 holds no number
// Bad input  nothing fails: a field without a usable number, or with an integer out of range, reads
//            as 0. Words for infinity and not-a-number are no numbers. A real too large for a
//            double is an infinity, one too small a zero, both with their sign
// Threads    no state, no lock, no allocation: any number of threads at once
// Exactness  reals are correctly rounded to nearest, ties to even, in every locale and whatever the
//            thread's rounding mode: all digits looked at count
//
// Field  StrToReal  StrTo2Reals  StrToInt  StrTo2Ints  OnOff2Int
// Line   InputStrToReal  InputStrToInt  InputStrToNumStr
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::StrFunctions {

/// The real that begins at the first non-blank character of `text`. It ends at the first character
/// that can be no part of a real: "3.0d-2x" is 0.03, "1,5" is 1, "abc 1.5" is 0.
///
/// Units      as written in `text`
/// Bad input  characters of a real that do not make one ("1.2.3", "1e2e3", "1.5e+-3") read as 0
[[nodiscard]] CORVALE_API double StrToReal(std::string_view text) noexcept;

/// The first two reals of `text`, wherever they stand and whatever separates them. Only a sign
/// starts an exponent here, letters separate: "1.5E3 2" is 1.5 and 3.
///
/// Units      as written in `text`
/// Bad input  a number that is missing or not usable reads as 0; both are always written
/// Aliasing   `first` and `second` must be different objects
CORVALE_API void StrTo2Reals(std::string_view text, double& first, double& second) noexcept;

/// The real after the first "=" of an input line, as `StrToReal` reads it: "MASS = 12.5" is 12.5.
///
/// Units      as written in `line`
/// Bad input  a line without "=" reads as 0
[[nodiscard]] CORVALE_API double InputStrToReal(std::string_view line) noexcept;

/// The first integer of `text`, wherever it stands: "abc 12 x" is 12, "x=+42;" is 42, "1.5" is 1.
///
/// Bad input  signs and digits that do not make an integer ("12-3", "-") read as 0
[[nodiscard]] CORVALE_API std::int32_t StrToInt(std::string_view text) noexcept;

/// The first two integers of `text`, wherever they stand: "(3, 4)" is 3 and 4.
///
/// Bad input  a number that is missing or not usable reads as 0; both are always written
/// Aliasing   `first` and `second` must be different objects
CORVALE_API void StrTo2Ints(std::string_view text, std::int32_t& first,
                            std::int32_t& second) noexcept;

/// The integer or the yes/no word after the first "=" of an input line. A value that begins with
/// YES, ON or TRUE in any case is 1, with NO or OFF 0 ("ONE" is 1, "NONE" is 0); any other is read
/// as `StrToInt` does.
///
/// Bad input  a line without "=" reads as 0
[[nodiscard]] CORVALE_API std::int32_t InputStrToInt(std::string_view line) noexcept;

/// The number and the word after the first "=" of an input line: "STEP = 60 sec" is 60 and "sec".
///
/// The two are separated by blanks, or by one comma or semicolon with or without blanks beside it.
/// Nothing between two separators leaves its target at 0 or blank, and a slash ends the reading:
/// ",km" is 0 and "km", "1.5 /" is 1.5 and blank. A word ends at the first blank, comma, semicolon
/// or slash; enclosed in apostrophes or quotation marks it may hold them, and the delimiter itself
/// written twice. It is moved to the left end. What follows it is ignored.
///
/// Units      `number` as written in `line`
/// Bad input  0 and blank, where there is no "=", no number ("abc km", "1.5km", "2*3"), no word
///            after the number, or no closing delimiter
/// Aliasing   `word` must not overlap `line`
CORVALE_API void InputStrToNumStr(std::string_view line, double& number,
                                  std::span<char> word) noexcept;

/// 1 where the first two non-blank characters of `text` are "ON" in any case ("only" too),
/// otherwise 0.
[[nodiscard]] CORVALE_API std::int32_t OnOff2Int(std::string_view text) noexcept;

}  // namespace corvale::StrFunctions
