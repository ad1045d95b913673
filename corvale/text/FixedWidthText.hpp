// Fixed-width text: between C buffers and texts, clean-up, case, replacement, the value of an input
// line. The words are explained in StrFunctions.hpp. Unless a comment below says otherwise:
//
// Width      a result is cut or blank-filled to the size of the span it is written to
// Bad input  nothing fails; NUL, tab and all other control characters are ordinary non-blanks, and
//            bytes above 127 pass through unchanged
// Aliasing   a result may be its own input (same first byte) where the comment says so; any other
//            overlap of arguments is not supported
// Threads    no state, no lock, no allocation: any number of threads at once
//
// Buffers  CharArrToStr  StrToCharArr
// Clean    NullToSpace  BlankToZeroChar  RemSpaceSlashChars  ReplaceString
// Case     ToLowerCase  ToUpperCase
// Ask      IsBlankOrNull
// Input    GetInputStr  GetInputFileName
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::StrFunctions {

/// Takes a caller's character buffer in as a text: characters are copied up to the first one whose
/// code is below 32 or above 127 (a NUL, any control character, any byte of 128 to 255); blanks
/// follow. A NUL-terminated string may therefore stand in for a full buffer.
///
/// Width      `n` elements are read at most, and none after the one that stops; `text` is filled to
///            its size, its characters beyond `n` are blank
/// Bad input  `n` < 1 or a null `chars`: nothing is read, `text` is blank
CORVALE_API void CharArrToStr(const char* chars, std::int32_t n, std::span<char> text) noexcept;

/// Hands a text out to a caller's character buffer: blanks to elements 1 to `n`, then the
/// characters of `text` unchanged, never a terminator.
///
/// Width      exactly `n` elements are written; a longer `text` is cut
/// Bad input  `n` < 1 or a null `chars`: nothing is written
CORVALE_API void StrToCharArr(std::string_view text, std::int32_t n, char* chars) noexcept;

/// Replaces every occurrence of `pattern`, found from left to right without overlap, byte for byte
/// (trailing blanks of `pattern` and `replacement` count). What was inserted is not searched again.
///
/// Width      grown text is lost on the right, shrunk text leaves blanks there
/// Bad input  an empty `pattern` blanks the whole result; one wider than `text` changes nothing
/// Aliasing   `result` may be `text` itself where `replacement` is not longer than `pattern`
CORVALE_API void ReplaceString(std::string_view text, std::string_view pattern,
                               std::string_view replacement, std::span<char> result) noexcept;

/// Turns every NUL of `text` into a blank, in place.
CORVALE_API void NullToSpace(std::span<char> text) noexcept;

/// 1 when `text` holds no non-blank character, width 0 included, otherwise 0. A NUL is not a blank.
[[nodiscard]] CORVALE_API std::int32_t IsBlankOrNull(std::string_view text) noexcept;

/// Turns every blank of `text` into the digit 0, in place, trailing blanks included: " 5:03"
/// becomes "05:03".
CORVALE_API void BlankToZeroChar(std::span<char> text) noexcept;

/// Keeps the digits and points of `input`, in their order, and drops every other character:
/// "2023/10/05 12:30:45.5" becomes "20231005123045.5".
///
/// Bad input  kept characters that do not fit in `output` are dropped
/// Aliasing   `output` may be `input` itself
CORVALE_API void RemSpaceSlashChars(std::string_view input, std::span<char> output) noexcept;

/// Copies `text` with its letters A to Z as a to z. ASCII only, in every locale.
///
/// Aliasing   `result` may be `text` itself
CORVALE_API void ToLowerCase(std::string_view text, std::span<char> result) noexcept;

/// Copies `text` with its letters a to z as A to Z. ASCII only, in every locale.
///
/// Aliasing   `result` may be `text` itself
CORVALE_API void ToUpperCase(std::string_view text, std::span<char> result) noexcept;

/// The value of an input line: what follows its first "=" (the whole line without one), moved to
/// the left end, in capitals. Inner blanks, quotes and later "=" stay.
///
/// Aliasing   `result` may be `line` itself
CORVALE_API void GetInputStr(std::string_view line, std::span<char> result) noexcept;

/// As `GetInputStr`, with the value's case kept as a file name needs.
///
/// Aliasing   `result` may be `line` itself
CORVALE_API void GetInputFileName(std::string_view line, std::span<char> result) noexcept;

}  // namespace corvale::StrFunctions
