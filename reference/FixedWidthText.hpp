// The operations on texts with strings that grow.
#pragma once

#include <algorithm>
#include <string>

namespace corvale::reference {

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

inline std::string ReplaceString(const std::string& text, const std::string& pattern,
                                 const std::string& replacement) {
    if (pattern.empty()) return "";
    std::string result;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(pattern, from)) != std::string::npos;
         from = at + pattern.size())
        result += text.substr(from, at - from) + replacement;
    return result + text.substr(from);
}

inline std::string GetInputFileName(const std::string& line) {
    const std::string value = line.substr(line.find('=') + 1);  // the whole line without one
    return value.substr(std::min(value.find_first_not_of(' '), value.size()));
}

inline std::string RemSpaceSlashChars(const std::string& text) {
    std::string kept;
    for (const char c : text)
        if (c == '.' || (c >= '0' && c <= '9')) kept += c;
    return kept;
}

}  // namespace corvale::reference
