#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/text/StrFunctions.hpp>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace str = StrFunctions;
namespace gen = GenFunctions;

/// A procedure that answers with a logical value.
template <class T, std::int32_t (*ask)(T) noexcept>
bool Ask(T value) noexcept {
    return ask(value) != 0;
}

std::int64_t KeyToPointer(std::int64_t key) noexcept {
    return gen::KeyToCPtr(key);
}

std::int32_t FindIndex(std::span<const double> table, double value) noexcept {
    return gen::FindRecIdx(table.data(), static_cast<std::int32_t>(table.size()), value);
}

constexpr const char* kAsWritten = "as written in the text";
constexpr const char* kNoNumber = "a field without a usable number reads as 0";
constexpr const char* kAnyKey = "every key is usable";

constexpr Procedure kProcedures[] = {
    {"str_to_real", "text", "StrFunctions::StrToReal",
     "The real that begins at the first non-blank character of the text: digits with at most one "
     "point, and an exponent after E, e, D, d or a sign. Correctly rounded.",
     kAsWritten, "a field without a usable number reads as 0; one out of range as an infinity or 0",
     kSignature<str::StrToReal>},
    {"str_to_two_reals", "text", "StrFunctions::StrTo2Reals",
     "The first two reals of the text, wherever they stand: b'1.5/2.5'. Letters separate.",
     kAsWritten, "a number that is missing or not usable reads as 0", kSignature<str::StrTo2Reals>},
    {"input_str_to_real", "line", "StrFunctions::InputStrToReal",
     "The real after the first \"=\" of a line.", kAsWritten, kNoNumber,
     kSignature<str::InputStrToReal>},
    {"str_to_int", "text", "StrFunctions::StrToInt",
     "The first integer of the text, wherever it stands: b'abc 12 x'.", nullptr,
     "a field without a usable 32-bit integer reads as 0", kSignature<str::StrToInt>},
    {"str_to_two_ints", "text", "StrFunctions::StrTo2Ints",
     "The first two integers of the text, wherever they stand: b'(3, 4)'.", nullptr,
     "a number that is missing or not usable reads as 0", kSignature<str::StrTo2Ints>},
    {"input_str_to_int", "line", "StrFunctions::InputStrToInt",
     "The integer after the first \"=\" of a line, or 1 for YES, ON and TRUE and 0 for NO and OFF.",
     nullptr, kNoNumber, kSignature<str::InputStrToInt>},
    {"input_str_to_num_str", "line", "StrFunctions::InputStrToNumStr",
     "The number and the word after the first \"=\" of a line: b'STEP = 60 sec' gives 60.0 and "
     "b'sec'. The word is as wide as the line, or as `width` says.",
     kAsWritten, "0 and blanks where one of the two is missing or not usable",
     kSignature<str::InputStrToNumStr>, nullptr, 0, true, true},
    {"on_off_to_int", "text", "StrFunctions::OnOff2Int",
     "1 where the first two non-blank characters are ON in any case, otherwise 0.", nullptr,
     "every text is usable", kSignature<str::OnOff2Int>},
    {"fx0_to_signed", "value, n", "StrFunctions::Fx0ToSignAx",
     "The value with a sign always and 8 decimals, cut after `n` characters: b'+.50000000'.",
     "the unit of the text is that of the value",
     "ValueError for `n` outside 1 to 20; asterisks from magnitude 1e10 on",
     kSignature<str::Fx0ToSignAx>, nullptr, 20},
    {"fx0_to_text", "value, n", "StrFunctions::Fx0ToAx",
     "The value with `n` decimals, cut after `n` characters: 3.14159 with n = 4 is b'3.14'.",
     "the unit of the text is that of the value",
     "ValueError for `n` outside 1 to 30; asterisks where more than 30 characters are needed",
     kSignature<str::Fx0ToAx>, nullptr, 30},
    {"num_to_alpha5", "number", "GenFunctions::NumToAlpha5",
     "The five characters of a satellite number: b'00007', b'A0000' for 100000.", nullptr,
     "0 and negative numbers give b'00000'; from 340000 on the last five digits",
     kSignature<gen::NumToAlpha5>},
    {"alpha5_to_num", "text", "GenFunctions::Alpha5ToNum",
     "The satellite number in the first five characters of the text.", nullptr,
     "what is no number reads as 0", kSignature<gen::Alpha5ToNum>},
    {"ck_sum", "line, first, last", "GenFunctions::CkSum",
     "The checksum modulo 10 of the characters `first` to `last` of a line, counted from 1, and a "
     "status. Digits count their value, each '-' counts 1.",
     nullptr, "`first` > `last` or `first` < 1: sum 0 and status 2, otherwise status 0",
     kSignature<gen::CkSum>},
    {"sat_key_to_addr", "key", "GenFunctions::SatKeyToAddr",
     "The address in a DMA key: a tenth of it, truncated toward zero.", nullptr, kAnyKey,
     kSignature<gen::SatKeyToAddr>},
    {"key_to_c_ptr", "key", "GenFunctions::KeyToCPtr", "sat_key_to_addr, as wide as an address.",
     nullptr, kAnyKey, kSignature<KeyToPointer>},
    {"is_dma", "key", "GenFunctions::IsDma", "True where the key is not 0 and divisible by 10.",
     nullptr, kAnyKey, kSignature<Ask<std::int64_t, gen::IsDma>>},
    {"is_no_dup", "key", "GenFunctions::IsNoDup",
     "True where the key is 0, or not divisible by 10 and below 3670000000000000000.", nullptr,
     kAnyKey, kSignature<Ask<std::int64_t, gen::IsNoDup>>},
    {"next_sat_key", "key", "GenFunctions::NextSatKey",
     "The key that follows a key: 10000000000 higher.", nullptr,
     "wraps past the largest 64-bit value", kSignature<gen::NextSatKey>},
    {"int_to_logical", "i", "GenFunctions::Int2Logical", "True for every integer but 0.", nullptr,
     "every integer is usable", kSignature<Ask<std::int32_t, gen::Int2Logical>>},
    {"logical_to_int", "b", "GenFunctions::Logical2Int", "The stored value of a logical, 1 or 0.",
     nullptr, "another value is returned as it is", kSignature<gen::Logical2Int>},
    {"invalid_flag", "i", "GenFunctions::InvalidFlag", "True for every integer but 0 and 1.",
     nullptr, "every integer is usable", kSignature<Ask<std::int32_t, gen::InvalidFlag>>},
    {"find_rec_idx", "table, value", "GenFunctions::FindRecIdx",
     "The index i, counted from 1, with table(i) <= value < table(i + 1): 1 up to the first entry "
     "and the last from the last one on. `table` ascends along its last axis.",
     "table and value share any unit",
     "0 for an empty table; some index of the table where it does not ascend, 1 for a NaN value",
     kSignature<FindIndex>},
};

}  // namespace

std::span<const Procedure> NumberProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
