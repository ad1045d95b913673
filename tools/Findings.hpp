// Something worth saying of a line, and comments that keep it from being said.
#pragma once

#include "ElementValues.hpp"
#include "FindingKinds.hpp"

#include <bitset>
#include <string>
#include <string_view>
#include <vector>

namespace corvale::tool {

using Elements = std::bitset<kElements>;

/// A change of a line: `length` bytes from `column` on become `text`, which may end lines.
struct Edit {
    std::size_t column, length;
    std::string text;
};

/// What was found, and where it stands.
struct Finding {
    FindingKind kind;
    std::size_t column = 1;  ///< in bytes, counted from 1
    std::size_t length = 1;
    std::string message;
    std::string help = {};                 ///< what to do about it; may be empty
    const internal::Card* card = nullptr;  ///< that the line is, or seems meant to be
    Elements elements = {};                ///< to which it matters
    std::vector<Edit> fix = {};            ///< what mends it; empty where that is not certain
};

/// The kinds that are not told of.
struct Silence {
    KindSet always;
    KindSet next;  ///< of the next line that is neither blank nor a comment
};

/// Whether findings of a kind are silenced in this line.
[[nodiscard]] inline bool IsSilenced(FindingKind kind, const Silence& silence) {
    const auto i = static_cast<std::size_t>(kind);
    return silence.always[i] || silence.next[i];
}

/// Does what a comment asks for, if it is one of
///     * corvale-ignore: CODE, ...        for the next line that is neither blank nor a comment
///     * corvale-ignore-file: CODE, ...   from here to the end of the file
/// and tells of words in it that are no codes.
void ObeyComment(std::string_view comment, Silence& silence, std::vector<Finding>& findings);

/// Takes the findings out that are silenced in this line.
void TakeOutSilenced(const Silence& silence, std::vector<Finding>& findings);

}  // namespace corvale::tool
