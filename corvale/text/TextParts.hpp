// Internal to the library: not installed, may change in any commit.
//
// The steps that every fixed-width text goes through.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

namespace corvale::internal {

constexpr char kBlank = ' ';

/// `text` from its first non-blank character on; empty when there is none.
[[nodiscard]] inline std::string_view WithoutLeadingBlanks(std::string_view text) noexcept {
    return text.substr(std::min(text.find_first_not_of(kBlank), text.size()));
}

/// `text` up to its last non-blank character; empty when there is none.
[[nodiscard]] inline std::string_view WithoutTrailingBlanks(std::string_view text) noexcept {
    return text.substr(0, text.find_last_not_of(kBlank) + 1);
}

/// Makes all of `target` blank.
inline void FillWithBlanks(std::span<char> target) noexcept {
    if (!target.empty()) std::memset(target.data(), kBlank, target.size());
}

/// Writes `text` to `target`, cut or blank-filled. They may overlap.
inline void PutText(std::string_view text, std::span<char> target) noexcept {
    const std::size_t count = std::min(text.size(), target.size());
    if (count > 0) std::memmove(target.data(), text.data(), count);
    FillWithBlanks(target.subspan(count));
}

}  // namespace corvale::internal
