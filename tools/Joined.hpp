// Messages put together from pieces.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace corvale::tool {

inline void Append(std::string& text, std::string_view piece) {
    text.append(piece);
}
void Append(std::string& text, std::integral auto number) {
    text.append(std::to_string(number));
}

/// Texts and whole numbers, one after the other.
template <class... Pieces>
[[nodiscard]] std::string Joined(const Pieces&... pieces) {
    std::string text;
    (Append(text, pieces), ...);
    return text;
}

}  // namespace corvale::tool
