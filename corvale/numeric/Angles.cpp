#include <corvale/numeric/Angles.hpp>

#include <corvale/numeric/Digits.hpp>
#include <corvale/numeric/Elementary.hpp>

#include <bit>
#include <cmath>
#include <limits>

namespace corvale::GenFunctions {

namespace {

using internal::Asterisks;
using internal::OneCharacter;
using internal::Part;
using internal::TextOf;
using internal::ThreeDigits;
using internal::TwoDigits;

// 2 pi and pi / 2 as the nearest doubles. Angles are reduced by these values.
constexpr double kTwoPi = 6.283185307179586;
constexpr double kHalfPi = 1.5707963267948966;
static_assert(kTwoPi == 0x1.921fb54442d18p+2 && kHalfPi == 0x1.921fb54442d18p+0);

// The two texts round by two rules each (kept behaviour): one decides whether the seconds carry into
// the minutes, the other rounds the digits that are shown.
//
//            carries from     because they round to 60 as    digits shown, where nothing carries
// degrees    59.5 seconds     whole seconds                  thousandths, a tie to even
// hours      59.95 seconds    tenths                         tenths, a tie up
//
// So degrees with 59.76 seconds show as the next minute and 00.000, although 59.760 would fit; the
// thousandths of what does not carry are 59,500 at most, and the tenths 600 at most, which carry.
constexpr double kDegreeCarrySeconds = 59.5;
constexpr double kHourCarrySeconds = 59.95;

// Added to fractional minutes, so that whole minutes that came out a little low stay whole (kept
// behaviour: it shows in the results as 6e-11 seconds).
constexpr double kMinuteGuard = 1e-12;

// The remainder of `x` by `modulus`, exact, with the sign of `x`. What is smaller already is its own
// remainder, which saves the division: a fifth of the hour text's time; bench: DegToHHMMSSS_Str.
double Reduced(double x, double modulus) noexcept {
    return std::fabs(x) < modulus ? x : std::fmod(x, modulus);
}

// `angle` from -2 pi up, a turn later where it is below 0: where angles of both signs are common a
// branch costs more than the whole addition. -0.0 leaves everything as it is.
double FromZeroUp(double angle) noexcept {
    constexpr double kAddend[] = {-0.0, kTwoPi};
    return angle + kAddend[angle < 0.0 ? 1 : 0];
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

// The steps and their order are the result: each rounds, so another order changes last bits.
DegreeParts SplitDegrees(double deg) noexcept {
    const auto degrees = static_cast<std::int32_t>(deg);
    const double fraction = deg - degrees;
    const auto minutes = static_cast<std::int32_t>(fraction * 60.0);
    return {degrees, minutes, std::fabs((fraction - minutes / 60.0) * 3600.0)};
}

// Thousandths of `seconds`, 0 to 60, rounded to nearest, a tie to even. The double is
// m x 2^-shift, m has 53 bits and m x 1000 fits 64, so the rounding is exact in every rounding mode
// of the thread. Without a branch on it: which way it goes is random.
std::uint32_t Thousandths(double seconds) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(seconds);
    const auto exponent = static_cast<int>(bits >> 52U);
    const int shift = 1075 - exponent;  // 60 seconds and less: at least 47
    if (shift > 63) return 0;           // below 2^-11 seconds: less than half a thousandth

    const std::uint64_t mantissa = (bits & 0xFFFFFFFFFFFFFU) | 0x10000000000000U;
    const std::uint64_t product = mantissa * 1000;
    const std::uint64_t whole = product >> shift;
    const std::uint64_t rest = product - (whole << shift);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const std::uint64_t increment = rest + (whole & 1U) > half ? 1 : 0;
    return static_cast<std::uint32_t>(whole + increment);
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

// `x`, 0 to 600, rounded to nearest, a tie up. Not as `x + 0.5`, which lifts 0.49999999999999994
// to 1. Without a branch on the rounding, either.
std::uint32_t RoundHalfUp(double x) noexcept {
    const auto whole = static_cast<std::int32_t>(x);
    const std::int32_t increment = x - whole >= 0.5 ? 1 : 0;
    return static_cast<std::uint32_t>(whole + increment);
}

// |value|, of the least integer, too.
std::uint32_t Magnitude(std::int32_t value) noexcept {
    const auto bits = static_cast<std::uint32_t>(value);
    return value < 0 ? 0U - bits : bits;
}

}  // namespace

double FMod2P(double x) noexcept {
    return FromZeroUp(Reduced(x, kTwoPi));
}

double AcTan(double s, double c) noexcept {
    return FromZeroUp(Elementary::ArcTan2(s, c));
}

double AcSin(double x) noexcept {
    if (std::fabs(x) < 1.0) return Elementary::ArcTan(x / std::sqrt(1.0 - x * x));
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
    const Part<1> sign = OneCharacter(deg < 0.0 ? '-' : '0');
    if (!HasWholeDegrees(deg)) return TextOf(sign, Asterisks<7>(), Asterisks<3>());

    const DegreeParts parts = SplitDegrees(deg);
    const bool carries = parts.seconds >= kDegreeCarrySeconds;
    const std::uint32_t allMinutes = Magnitude(parts.minutes) + (carries ? 1 : 0);
    const std::uint32_t degrees = Magnitude(parts.degrees) + allMinutes / 60;
    const std::uint32_t thousandths = carries ? 0 : Thousandths(parts.seconds);

    return TextOf(sign, degrees < 100 ? TwoDigits(degrees) : Asterisks<2>(),
                  TwoDigits(allMinutes % 60), TwoDigits(thousandths / 1000), OneCharacter('.'),
                  ThreeDigits(thousandths % 1000));
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
    const HourParts parts = SplitHours(deg);
    if (std::isnan(parts.seconds)) return TextOf(Asterisks<7>());

    std::uint32_t tenths = 600;
    if (parts.seconds < kHourCarrySeconds) tenths = RoundHalfUp(parts.seconds * 10.0);
    const bool carries = tenths > 599;
    if (carries) tenths = 0;
    const std::uint32_t minutes = Magnitude(parts.minutes) + (carries ? 1 : 0);
    const std::uint32_t hours = (Magnitude(parts.hours) + minutes / 60) % 24;

    return TextOf(TwoDigits(hours), TwoDigits(minutes % 60), ThreeDigits(tenths));
}

}  // namespace corvale::GenFunctions
