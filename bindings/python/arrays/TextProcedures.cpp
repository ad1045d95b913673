#include <corvale/text/StrFunctions.hpp>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace str = StrFunctions;

bool IsBlank(std::string_view text) noexcept {
    return str::IsBlankOrNull(text) != 0;
}

void Replace(FilledText text, std::string_view pattern, std::string_view replacement,
             std::span<char> result) noexcept {
    str::ReplaceString(text.text, pattern, replacement, result);
}

/// A procedure that changes its text in place, as one with a result.
template <void (*change)(std::span<char>) noexcept>
void Changed(std::string_view text, std::span<char> result) noexcept {
    const std::size_t length = std::min(text.size(), result.size());
    std::memmove(result.data(), text.data(), length);
    std::fill(result.begin() + static_cast<Count>(length), result.end(), ' ');
    change(result);
}

constexpr const char* kAnyText = "every text is usable";

constexpr Procedure kProcedures[] = {
    {"to_upper", "text", "StrFunctions::ToUpperCase",
     "The text with its letters a to z as A to Z. ASCII only, in every locale.", nullptr, kAnyText,
     kSignature<str::ToUpperCase>},
    {"to_lower", "text", "StrFunctions::ToLowerCase",
     "The text with its letters A to Z as a to z. ASCII only, in every locale.", nullptr, kAnyText,
     kSignature<str::ToLowerCase>},
    {"replace", "text, pattern, replacement", "StrFunctions::ReplaceString",
     "The text with every occurrence of `pattern` replaced, from left to right without overlap. "
     "What grows is cut at the width of the text. Blanks at the end of `text`, `pattern` and "
     "`replacement` count.",
     nullptr, "an empty pattern blanks the text, one wider than the text changes nothing",
     kSignature<Replace>, nullptr, 0, true},
    {"null_to_space", "text", "StrFunctions::NullToSpace", "The text with every NUL as a blank.",
     nullptr, kAnyText, kSignature<Changed<str::NullToSpace>>},
    {"is_blank", "text", "StrFunctions::IsBlankOrNull",
     "True where the text holds nothing but blanks, or nothing at all.", nullptr,
     "a NUL before other characters, a tab: not blank", kSignature<IsBlank>},
    {"blank_to_zero", "text", "StrFunctions::BlankToZeroChar",
     "The text with every blank as the digit 0, those that fill its width too.", nullptr, kAnyText,
     kSignature<Changed<str::BlankToZeroChar>>},
    {"keep_digits", "text", "StrFunctions::RemSpaceSlashChars",
     "The digits and points of the text, in their order: b'2023/10/05' becomes b'20231005  '.",
     nullptr, kAnyText, kSignature<str::RemSpaceSlashChars>},
    {"get_input_str", "line", "StrFunctions::GetInputStr",
     "What follows the first \"=\" of a line (the whole line without one), moved to the left end, "
     "in capitals.",
     nullptr, kAnyText, kSignature<str::GetInputStr>},
    {"get_input_file_name", "line", "StrFunctions::GetInputFileName",
     "As get_input_str, with the case kept.", nullptr, kAnyText, kSignature<str::GetInputFileName>},
    {"compress_csv_line", "line", "StrFunctions::CompressCsvLine",
     "A row of comma-separated values without its blanks, the zeros that end fractions and those "
     "that begin exponents: b' 1.500000000000000E+003, 2.50' becomes b'1.5E+3,2.5', blank-filled.",
     nullptr,
     "any line goes through the same rules; what would stand beyond 512 characters is lost",
     kSignature<Changed<str::CompressCsvLine>>},
};

}  // namespace

std::span<const Procedure> TextProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
