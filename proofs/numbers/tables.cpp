// Prints what the library holds of the powers of five, for prove.py to check: a line for each decimal
// exponent with the two words of its power and its binary exponent.
#include <corvale/text/PowersOfFive.hpp>

#include <cstdio>

int main() {
    using namespace corvale::internal;
    for (int q = kLeastTenExponent; q <= kGreatestTenExponent; ++q) {
        const auto high = static_cast<unsigned long long>(PowerOf(q).high);
        const auto low = static_cast<unsigned long long>(PowerOf(q).low);
        std::printf("%d %llu %llu %d\n", q, high, low, BinaryExponentOfTen(q));
    }
}
