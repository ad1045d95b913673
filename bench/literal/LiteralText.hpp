// Test help: the operations on texts and the readers of input lines, rule by rule, with strings that
// grow. Numbers go through LiteralNumbers.hpp and what it asks for.
#pragma once

#include "LiteralNumbers.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace corvale::test {

// A result that is cut or blank-filled.
inline std::string Fit(std::string text, std::size_t width) {
    text.resize(width, ' ');
    return text;
}

inline std::string Cased(std::string text, char first, int distance) {
    for (char& c : text)
        if (c >= first && c <= first + 25) c = static_cast<char>(c + distance);
    return text;
}

inline std::string LiteralReplace(const std::string& text, const std::string& pattern,
                                  const std::string& replacement) {
    if (pattern.empty()) return "";
    std::string result;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(pattern, from)) != std::string::npos;
         from = at + pattern.size())
        result += text.substr(from, at - from) + replacement;
    return result + text.substr(from);
}

inline std::string LiteralValue(const std::string& line) {
    const std::string value = line.substr(line.find('=') + 1);  // the whole line without one
    return value.substr(std::min(value.find_first_not_of(' '), value.size()));
}

inline std::string LiteralDigits(const std::string& text) {
    std::string kept;
    for (const char c : text)
        if (c == '.' || (c >= '0' && c <= '9')) kept += c;
    return kept;
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

inline std::int32_t LiteralInputStrToInt(std::string_view line) {
    constexpr std::pair<std::string_view, std::int32_t> kWords[] = {
        {"YES", 1}, {"ON", 1}, {"TRUE", 1}, {"NO", 0}, {"OFF", 0}};
    const std::string start = Capitals(ValueOf(line));
    for (const auto& [word, value] : kWords)
        if (start.starts_with(word)) return value;
    return LiteralStrToInt(ValueOf(line));
}

struct NumberAndWord {
    double number = 0.0;
    std::string word;  // not yet as wide as its target
};

// Reads them from what follows the "=" of a line, rule by rule.
class LiteralReader {
  public:
    explicit LiteralReader(std::string_view rest) : rest_(rest) {}

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

}  // namespace corvale::test
