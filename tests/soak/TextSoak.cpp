// Random numbers and rows against slow, plain versions of the same rules, in all rounding modes.
//
//     text_soak [COUNT [SEED]]    COUNT fields, as many doubles, a tenth as many rows; 10000000
//     for
//                                   a night. Prints the differences, and exits with 1 if there are
//                                   any
#include "literal/LiteralNumbers.hpp"
#include "text/NumberEnvironment.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <bit>
#include <cfenv>
#include <random>
#include <vector>

namespace {

using namespace corvale::StrFunctions;
using namespace corvale::test;

std::mt19937_64 gRandom;
int gDifferences = 0;

std::uint64_t Below(std::uint64_t limit) {
    return gRandom() % limit;
}

template <class Items>
auto Pick(const Items& items) {
    return items[Below(std::size(items))];
}

std::string Print(const char* format, auto... values) {
    std::array<char, 1200> text;
    const int size = std::snprintf(text.data(), text.size(), format, values...);
    return {text.data(), static_cast<std::size_t>(size)};
}

// Any finite double, those near 1 more often.
double AnyDouble() {
    if (Below(2) == 0)
        return std::ldexp(static_cast<double>(gRandom() >> 11U), static_cast<int>(Below(80)) - 90);
    return std::bit_cast<double>(gRandom() & 0xFFEFFFFFFFFFFFFFU);
}

std::string Junk(std::string_view characters, std::size_t size) {
    std::string text;
    while (text.size() < size) text += Pick(characters);
    return text;
}

// The decimals of the middle between two doubles, cut somewhere, so that all digits matter.
std::string NearMiddle() {
    const double below = std::fabs(AnyDouble());
    const auto above = std::bit_cast<double>(std::bit_cast<std::uint64_t>(below) + 1);
    const long double middle = (static_cast<long double>(below) + above) / 2;
    return Print("%.*Le", static_cast<int>(Below(75)), middle);
}

std::string AnyField() {
    switch (Below(8)) {
        case 0:
            return Junk("0123456789+-.eEdD", 1 + Below(24));
        case 1:
            return Junk("0123456789+-.eEdD ,xq", Below(100));
        case 2:
            return NearMiddle();
        case 3:
            return Print("%.*e", static_cast<int>(Below(78)), AnyDouble());
        case 4:
            return Junk("0123456789", Below(95)) + "." + Junk("0123456789", Below(95)) + "-3";
        case 5:
            return Junk("+-0", Below(2)) + Junk("0123456789", 8 + Below(4)) + Pick("x+ ");
        default:
            return Print("%*.*f", static_cast<int>(5 + Below(16)), static_cast<int>(Below(9)),
                         std::fmod(AnyDouble(), 1e6));
    }
}

// A field of the wide layout with zeros from somewhere on, one in twenty spoilt by a character.
std::string WideField() {
    const std::size_t kept = Below(16);
    std::string field = Junk(" -", 1) + Junk("0123456789", 1) + ".";
    field += Junk("0123456789", kept) + std::string(15 - kept, '0') + "E" + Junk("+-", 1);
    field += Junk("001", 2) + Junk("0123456789", 1);
    if (Below(20) == 0) field[Below(23)] = Pick(std::string_view(" 0.E,:x9"));
    return field;
}

constexpr std::string_view kRowParts[] = {"0.000000000000000E+000",
                                          " 0.000000000000000E+000 ,",
                                          " 0.000000000000000E+000",
                                          " 0 ",
                                          "12.50",
                                          "30.000:",
                                          ":",
                                          ".0",
                                          "5.",
                                          "48.000.",
                                          "100",
                                          "1E+005",
                                          "E",
                                          "-",
                                          "a",
                                          "0",
                                          "00",
                                          ".",
                                          ",",
                                          " ",
                                          "E+0",
                                          "2023/01/01 "};

std::string AnyRow() {
    std::string row;
    const std::size_t size = Below(560);
    const bool isWide = Below(2) == 0;
    while (row.size() < size) {
        row += isWide && Below(10) != 0 ? WideField() : std::string(Pick(kRowParts));
        if (Below(isWide ? 20 : 3) != 0) row += ',';
    }
    return row + std::string(Below(3) * Below(30), ' ');
}

void Report(const char* what, const std::string& input, const std::string& ours,
            const std::string& plain) {
    if (++gDifferences <= 20)
        std::printf("%s of [%s]\n  gives [%s]\n  wanted [%s]\n", what, input.c_str(), ours.c_str(),
                    plain.c_str());
}

void CheckField(const std::string& field, int mode) {
    const double plain = LiteralStrToReal(field);
    double real;
    std::int32_t integer;
    {
        const RoundingModeScope scope(mode);
        real = StrToReal(field);
        integer = StrToInt(field);
    }
    if (std::bit_cast<std::uint64_t>(real) != std::bit_cast<std::uint64_t>(plain))
        Report("StrToReal", field, Print("%a", real), Print("%a", plain));
    const std::int32_t plainInteger = LiteralStrToInt(field);
    if (integer != plainInteger)
        Report("StrToInt", field, std::to_string(integer), std::to_string(plainInteger));
}

void CheckDouble(double value, int mode) {
    const auto n = static_cast<std::int32_t>(1 + Below(30));
    std::string plain(static_cast<std::size_t>(n), '?');
    std::string withSign = plain;
    {
        const RoundingModeScope scope(mode);
        Fx0ToAx(value, n, plain);
        Fx0ToSignAx(value, n, withSign);
    }
    const std::string wanted = LiteralCut(LiteralFixed(value, n, false), 30, plain.size());
    const std::string wantedSign = LiteralCut(LiteralFixed(value, 8, true), 20, plain.size());
    if (plain != wanted) Report("Fx0ToAx", Print("%a %d", value, n), plain, wanted);
    if (withSign != wantedSign)
        Report("Fx0ToSignAx", Print("%a %d", value, n), withSign, wantedSign);
}

void CheckRow(const std::string& row) {
    std::string ours = row;
    CompressCsvLine(ours);
    std::string wanted = row;
    LiteralCompressor(row).Run(wanted);
    if (ours != wanted) Report("CompressCsvLine", row, ours, wanted);
}

}  // namespace

int main(int argc, char** argv) {
    const long count = argc > 1 ? std::atol(argv[1]) : 100000;
    gRandom.seed(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
    for (long k = 0; k < count; ++k) {
        CheckField(AnyField(), kRoundingModes[k % 4]);
        CheckDouble(AnyDouble(), kRoundingModes[k % 4]);
        if (k % 10 == 0) CheckRow(AnyRow());
    }
    std::printf("%ld fields, %ld doubles, %ld rows: %d differences\n", count, count, count / 10,
                gDifferences);
    return gDifferences == 0 ? 0 : 1;
}
