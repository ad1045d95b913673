#include "Texts.hpp"

#include <corvale/Corvale.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace corvale::tool {

std::string MessageFrom(void (*write)(char*) noexcept) {
    std::string text(CORVALE_MESSAGE_WIDTH, ' ');
    write(text.data());
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::optional<std::string> WhyNameIsRefused(std::string_view name) {
    if (name.empty() || name.find_first_not_of(' ') == std::string_view::npos)
        return "the name is blank";
    if (name.front() == ' ') return "it begins with a blank, which would be removed";
    if (name.back() == ' ') return "it ends with a blank, which would be removed";
    if (name.size() > CORVALE_NAME_WIDTH)
        return "it has " + std::to_string(name.size()) + " characters, more than " +
               std::to_string(CORVALE_NAME_WIDTH);
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto code = static_cast<unsigned char>(name[i]);
        if (code < 32 || code > 126)
            return "byte " + std::to_string(i + 1) + " has the code " + std::to_string(code) +
                   "; only 32 to 126 are taken";
    }
    return std::nullopt;
}

std::string PaddedName(const internal::KeyMode& mode) {
    constexpr std::size_t width = [] {
        std::size_t longest = 0;
        for (const auto& each : internal::kKeyModes) longest = std::max(longest, each.name.size());
        return longest + 2;
    }();
    std::string name(mode.name);
    name.resize(width, ' ');
    return name;
}

std::string RealText(double value) {
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

}  // namespace corvale::tool
