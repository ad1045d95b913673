// Reals as the library writes their grammar, followed character by character so that the place and
// the reason of a fault can be told. An optional sign, digits with at most one point, and an
// optional exponent: a letter, an optional sign and digits; or a sign directly after the mantissa
// and digits. An exponent without digits counts as 0.
#pragma once

#include <string>
#include <string_view>

namespace corvale::tool {

inline constexpr std::string_view kFieldExponents = "EeDd";
inline constexpr std::string_view kCardExponents = "EeDdQq";

[[nodiscard]] constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The number of characters of the real that begins `text`; 0 where none begins, a mantissa without
/// a digit included.
[[nodiscard]] std::size_t RealLength(std::string_view text, std::string_view exponentLetters);

/// The same for a real without an exponent: 0 where none begins.
[[nodiscard]] std::size_t DecimalLength(std::string_view text);

/// Why `text`, of which `length` characters are a real, is no real as a whole: "a second point".
/// Not for a text that is one.
[[nodiscard]] std::string WhyNoReal(std::string_view text, std::size_t length);

/// The nearest double to a real of a card, all of whose digits count: the library's readers of
/// fields look at 80 characters only. An infinity or a zero where it is too large or too small.
[[nodiscard]] double CardReal(std::string_view real);

}  // namespace corvale::tool
