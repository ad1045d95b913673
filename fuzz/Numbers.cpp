// Numbers and yes/no words in fields and input lines, in every rounding mode, against a reader that
// goes one character at a time and converts with the C library.
#include "Targets.hpp"

#include "reference/NumericFields.hpp"
#include "tests/support/NumberEnvironment.hpp"

#include <corvale/text/NumericFields.hpp>

namespace corvale::fuzz {
namespace numbers {

using namespace StrFunctions;
using namespace test;
using namespace std::literals;

constexpr std::string_view kPieces[] = {
    "0",    "00000000", "1",    "99999999", "12345678",   ".",           "e",
    "E",    "d",        "D",    "-",        "+",          " ",           "    ",
    "=",    "yes",      "ON",   "true",     "no",         "off",         "2147483648",
    ",",    "/",        "e308", "e-324",    "e-308",      "7",           "9007199254740993",
    "5e-1", "E+03",     "D-02", "\0"sv,     "1797693134", "86231570814", "2.4703282292062327"};

// A text of pieces, or the decimals of a double, or of the midpoint between it and the next one.
std::string_view AnyField(Choices& in, std::span<char> buffer) {
    if (in.Byte() % 4 != 0) return in.Text(kPieces, buffer);
    const int blanks = in.Byte() % 8, decimals = in.Byte() % 90;
    double value = in.Flip() ? in.Real() : std::bit_cast<double>(in.Raw<std::uint64_t>());
    if (std::isnan(value)) value = 0.0;  // the sign of a NaN sum is not specified
    const auto middle = (static_cast<long double>(value) + std::nextafter(value, 1e308)) / 2;
    const int size =
        in.Flip()
            ? std::snprintf(buffer.data(), buffer.size(), "%*s%.*e", blanks, "", decimals, value)
            : std::snprintf(buffer.data(), buffer.size(), "%*s%.*Le", blanks, "", decimals, middle);
    return {buffer.data(), static_cast<std::size_t>(size)};
}

void ExpectRead(double got, double wanted, const char* what) {
    kHasGoodStrtod ? ExpectSame(got, wanted, what) : Note(test::Bits(got));
}

void TwoReals(std::string_view text, int mode) {
    double first = -1.0, second = -1.0;
    {
        const RoundingModeScope scope(mode);
        StrTo2Reals(text, first, second);
    }
    constexpr std::string_view kCharacters = "+-.0123456789";
    const auto [run, rest] = reference::TakeRun(text, kCharacters);
    ExpectRead(first, reference::StrToReal(run), "StrTo2Reals, first");
    ExpectRead(second, reference::StrToReal(reference::TakeRun(rest, kCharacters).first),
               "StrTo2Reals, second");
}

void TwoInts(std::string_view text) {
    std::int32_t first = -1, second = -1;
    StrTo2Ints(text, first, second);
    const auto [run, rest] = reference::TakeRun(text, "+-0123456789");
    ExpectSame(first, reference::StrToInt(run), "StrTo2Ints, first");
    ExpectSame(second, reference::StrToInt(rest), "StrTo2Ints, second");
}

void OneReal(std::string_view text, int mode, bool isLine) {
    double got;
    {
        const RoundingModeScope scope(mode);
        got = isLine ? InputStrToReal(text) : StrToReal(text);
    }
    const bool hasValue = !isLine || text.find('=') != std::string_view::npos;
    const double wanted =
        hasValue ? reference::StrToReal(isLine ? reference::ValueOf(text) : text) : 0.0;
    ExpectRead(got, wanted, isLine ? "InputStrToReal" : "StrToReal");
}

}  // namespace numbers

void Numbers(Choices in) {
    using namespace numbers;
    static thread_local GuardedMemory<1024> guarded;
    std::array<char, 512> built;
    const std::size_t procedure = in.Below(16);
    const int mode = procedure < 8 ? FE_TONEAREST : kRoundingModes[procedure % 4];
    const std::size_t kind = in.Below(7);
    const std::string_view text = guarded.HoldView(AnyField(in, built));
    const bool hasValue = text.find('=') != std::string_view::npos;
    switch (kind) {
        case 0:
            return OneReal(text, mode, false);
        case 1:
            return OneReal(text, mode, true);
        case 2:
            return TwoReals(text, mode);
        case 3:
            return ExpectSame(StrToInt(text), reference::StrToInt(text), "StrToInt");
        case 4:
            return TwoInts(text);
        case 5:
            return ExpectSame(InputStrToInt(text), hasValue ? reference::InputStrToInt(text) : 0,
                              "InputStrToInt");
        default:
            return ExpectSame(OnOff2Int(text), reference::Capitals(text).starts_with("ON") ? 1 : 0,
                              "OnOff2Int");
    }
}

}  // namespace corvale::fuzz
