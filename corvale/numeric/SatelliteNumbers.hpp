// Satellite numbers in five characters, as text records carry them.
//
// Numbers to 99999 are five digits. Numbers from 100000 to 339999 are a capital letter for the
// leading two digits and the last four digits: the letters A to Z without I and O, which look like
// digits, stand in order for 10 to 33 (A0000 is 100000, H9999 179999, J0000 180000, Z9999 339999).
//
// Bad input  nothing fails and nothing is reported; the comments say what comes out
// Threads    no state, no allocation: any number of threads at once
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <cstdint>
#include <string_view>

namespace corvale::GenFunctions {

/// The five characters of a satellite number, leading zeros included.
///
/// Width      exactly 5, without a terminator
/// Bad input  0 and negative numbers give "00000"; from 340000 on there is no letter and the text
///            holds the last five digits (340000 gives "40000"), which read back as another number
[[nodiscard]] CORVALE_API std::array<char, 5> NumToAlpha5(std::int32_t number) noexcept;

/// The satellite number in the first five characters of `text`: an integer of up to five digits, or
/// a letter code whose four digits are read by the same rules. Blanks anywhere are ignored, and
/// characters that are all blank read as 0; one '+' or '-' may come before the digits. So "   12"
/// gives 12, " -12" gives -12, "A 1 2" gives 100012 and "A-001" gives 99999.
///
/// Width      a shorter text reads as if blanks followed; characters beyond the fifth do not count
/// Bad input  0 where neither reading succeeds: any other character, a small letter, I or O, a sign
///            without a digit, a second sign. Control characters are no blanks
[[nodiscard]] CORVALE_API std::int32_t Alpha5ToNum(std::string_view text) noexcept;

}  // namespace corvale::GenFunctions
