// Numbers and words in fields and input lines, one character at a time and through the C library. For
// the "C" locale and round-to-nearest.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace corvale::reference {

// The field as digits, point and 'e' for strtod; nothing where it is no number.
inline std::optional<std::string> NormalisedReal(std::string_view field) {
    enum class In { Start, Mantissa, Exponent, ExponentDigits } state = In::Start;
    std::string mantissa, exponent, sign;
    bool hasPoint = false, hasDigit = false;
    for (const char c : field.substr(0, 80)) {
        const bool isSign = c == '+' || c == '-';
        if (isSign && state == In::Start) {
            sign = c;
            state = In::Mantissa;
        } else if (isSign && state != In::ExponentDigits) {
            exponent += c;
            state = In::ExponentDigits;
        } else if (c >= '0' && c <= '9') {
            hasDigit = hasDigit || state < In::Exponent;
            (state < In::Exponent ? mantissa : exponent) += c;
            state = state < In::Exponent ? In::Mantissa : In::ExponentDigits;
        } else if (c == '.' && state < In::Exponent && !hasPoint) {
            mantissa += c;
            hasPoint = true;
            state = In::Mantissa;
        } else if (std::string_view("eEdD").find(c) != std::string_view::npos &&
                   state < In::Exponent) {
            state = In::Exponent;
        } else {
            return std::nullopt;
        }
    }
    if (!hasDigit) return "0";
    if (exponent.find_first_of("0123456789") == std::string::npos)
        exponent += '0';  // a bare sign, or nothing
    return sign + mantissa + "e" + exponent;
}

inline double StrToReal(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return 0.0;
    text.remove_prefix(first);
    const auto number = NormalisedReal(text.substr(0, text.find_first_not_of("+-.0123456789eEdD")));
    return number ? std::strtod(number->c_str(), nullptr) : 0.0;
}

inline std::int32_t StrToInt(std::string_view text) {
    constexpr std::string_view kCharacters = "+-0123456789";
    const std::size_t first = text.find_first_of(kCharacters);
    if (first == std::string_view::npos) return 0;
    text.remove_prefix(first);
    const std::string field(text.substr(0, text.find_first_not_of(kCharacters)).substr(0, 12));
    if (field.find_first_of("+-", 1) != std::string::npos) return 0;
    const long long value = std::strtoll(field.c_str(), nullptr, 10);
    return value < INT32_MIN || value > INT32_MAX ? 0 : static_cast<std::int32_t>(value);
}

inline std::string_view ValueOf(std::string_view line) {
    return line.substr(std::min(line.find('='), line.size() - 1) + 1);
}

// The first run of `characters`, and what follows its terminator.
inline std::pair<std::string_view, std::string_view> TakeRun(std::string_view text,
                                                             std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_of(characters), text.size()));
    const std::size_t end = std::min(text.find_first_not_of(characters), text.size());
    return {text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
}

inline std::string Capitals(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::string capitals(text.substr(0, 4));
    for (char& c : capitals)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return capitals;
}

inline std::int32_t InputStrToInt(std::string_view line) {
    constexpr std::pair<std::string_view, std::int32_t> kWords[] = {
        {"YES", 1}, {"ON", 1}, {"TRUE", 1}, {"NO", 0}, {"OFF", 0}};
    const std::string start = Capitals(ValueOf(line));
    for (const auto& [word, value] : kWords)
        if (start.starts_with(word)) return value;
    return StrToInt(ValueOf(line));
}

struct NumberAndWord {
    double number = 0.0;
    std::string word;  // not yet as wide as its target
};

// Reads them from what follows the "=" of a line.
class FreeFormReader {
  public:
    explicit FreeFormReader(std::string_view rest) : rest_(rest) {}

    // Nothing where the reading fails.
    std::optional<NumberAndWord> Read() {
        NumberAndWord result;
        if (char c = Next(); c == '\0') {
            return std::nullopt;
        } else if (c == '/') {
            return result;
        } else if (IsComma(c)) {
            rest_.remove_prefix(1);
        } else {
            const auto number = NormalisedReal(TakeItem());
            if (!number) return std::nullopt;
            result.number = std::strtod(number->c_str(), nullptr);
            if (c = Next(); IsComma(c)) rest_.remove_prefix(1);
        }
        const char c = Next();
        if (c == '\0') return std::nullopt;
        if (c == '/' || IsComma(c)) return result;
        if (c != '\'' && c != '"') {
            result.word = TakeItem();
            return result;
        }
        return TakeQuoted(c, result.word) ? std::optional(result) : std::nullopt;
    }

  private:
    static bool IsComma(char c) { return c == ',' || c == ';'; }

    // The next character that is not blank; '\0' at the end ('\x01' for a NUL that stands there).
    char Next() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
        return rest_.empty() ? '\0' : rest_[0] == '\0' ? '\x01' : rest_[0];
    }
    std::string_view TakeItem() {
        const std::string_view item = rest_.substr(0, rest_.find_first_of(" ,;/"));
        rest_.remove_prefix(item.size());
        return item;
    }
    bool TakeQuoted(char delimiter, std::string& word) const {
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] == delimiter && (i + 1 == rest_.size() || rest_[++i] != delimiter))
                return true;
            word += rest_[i];
        }
        return false;
    }

    std::string_view rest_;
};

}  // namespace corvale::reference
