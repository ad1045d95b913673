#include "RealWords.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace corvale::tool {

namespace {

constexpr std::string_view kDigits = "0123456789";

bool IsSign(char c) {
    return c == '+' || c == '-';
}

std::size_t AfterDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at])) ++at;
    return at;
}

std::size_t AfterSign(std::string_view text, std::size_t at) {
    return at < text.size() && IsSign(text[at]) ? at + 1 : at;
}

std::size_t AfterMantissa(std::string_view text, std::size_t at) {
    at = AfterDigits(text, at);
    return at < text.size() && text[at] == '.' ? AfterDigits(text, at + 1) : at;
}

bool BeginsWithWord(std::string_view text, std::string_view lowerWord) {
    return text.size() >= lowerWord.size() &&
           std::ranges::equal(text.substr(0, lowerWord.size()), lowerWord,
                              [](char a, char b) { return (a | 0x20) == b; });
}

// The exponent of a real as written, 0 where it has no digits; beyond any double it is cut.
std::int64_t ExponentOf(std::string_view exponent) {
    const bool isNegative = exponent.find('-') != std::string_view::npos;
    const std::size_t first = exponent.find_first_of(kDigits);
    std::int64_t value = 0;
    constexpr std::int64_t enough = 1'000'000;
    for (std::size_t at = first; at < exponent.size(); ++at)
        value = std::min(value * 10 + (exponent[at] - '0'), enough);
    return isNegative ? -value : value;
}

double ToDouble(const std::string& digits, std::int64_t exponent) {
    constexpr std::int64_t largest = 310;
    constexpr std::int64_t smallest = -330;
    const auto size = static_cast<std::int64_t>(digits.size());
    const double beyond = size + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    if (size + exponent > largest || size + exponent < smallest) return beyond;
    const std::string text = Joined(digits, "e", exponent);
    double value = 0.0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc::result_out_of_range ? beyond : value;
}

}  // namespace

std::size_t DecimalLength(std::string_view text) {
    const std::size_t mantissa = AfterSign(text, 0);
    const std::size_t end = AfterMantissa(text, mantissa);
    return end == mantissa || (end == mantissa + 1 && text[mantissa] == '.') ? 0 : end;
}

std::size_t RealLength(std::string_view text, std::string_view exponentLetters) {
    const std::size_t end = DecimalLength(text);
    if (end == 0 || end == text.size()) return end;
    if (exponentLetters.find(text[end]) != std::string_view::npos)
        return AfterDigits(text, AfterSign(text, end + 1));
    return IsSign(text[end]) ? AfterDigits(text, end + 1) : end;
}

std::string WhyNoReal(std::string_view text, std::size_t length) {
    const std::string_view unsignedText = text.substr(AfterSign(text, 0));
    if (BeginsWithWord(unsignedText, "inf") || BeginsWithWord(unsignedText, "nan"))
        return "words for infinity and not-a-number are not taken";
    if (length == text.size()) return "it has no digit";
    const char next = text[length];
    const bool hasExponent = text.substr(0, length).find_first_of("EeDdQq+-", 1) < length;
    if (next == '.') {
        if (length == 0) return "it has no digit";
        return hasExponent ? "a point in the exponent" : "a second point";
    }
    if (IsSign(next)) return length == 0 ? "it has no digit" : "a second sign";
    if (next == ';') return "a semicolon does not separate values";
    if (length > 0) return Joined("it is followed by ", ByteName(next));
    return Joined("it begins with ", ByteName(next));
}

double CardReal(std::string_view real) {
    // the standard library reads what it knows whole: no Q, no D, no exponent without a letter
    double value = 0.0;
    const char* const start = real.data() + (real.front() == '+' ? 1 : 0);
    const auto read = std::from_chars(start, real.data() + real.size(), value);
    if (read.ec == std::errc() && read.ptr == real.data() + real.size()) return value;

    const std::size_t first = AfterSign(real, 0);
    const std::size_t end = AfterMantissa(real, first);
    std::string digits;
    std::int64_t exponent = ExponentOf(real.substr(end));
    bool isFraction = false;
    for (const char c : real.substr(first, end - first)) {
        isFraction = isFraction || c == '.';
        if (!IsDigit(c)) continue;
        if (isFraction) --exponent;
        if (c != '0' || !digits.empty()) digits += c;
    }
    const double magnitude = digits.empty() ? 0.0 : ToDouble(digits, exponent);
    return real.front() == '-' ? -magnitude : magnitude;
}

}  // namespace corvale::tool
