#include <corvale/numeric/Angles.hpp>

#include <corvale/numeric/Digits.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>

namespace corvale::GenFunctions {

namespace {

// 2 pi and pi / 2 as the nearest doubles. Angles are reduced by these values.
constexpr double kTwoPi = 6.283185307179586;
constexpr double kHalfPi = 1.5707963267948966;
static_assert(kTwoPi == 0x1.921fb54442d18p+2 && kHalfPi == 0x1.921fb54442d18p+0);

// From here seconds round to 60 as whole seconds, and the degree text carries.
constexpr double kDegreeCarrySeconds = 59.5;
// From here seconds print as 60.0 with one decimal, and the hour form carries.
constexpr double kHourCarrySeconds = 59.95;
// Added to fractional minutes, so that whole minutes that came out a little low stay whole.
constexpr double kMinuteGuard = 1e-12;

// The remainder of `x` by `modulus`, with the sign of `x`. What is smaller already is its own
// remainder, which saves the division: a fifth of the hour text's time; bench: DegToHHMMSSS_Str.
double Reduced(double x, double modulus) noexcept {
    return std::fabs(x) < modulus ? x : std::fmod(x, modulus);
}

template <std::size_t Width>
void Put(const std::array<char, Width>& digits, char* target) noexcept {
    std::copy(digits.begin(), digits.end(), target);
}

// Degrees and minutes carry the sign of the angle, seconds none.
struct DegreeParts {
    std::int32_t degrees;
    std::int32_t minutes;
    double seconds;
};

// True where the whole degrees of `deg` are a 32-bit integer; not for NaN.
bool HasWholeDegrees(double deg) noexcept {
    return deg > -2147483649.0 && deg < 2147483648.0;
}

DegreeParts SplitDegrees(double deg) noexcept {
    const auto degrees = static_cast<std::int32_t>(deg);
    const double fraction = deg - degrees;
    const auto minutes = static_cast<std::int32_t>(fraction * 60.0);
    return {degrees, minutes, std::fabs((fraction - minutes / 60.0) * 3600.0)};
}

// Thousandths of `seconds`, rounded to nearest, a tie to even. The double is m x 2^-shift and
// m x 1000 fits 64 bits, so the rounding is exact whatever rounding mode the thread has set.
std::uint32_t Thousandths(double seconds) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(seconds);
    const auto exponent = static_cast<int>(bits >> 52U);
    const int shift = 1075 - exponent;  // 60 seconds and less: at least 47
    if (shift > 63) return 0;           // below 2^-10 thousandths

    const std::uint64_t mantissa = (bits & 0xFFFFFFFFFFFFFU) | 0x10000000000000U;
    const std::uint64_t product = mantissa * 1000;
    const std::uint64_t whole = product >> shift;
    const std::uint64_t rest = product - (whole << shift);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const bool isUp = rest > half || (rest == half && whole % 2 == 1);
    return static_cast<std::uint32_t>(whole + (isUp ? 1 : 0));
}

struct HourParts {
    std::int32_t hours;
    std::int32_t minutes;
    double seconds;  // NaN where there is no angle
};

HourParts SplitHours(double deg) noexcept {
    double angle = Reduced(deg, 360.0);
    if (std::isnan(angle)) return {0, 0, std::numeric_limits<double>::quiet_NaN()};
    if (angle < 0.0) angle += 360.0;

    const double allHours = angle / 15.0;
    const auto hours = static_cast<std::int32_t>(allHours);
    const double allMinutes = (allHours - hours) * 60.0 + kMinuteGuard;
    const auto minutes = static_cast<std::int32_t>(allMinutes);
    return {hours, minutes, (allMinutes - minutes) * 60.0};
}

// Half and more rounds up. Not `x + 0.5`, which lifts 0.49999999999999994 to 1.
std::int32_t RoundHalfUp(double x) noexcept {
    const auto whole = static_cast<std::int32_t>(x);
    return x - whole >= 0.5 ? whole + 1 : whole;
}

}  // namespace

double FMod2P(double x) noexcept {
    const double angle = Reduced(x, kTwoPi);
    return angle < 0.0 ? angle + kTwoPi : angle;
}

double AcTan(double s, double c) noexcept {
    const double angle = std::atan2(s, c);
    return angle < 0.0 ? angle + kTwoPi : angle;
}

double AcSin(double x) noexcept {
    if (std::fabs(x) < 1.0) return std::atan(x / std::sqrt(1.0 - x * x));
    if (std::isnan(x)) return x;
    return std::copysign(kHalfPi, x);
}

double DeltaAngleLT180(double a, double b) noexcept {
    const double difference = Reduced(a, 360.0) - Reduced(b, 360.0);
    if (std::fabs(difference) <= 180.0) return difference;
    return std::copysign(360.0 - std::fabs(difference), -difference);
}

void DegToDDMMSSS(double deg, std::int32_t& dd, std::int32_t& mm, double& ss) noexcept {
    dd = 0;
    mm = 0;
    ss = std::numeric_limits<double>::quiet_NaN();
    if (!HasWholeDegrees(deg)) return;

    const DegreeParts parts = SplitDegrees(deg);
    dd = parts.degrees;
    mm = parts.minutes < 0 ? -parts.minutes : parts.minutes;
    ss = parts.seconds;
}

std::array<char, 11> DegToDDMMSSSSS_Str(double deg) noexcept {
    std::array<char, 11> text;
    text.fill('*');
    text[0] = deg < 0.0 ? '-' : '0';
    if (!HasWholeDegrees(deg)) return text;

    const DegreeParts parts = SplitDegrees(deg);
    const bool carries = parts.seconds >= kDegreeCarrySeconds;
    const std::uint32_t allMinutes =
        static_cast<std::uint32_t>(std::abs(parts.minutes)) + (carries ? 1 : 0);
    const std::uint32_t magnitude = parts.degrees < 0
                                        ? 0U - static_cast<std::uint32_t>(parts.degrees)
                                        : static_cast<std::uint32_t>(parts.degrees);
    const std::uint32_t degrees = magnitude + allMinutes / 60;
    const std::uint32_t thousandths = carries ? 0 : Thousandths(parts.seconds);

    if (degrees < 100) Put(internal::Digits<2>(degrees), &text[1]);
    Put(internal::Digits<2>(allMinutes % 60), &text[3]);
    Put(internal::Digits<2>(thousandths / 1000), &text[5]);
    text[7] = '.';
    Put(internal::Digits<3>(thousandths % 1000), &text[8]);
    return text;
}

void DegToHHMMSSS(double deg, std::int32_t& hh, std::int32_t& mm, double& ss) noexcept {
    const HourParts parts = SplitHours(deg);
    hh = parts.hours;
    mm = parts.minutes;
    ss = parts.seconds;
    if (!(parts.seconds >= kHourCarrySeconds)) return;

    hh = (parts.hours + (parts.minutes + 1) / 60) % 24;
    mm = (parts.minutes + 1) % 60;
    ss = 0.0;
}

std::array<char, 7> DegToHHMMSSS_Str(double deg) noexcept {
    std::array<char, 7> text;
    text.fill('*');
    const HourParts parts = SplitHours(deg);
    if (std::isnan(parts.seconds)) return text;

    std::int32_t tenths = 600;
    if (parts.seconds < kHourCarrySeconds) tenths = RoundHalfUp(parts.seconds * 10.0);
    const bool carries = tenths > 599;
    const std::int32_t minutes = parts.minutes + (carries ? 1 : 0);
    const std::int32_t hours = (parts.hours + minutes / 60) % 24;

    Put(internal::Digits<2>(static_cast<std::uint32_t>(hours)), &text[0]);
    Put(internal::Digits<2>(static_cast<std::uint32_t>(minutes % 60)), &text[2]);
    Put(internal::Digits<3>(carries ? 0 : static_cast<std::uint32_t>(tenths)), &text[4]);
    return text;
}

}  // namespace corvale::GenFunctions
