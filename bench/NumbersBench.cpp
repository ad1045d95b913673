// Numbers and rows: fields to reals and integers, reals to fixed notation, rows made short. A peer
// whose results differ from Corvale's is not timed.
#include "reference/CompactNumbers.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <benchmark/benchmark.h>
#include <double-conversion/double-conversion.h>
#include <fast_float/fast_float.h>
#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <random>
#include <span>
#include <vector>

namespace {

using namespace corvale;

// More than a branch predictor learns.
constexpr std::size_t kCount = 20000;

// Terminated texts of one width each, with the width: what every peer can read.
struct Field {
    std::string text;
    [[nodiscard]] std::string_view View() const { return text; }
};

std::string Print(const char* format, auto... values) {
    std::array<char, 128> text;
    const int size = std::snprintf(text.data(), text.size(), format, values...);
    return {text.data(), static_cast<std::size_t>(size)};
}

// Right-aligned fields of 5 to 20 characters: decimals, reals with an exponent, whole numbers.
const std::vector<Field>& RealFields() {
    static const auto fields = [] {
        std::mt19937_64 random(1);
        std::vector<Field> made;
        while (made.size() < kCount) {
            const int width = 5 + static_cast<int>(random() % 16);
            const int decimals = static_cast<int>(random() % static_cast<unsigned>(width - 3));
            const double value = std::ldexp(static_cast<double>(random() >> 11U),
                                            -70 + static_cast<int>(random() % 40)) *
                                 (random() % 2 == 0 ? 1 : -1);
            const char* const format = random() % 4 == 0 ? "%*.*e" : "%*.*f";
            const std::string text = Print(format, width, decimals, value);
            if (text.size() == static_cast<std::size_t>(width)) made.push_back({text});
        }
        return made;
    }();
    return fields;
}

const std::vector<Field>& IntegerFields() {
    static const auto fields = [] {
        std::mt19937_64 random(2);
        std::vector<Field> made;
        while (made.size() < kCount) {
            const int width = 5 + static_cast<int>(random() % 8);
            const auto value = static_cast<std::int32_t>(random()) >> (random() % 31);
            const std::string text = Print("%*d", width, value);
            if (text.size() == static_cast<std::size_t>(width)) made.push_back({text});
        }
        return made;
    }();
    return fields;
}

std::string_view SkipBlanks(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && text[first] == ' ') ++first;
    return text.substr(first);
}

double WithStrtod(const Field& field) {
    return std::strtod(field.text.c_str(), nullptr);
}

double WithFromChars(const Field& field) {
    const std::string_view text = SkipBlanks(field.View());
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

double WithFastFloat(const Field& field) {
    const std::string_view text = SkipBlanks(field.View());
    double value = 0;
    fast_float::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

double WithDoubleConversion(const Field& field) {
    using double_conversion::StringToDoubleConverter;
    static const StringToDoubleConverter converter(StringToDoubleConverter::ALLOW_LEADING_SPACES,
                                                   0.0, 0.0, nullptr, nullptr);
    int used = 0;
    return converter.StringToDouble(field.text.data(), static_cast<int>(field.text.size()), &used);
}

double RealWithCorvale(const Field& field) {
    return StrFunctions::StrToReal(field.View());
}
std::int32_t IntegerWithCorvale(const Field& field) {
    return StrFunctions::StrToInt(field.View());
}

std::int32_t WithStrtol(const Field& field) {
    return static_cast<std::int32_t>(std::strtol(field.text.c_str(), nullptr, 10));
}

std::int32_t WithAtoi(const Field& field) {
    return std::atoi(field.text.c_str());
}

std::int32_t IntegerWithFromChars(const Field& field) {
    const std::string_view text = SkipBlanks(field.View());
    std::int32_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

template <auto Read, auto Reference, auto Fields>
void ReadFields(benchmark::State& state) {
    for (const Field& field : Fields())
        if (Read(field) != Reference(field)) return state.SkipWithError(field.text.c_str());
    for (auto _ : state)
        for (const Field& field : Fields()) benchmark::DoNotOptimize(Read(field));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}

#define REAL_FIELD(read, peer) \
    BENCHMARK(ReadFields<read, RealWithCorvale, RealFields>)->Name("RealField/" peer)
REAL_FIELD(RealWithCorvale, "Corvale");
REAL_FIELD(WithStrtod, "strtod");
REAL_FIELD(WithFromChars, "from_chars");
REAL_FIELD(WithFastFloat, "fast_float");
REAL_FIELD(WithDoubleConversion, "double-conversion");

#define INTEGER_FIELD(read, peer) \
    BENCHMARK(ReadFields<read, IntegerWithCorvale, IntegerFields>)->Name("IntegerField/" peer)
INTEGER_FIELD(IntegerWithCorvale, "Corvale");
INTEGER_FIELD(WithStrtol, "strtol");
INTEGER_FIELD(WithAtoi, "atoi");
INTEGER_FIELD(IntegerWithFromChars, "from_chars");

// Values from 1e-3 to 1e7 of both signs, all digits in use.
const std::vector<double>& Values() {
    static const auto values = [] {
        std::mt19937_64 random(3);
        std::uniform_real_distribution<double> exponent(-3.0, 7.0);
        std::vector<double> made(kCount);
        for (double& value : made)
            value = std::pow(10.0, exponent(random)) * (random() % 2 == 0 ? 1 : -1);
        return made;
    }();
    return values;
}

// A form: how many decimals, whether the sign is always written, how many characters are kept.
struct Form {
    int decimals;
    bool hasSign;
    std::size_t width;
};
constexpr Form kSixDecimals = {6, false, 6};
constexpr Form kTwelveDecimals = {12, false, 12};
constexpr Form kSignAndEight = {8, true, 20};

// A writer's raw digits as the form wants them: no zero before the point, the sign, cut, blanks.
void Finish(std::string_view digits, const Form& form, std::span<char> out) {
    char* target = out.data();
    const bool isNegative = digits.front() == '-';
    if (isNegative) digits.remove_prefix(1);
    if (digits.front() == '0') digits.remove_prefix(1);
    if (isNegative || form.hasSign) *target++ = isNegative ? '-' : '+';
    const auto left = static_cast<std::size_t>(out.data() + out.size() - target);
    const std::size_t count = std::min(left, digits.size());
    std::memcpy(target, digits.data(), count);
    std::memset(target + count, ' ', left - count);
}

void FixedWithCorvale(double value, const Form& form, std::span<char> out) {
    const auto n = static_cast<std::int32_t>(form.width);
    form.hasSign ? StrFunctions::Fx0ToSignAx(value, n, out) : StrFunctions::Fx0ToAx(value, n, out);
}

void WithSnprintf(double value, const Form& form, std::span<char> out) {
    std::array<char, 400> digits;
    const int size = std::snprintf(digits.data(), digits.size(), "%.*f", form.decimals, value);
    Finish({digits.data(), static_cast<std::size_t>(size)}, form, out);
}

void WithToChars(double value, const Form& form, std::span<char> out) {
    std::array<char, 400> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, form.decimals)
                         .ptr;
    Finish({digits.data(), end}, form, out);
}

void WithFmt(double value, const Form& form, std::span<char> out) {
    std::array<char, 400> digits;
    const char* const end =
        fmt::format_to(digits.data(), FMT_COMPILE("{:.{}f}"), value, form.decimals);
    Finish({digits.data(), end}, form, out);
}

void FixedWithDoubleConversion(double value, const Form& form, std::span<char> out) {
    std::array<char, 400> digits;
    double_conversion::StringBuilder builder(digits.data(), static_cast<int>(digits.size()));
    double_conversion::DoubleToStringConverter::EcmaScriptConverter().ToFixed(value, form.decimals,
                                                                              &builder);
    const auto size = static_cast<std::size_t>(builder.position());
    Finish({digits.data(), size}, form, out);
}

template <auto Write, Form form>
void WriteValues(benchmark::State& state) {
    std::array<char, 32> text;
    std::array<char, 32> reference;
    const std::span out(text.data(), form.width);
    for (const double value : Values()) {
        Write(value, form, out);
        FixedWithCorvale(value, form, {reference.data(), form.width});
        if (std::memcmp(text.data(), reference.data(), form.width) != 0)
            return state.SkipWithError(Print("%a", value).c_str());
    }
    for (auto _ : state) {
        for (const double value : Values()) {
            Write(value, form, out);
            benchmark::DoNotOptimize(text);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}

#define FIXED_TEXT(write, peer)                                                \
    BENCHMARK(WriteValues<write, kSixDecimals>)->Name("FixedSix/" peer);       \
    BENCHMARK(WriteValues<write, kTwelveDecimals>)->Name("FixedTwelve/" peer); \
    BENCHMARK(WriteValues<write, kSignAndEight>)->Name("FixedSignEight/" peer)
FIXED_TEXT(FixedWithCorvale, "Corvale");
FIXED_TEXT(WithSnprintf, "snprintf");
FIXED_TEXT(WithToChars, "to_chars");
FIXED_TEXT(WithFmt, "fmt");
FIXED_TEXT(FixedWithDoubleConversion, "double-conversion");

// Rows of 20 fields of the wide layout: a fifth zeros, the others with random zeros at the end.
const std::vector<std::string>& Rows() {
    static const auto rows = [] {
        std::mt19937_64 random(4);
        std::vector<std::string> made(256);
        for (std::string& row : made) {
            for (int k = 0; k < 20; ++k) {
                const auto digits = static_cast<int>(random() % 16);
                const double scale = std::pow(10.0, digits);
                const double value =
                    static_cast<double>(random() % 9000000000000000U) / 9e15 * 9 + 1;
                const double mantissa = random() % 5 == 0 ? 0.0 : std::floor(value * scale) / scale;
                const int exponent = mantissa == 0.0 ? 0 : static_cast<int>(random() % 31) - 15;
                const bool isNegative = mantissa != 0.0 && random() % 2 == 0;
                row += Print("%c%.15fE%+04d", isNegative ? '-' : ' ', std::min(mantissa, 9.5),
                             exponent);
                if (k < 19) row += ',';
            }
        }
        return made;
    }();
    return rows;
}

void CompressWithCorvale(std::string& row) {
    StrFunctions::CompressCsvLine(row);
}

void CompressAsMachine(std::string& row) {
    reference::CompressCsvLine(row);
}

template <auto Compress>
void CompressRows(benchmark::State& state) {
    for (const std::string& row : Rows()) {
        std::string text = row;
        Compress(text);
        std::string reference = row;
        CompressAsMachine(reference);
        if (text != reference) return state.SkipWithError(row.c_str());
    }
    std::string work(Rows().front());
    for (auto _ : state) {
        for (const std::string& row : Rows()) {
            std::memcpy(work.data(), row.data(), row.size());
            Compress(work);
            benchmark::DoNotOptimize(work.data());
            benchmark::ClobberMemory();
        }
    }
    state.SetItemsProcessed(state.iterations() * std::ssize(Rows()));
}
BENCHMARK(CompressRows<CompressWithCorvale>)->Name("CsvLine/Corvale");
BENCHMARK(CompressRows<CompressAsMachine>)->Name("CsvLine/machine");

}  // namespace
