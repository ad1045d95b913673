#include "NumberFields.hpp"

#include "Escapes.hpp"
#include "RealWords.hpp"
#include "Texts.hpp"

#include <corvale/text/NumericFields.hpp>

#include <algorithm>
#include <cmath>

namespace corvale::tool {

namespace {

constexpr std::size_t kRealWidth = 80;     // characters of a real that the library looks at
constexpr std::size_t kIntegerWidth = 12;  // and of an integer

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

}  // namespace corvale::tool
