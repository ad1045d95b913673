// Every satellite number, every five characters over an alphabet, every tenth of an arc second of a
// turn, against the plain versions. A full run takes minutes; with a number as argument only every
// so many-th angle is taken, and every 13th code.
#include <corvale/numeric/GenFunctions.hpp>

#include "reference/Angles.hpp"
#include "reference/SatelliteNumbers.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

namespace gen = corvale::GenFunctions;
namespace reference = corvale::reference;

template <std::size_t Width>
std::string Text(const std::array<char, Width>& text) {
    return {text.data(), text.size()};
}

long differences = 0;

void Expect(bool isSame, const std::string& what) {
    if (isSame) return;
    if (++differences <= 20) std::printf("differs: %s\n", what.c_str());
}

void SoakNumbers() {
    for (std::int32_t n = -1000; n < 1'000'000; ++n) {
        const std::string code = Text(gen::NumToAlpha5(n));
        Expect(code == reference::NumToAlpha5(n), "NumToAlpha5 of " + std::to_string(n));
        if (n >= 0 && n < 340'000) Expect(gen::Alpha5ToNum(code) == n, "Alpha5ToNum of " + code);
    }
}

void SoakCodes(int stride) {
    // Digits, blank, signs, separators, letters at the gaps, a small one, control and high bytes.
    constexpr std::string_view kAlphabet("0159 -+.AHIJNOPZa\0\t\xff", 20);
    constexpr int kCodes = 20 * 20 * 20 * 20 * 20;
    for (int number = 0; number < kCodes; number += stride) {
        std::string code;
        for (int rest = number, i = 0; i < 5; ++i, rest /= 20)
            code += kAlphabet[static_cast<std::size_t>(rest % 20)];
        Expect(gen::Alpha5ToNum(code) == reference::Alpha5ToNum(code), "Alpha5ToNum of " + code);
    }
}

void SoakAngles(int stride) {
    constexpr int kTenths = 360 * 36000;
    for (int tenth = -kTenths; tenth <= kTenths; tenth += stride) {
        const double deg = tenth / 36000.0;
        Expect(Text(gen::DegToDDMMSSSSS_Str(deg)) == reference::DegreeText(deg),
               "DegToDDMMSSSSS_Str of " + std::to_string(deg));
        Expect(Text(gen::DegToHHMMSSS_Str(deg)) == reference::HourText(deg),
               "DegToHHMMSSS_Str of " + std::to_string(deg));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int stride = argc > 1 ? std::atoi(argv[1]) : 1;
    if (stride < 1) return 2;
    SoakNumbers();
    SoakCodes(std::min(stride, 13));
    SoakAngles(stride);
    std::printf("1001000 numbers, 3200000 codes, 25920001 angles in steps of %d: %ld differences\n",
                stride, differences);
    return differences == 0 ? 0 : 1;
}
