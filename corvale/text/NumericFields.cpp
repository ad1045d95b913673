#include <corvale/text/NumericFields.hpp>

#include <corvale/text/AlignedDecimal.hpp>
#include <corvale/text/DigitWords.hpp>
#include <corvale/text/FreeFormReader.hpp>
#include <corvale/text/RealConversion.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace corvale::StrFunctions {

using internal::FreeFormReader;
using internal::ItemKind;
using internal::ScannedReal;

namespace {

constexpr std::size_t kRealWidth = 80;
constexpr std::size_t kIntegerWidth = 12;
constexpr internal::RealRules kFieldRules = {.exponentQ = false, .emptyMantissa = true};

// A set of characters: a table with an entry for each of them, because a field asks for a few
// characters that no branch could predict.
struct CharacterSet {
    constexpr bool operator()(char c) const noexcept {
        return isMember[static_cast<unsigned char>(c)];
    }
    std::array<bool, 256> isMember{};
};
consteval CharacterSet SetOf(std::string_view members) noexcept {
    CharacterSet set;
    for (const char c : members) set.isMember[static_cast<unsigned char>(c)] = true;
    return set;
}

constexpr CharacterSet kRealCharacters = SetOf("+-.0123456789eEdD");
constexpr CharacterSet kPairOfRealsCharacters = SetOf("+-.0123456789");
constexpr CharacterSet kIntegerCharacters = SetOf("+-0123456789");

// Cuts the next run of members off `text`, with all before it; empty where there is none.
std::string_view CutRun(std::string_view& text, const CharacterSet& members) noexcept {
    const auto first = std::find_if(text.begin(), text.end(), members);
    const auto last = std::find_if_not(first, text.end(), members);
    const std::string_view run(first, last);
    text = {last, text.end()};
    return run;
}

// The real at position `first` of `text`. 0 where characters of a real follow it directly: then the
// field is no number, such as "1.2.3". The first characters decide, whatever follows them.
double RealAt(std::string_view text, std::size_t first) noexcept {
    if (text.size() - first > kRealWidth) text = text.substr(0, first + kRealWidth);
    ScannedReal number;
    const std::size_t end = internal::ScanReal(text, first, kFieldRules, number);
    if (end < text.size() && kRealCharacters(text[end])) return 0.0;
    return internal::ToDouble(number);
}

// The integer of this magnitude, 0 where it is out of range. Without a branch on the sign, which
// cannot be predicted: -x is the complement of x, plus 1.
std::int32_t ToInteger(std::uint64_t magnitude, bool isNegative) noexcept {
    constexpr std::uint64_t kGreatest = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t sign = isNegative ? 1 : 0;
    if (magnitude > kGreatest + sign) return 0;
    return static_cast<std::int32_t>((magnitude ^ (0 - sign)) + sign);
}

// The integer at position `first` of `text`, likewise; 0 where a sign follows it directly.
std::int32_t IntegerAt(std::string_view text, std::size_t first) noexcept {
    if (text.size() - first > kIntegerWidth) text = text.substr(0, first + kIntegerWidth);
    std::size_t at = first;
    bool isNegative = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) isNegative = text[at++] == '-';

    std::uint64_t magnitude = 0;
    const std::size_t end = internal::AppendDigits(text, at, magnitude);
    if (end < text.size() && kIntegerCharacters(text[end])) return 0;
    return ToInteger(magnitude, isNegative);
}

// What follows the first "=" of an input line, without its leading blanks; empty without "=".
std::string_view ValueOrNothing(std::string_view line) noexcept {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return {};
    return internal::WithoutLeadingBlanks(line.substr(equals + 1));
}

// `word` is in capitals; `text` may have any case.
bool BeginsWith(std::string_view text, std::string_view word) noexcept {
    const auto isSame = [](char capital, char c) {
        return c == capital || c == capital + ('a' - 'A');
    };
    return text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin(), isSame);
}

struct YesNoWord {
    std::string_view word;
    std::int32_t value;
};
constexpr YesNoWord kYesNoWords[] = {{"YES", 1}, {"ON", 1}, {"TRUE", 1}, {"NO", 0}, {"OFF", 0}};

constexpr internal::FreeFormRules kNumberAndWordRules = {.real = kFieldRules,
                                                         .tabSeparates = false,
                                                         .semicolonSeparates = true,
                                                         .repeatCounts = false,
                                                         .numberWidth = kRealWidth};

// Reads the two items into their targets; false where the reading fails, after which the targets may
// hold anything. An item that is empty leaves its target as it is.
bool ReadNumberAndWord(std::string_view value, double& number, std::span<char> word) noexcept {
    FreeFormReader reader(value, kNumberAndWordRules);
    ScannedReal scanned;
    std::int32_t count = 0;
    const ItemKind first = reader.NextNumber(scanned, count);
    if (first != ItemKind::Value && first != ItemKind::Empty) return false;
    if (first == ItemKind::Value) number = internal::ToDouble(scanned);

    const ItemKind second = reader.NextWord(word);
    return second != ItemKind::End && second != ItemKind::Unusable;
}

}  // namespace

double StrToReal(std::string_view text) noexcept {
    internal::AlignedDecimal decimal;
    if (internal::ReadAlignedReal(text, decimal))
        return internal::DecimalToDouble(decimal.digits, decimal.exponent, decimal.isNegative);
    return RealAt(text, internal::LeadingBlanks(text));
}

void StrTo2Reals(std::string_view text, double& first, double& second) noexcept {
    first = RealAt(CutRun(text, kPairOfRealsCharacters), 0);
    second = RealAt(CutRun(text, kPairOfRealsCharacters), 0);
}

double InputStrToReal(std::string_view line) noexcept {
    return StrToReal(ValueOrNothing(line));
}

std::int32_t StrToInt(std::string_view text) noexcept {
    // A point at the end, which the reader allows, is no part of the integer and changes nothing.
    internal::AlignedDecimal decimal;
    if (text.size() <= kIntegerWidth && internal::ReadAlignedDecimal(text, decimal) &&
        decimal.exponent == 0)
        return ToInteger(decimal.digits, decimal.isNegative);
    std::size_t first = internal::LeadingBlanks(text);
    while (first < text.size() && !kIntegerCharacters(text[first])) ++first;
    return IntegerAt(text, first);
}

void StrTo2Ints(std::string_view text, std::int32_t& first, std::int32_t& second) noexcept {
    first = IntegerAt(CutRun(text, kIntegerCharacters), 0);
    second = IntegerAt(CutRun(text, kIntegerCharacters), 0);
}

std::int32_t InputStrToInt(std::string_view line) noexcept {
    const std::string_view value = ValueOrNothing(line);
    for (const YesNoWord& entry : kYesNoWords)
        if (BeginsWith(value, entry.word)) return entry.value;
    return StrToInt(value);
}

void InputStrToNumStr(std::string_view line, double& number, std::span<char> word) noexcept {
    number = 0.0;
    internal::FillWithBlanks(word);
    if (ReadNumberAndWord(ValueOrNothing(line), number, word)) {
        internal::PutText(internal::WithoutLeadingBlanks({word.data(), word.size()}), word);
    } else {
        number = 0.0;
        internal::FillWithBlanks(word);
    }
}

std::int32_t OnOff2Int(std::string_view text) noexcept {
    return BeginsWith(internal::WithoutLeadingBlanks(text), "ON") ? 1 : 0;
}

}  // namespace corvale::StrFunctions
