// Numbers and yes/no words in fields and input lines, in every rounding mode, against a reader that
// goes one character at a time and converts with the C library.
#include "Targets.hpp"

#include "literal/LiteralNumbers.hpp"
#include "text/NumberEnvironment.hpp"

#include <corvale/text/NumericFields.hpp>

#include <string>
#include <utility>

namespace corvale::fuzz {
namespace {

using namespace StrFunctions;
using namespace std::literals;

constexpr std::string_view kPieces[] = {
    "0",    "00000000", "1",    "99999999", "12345678",   ".",           "e",
    "E",    "d",        "D",    "-",        "+",          " ",           "    ",
    "=",    "yes",      "ON",   "true",     "no",         "off",         "2147483648",
    ",",    "/",        "e308", "e-324",    "e-308",      "7",           "9007199254740993",
    "5e-1", "E+03",     "D-02", "\0"sv,     "1797693134", "86231570814", "2.4703282292062327"};

// Pieces, or the decimals of a double, so many that they may end at the middle between two.
std::string_view AnyField(Choices& in, std::span<char> room) {
    if (in.Byte() % 4 != 0) return in.Text(kPieces, room);
    const int blanks = in.Byte() % 8, decimals = in.Byte() % 90;
    const double value = in.Flip() ? in.Real() : in.Raw<double>();
    const auto middle = (static_cast<long double>(value) + std::nextafter(value, 1e308)) / 2;
    const int size =
        in.Flip()
            ? std::snprintf(room.data(), room.size(), "%*s%.*e", blanks, "", decimals, value)
            : std::snprintf(room.data(), room.size(), "%*s%.*Le", blanks, "", decimals, middle);
    return {room.data(), static_cast<std::size_t>(size)};
}

std::string_view ValueOf(std::string_view line) {
    return line.substr(std::min(line.find('='), line.size() - 1) + 1);
}

// The first run of `characters`, and what follows its terminator.
std::pair<std::string_view, std::string_view> TakeRun(std::string_view text,
                                                      std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_of(characters), text.size()));
    const std::size_t end = std::min(text.find_first_not_of(characters), text.size());
    return {text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
}

std::string Capitals(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::string capitals(text.substr(0, 4));
    for (char& c : capitals)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return capitals;
}

std::int32_t LiteralInputStrToInt(std::string_view line) {
    constexpr std::pair<std::string_view, std::int32_t> kWords[] = {
        {"YES", 1}, {"ON", 1}, {"TRUE", 1}, {"NO", 0}, {"OFF", 0}};
    const std::string start = Capitals(ValueOf(line));
    for (const auto& [word, value] : kWords)
        if (start.starts_with(word)) return value;
    return test::LiteralStrToInt(ValueOf(line));
}

void TwoReals(std::string_view text, int mode) {
    double first = -1.0, second = -1.0;
    {
        const test::RoundingModeScope scope(mode);
        StrTo2Reals(text, first, second);
    }
    constexpr std::string_view kCharacters = "+-.0123456789";
    const auto [run, rest] = TakeRun(text, kCharacters);
    ExpectSame(first, test::LiteralStrToReal(run), "StrTo2Reals, first");
    ExpectSame(second, test::LiteralStrToReal(TakeRun(rest, kCharacters).first),
               "StrTo2Reals, second");
}

void TwoInts(std::string_view text) {
    std::int32_t first = -1, second = -1;
    StrTo2Ints(text, first, second);
    const auto [run, rest] = TakeRun(text, "+-0123456789");
    ExpectSame(first, test::LiteralStrToInt(run), "StrTo2Ints, first");
    ExpectSame(second, test::LiteralStrToInt(rest), "StrTo2Ints, second");
}

void OneReal(std::string_view text, int mode, bool isLine) {
    double got;
    {
        const test::RoundingModeScope scope(mode);
        got = isLine ? InputStrToReal(text) : StrToReal(text);
    }
    const bool hasValue = !isLine || text.find('=') != std::string_view::npos;
    const double wanted = hasValue ? test::LiteralStrToReal(isLine ? ValueOf(text) : text) : 0.0;
    ExpectSame(got, wanted, isLine ? "InputStrToReal" : "StrToReal");
}

}  // namespace

void Numbers(Choices in) {
    static Room<1024> room;
    std::array<char, 512> built;
    const std::size_t procedure = in.Below(16);
    const int mode = procedure < 8 ? FE_TONEAREST : test::kRoundingModes[procedure % 4];
    const std::size_t kind = in.Below(7);
    const std::string_view text = room.HoldView(AnyField(in, built));
    const bool hasValue = text.find('=') != std::string_view::npos;
    switch (kind) {
        case 0:
            return OneReal(text, mode, false);
        case 1:
            return OneReal(text, mode, true);
        case 2:
            return TwoReals(text, mode);
        case 3:
            return ExpectSame(StrToInt(text), test::LiteralStrToInt(text), "StrToInt");
        case 4:
            return TwoInts(text);
        case 5:
            return ExpectSame(InputStrToInt(text), hasValue ? LiteralInputStrToInt(text) : 0,
                              "InputStrToInt");
        default:
            return ExpectSame(OnOff2Int(text), Capitals(text).starts_with("ON") ? 1 : 0,
                              "OnOff2Int");
    }
}

}  // namespace corvale::fuzz
