#include "NumberFields.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "RealWords.hpp"
#include "Texts.hpp"

#include <corvale/numeric/Angles.hpp>
#include <corvale/text/NumericFields.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvale::tool {

namespace {

constexpr std::size_t kRealWidth = 80;     // characters of a real that the library looks at
constexpr std::size_t kIntegerWidth = 12;  // and of an integer

// Whole minutes and seconds of an angle that is written in digits, in the unit of its last digit.
struct Layout {
    std::string_view digits;  // D, M or S where a digit is wanted, else the character itself
    std::int64_t perSecond;   // units of the last digit in a second
    std::string_view name;
};
constexpr Layout kDegreeLayout = {"DDMMSS.SSS", 1000, "sDDMMSS.SSS"};
constexpr Layout kHourLayout = {"DDMMSSS", 10, "HHMMSSs"};

// Where `text` first departs from the layout; its size where it does not.
std::size_t Departure(std::string_view text, std::string_view layout) {
    for (std::size_t i = 0; i < layout.size(); ++i) {
        const bool wantsDigit = layout[i] != '.';
        if (i >= text.size()) return i;
        if (wantsDigit ? text[i] < '0' || text[i] > '9' : text[i] != '.') return i;
    }
    return layout.size();
}

std::int64_t DigitsOf(std::string_view text, std::string_view layout, char place) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < layout.size(); ++i)
        if (layout[i] == place) value = value * 10 + (text[i] - '0');
    return value;
}

}  // namespace

IntegerField ReadInteger(std::string_view text, std::size_t skipped) {
    const auto [field, first] = Trim(text.substr(skipped));
    const std::size_t column = skipped + first;
    if (field.empty()) return {{}, skipped + 1, "there is no number"};
    const std::size_t digits = field.front() == '+' || field.front() == '-' ? 1 : 0;
    const std::size_t end = field.find_first_not_of("0123456789", digits);
    if (end < field.size() || digits == field.size())
        return {{}, column + std::min(end, field.size()), Quoted(field) + " is no integer"};
    const std::int32_t value = StrFunctions::StrToInt(field);
    const bool isZero = field.find_first_not_of('0', digits) == std::string_view::npos;
    if (field.size() > kIntegerWidth || (value == 0 && !isZero))
        return {{}, column, Quoted(field) + " does not fit in 32 bits"};
    return {value, column};
}

RealField ReadReal(std::string_view text, std::size_t skipped) {
    const auto [field, first] = Trim(text.substr(skipped));
    const std::size_t column = skipped + first;
    if (field.empty()) return {{}, skipped + 1, "there is no number"};
    const std::size_t length = RealLength(field, kFieldExponents);
    if (length < field.size())
        return {
            {}, column + length, Quoted(field) + " is not a number: " + WhyNoReal(field, length)};
    if (length > kRealWidth)
        return {{}, column + kRealWidth, Quoted(field) + " is longer than 80 characters"};
    const double value = StrFunctions::StrToReal(field);
    if (std::isinf(value)) return {{}, column, Quoted(field) + " is too large for a real"};
    return {value, column};
}

Converted NumberText(std::string_view text, std::size_t skipped, bool isInteger) {
    if (isInteger) {
        const IntegerField field = ReadInteger(text, skipped);
        if (!field.value) return Unusable{field.column, field.why};
        return std::to_string(*field.value);
    }
    const RealField field = ReadReal(text, skipped);
    if (!field.value) return Unusable{field.column, field.why};
    return RealText(*field.value);
}

Converted EncodeAngle(std::string_view text, bool inHours) {
    const RealField field = ReadReal(text);
    if (!field.value) return Unusable{field.column, field.why};
    if (inHours) {
        const std::array<char, 7> code = GenFunctions::DegToHHMMSSS_Str(*field.value);
        return std::string(code.data(), code.size());
    }
    const std::array<char, 11> code = GenFunctions::DegToDDMMSSSSS_Str(*field.value);
    std::string shown(code.data(), code.size());
    if (shown.find('*') == std::string::npos) return shown;
    return Unusable{field.column, Quoted(Trim(text).text) + " degrees do not fit in two digits"};
}

Converted DecodeAngle(std::string_view text, bool inHours) {
    const Layout& layout = inHours ? kHourLayout : kDegreeLayout;
    const auto [field, column] = Trim(text);
    const std::string refusal = Joined(Quoted(field), " is no angle ", layout.name);
    const bool hasSign = !inHours && !field.empty() && (field[0] == '-' || field[0] == '0');
    if (!inHours && !hasSign) return Unusable{column, refusal + ": it begins with '-' or '0'"};

    const std::string_view digits = field.substr(hasSign ? 1 : 0);
    const std::size_t departure = Departure(digits, layout.digits);
    if (departure < layout.digits.size() || digits.size() > layout.digits.size())
        return Unusable{column + (hasSign ? 1 : 0) + departure, refusal};

    const std::int64_t whole = DigitsOf(digits, layout.digits, 'D');
    const std::int64_t minutes = DigitsOf(digits, layout.digits, 'M');
    const std::int64_t seconds = DigitsOf(digits, layout.digits, 'S');
    if (minutes >= 60 || seconds >= 60 * layout.perSecond || (inHours && whole >= 24))
        return Unusable{column, Joined(refusal, ": it has ", inHours ? "24 hours, " : "",
                                       "60 minutes or 60 seconds, or more")};
    const std::int64_t units = (whole * 60 + minutes) * 60 * layout.perSecond + seconds;
    // an hour is 15 degrees: 2400 tenths of a second are one
    const double perDegree = inHours ? 2400.0 : 3600.0 * static_cast<double>(layout.perSecond);
    const double degrees = static_cast<double>(units) / perDegree;
    return RealText(field[0] == '-' ? -degrees : degrees);
}

}  // namespace corvale::tool
