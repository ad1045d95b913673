// Internal to the library: not installed, may change in any commit.
//
// Free-form reading: items of one record, separated by blanks, by commas with or without blanks
// beside them, or as the rules say. Serves the input cards and the number-and-word input lines.
#pragma once

#include <corvale/text/RealConversion.hpp>

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// What differs between the records.
struct FreeFormRules {
    RealRules real;
    bool tabSeparates;        ///< a tab is as good as a blank
    bool semicolonSeparates;  ///< a semicolon is as good as a comma
    bool repeatCounts;        ///< n*v is n copies of v, n* alone n empty items
    std::size_t numberWidth;  ///< how many characters of an item count; `npos`: all
};

enum class ItemKind : std::uint8_t {
    Value,    ///< a number, or a word
    Empty,    ///< nothing between two separators: the target keeps what it held
    Stop,     ///< a slash: this target and all that follow keep what they held
    End,      ///< the record ended before the item
    Unusable  ///< not a number, or a quoted text that is not closed
};

/// Reads the items of one record from left to right. Holds a view of the record, allocates nothing.
/// After `Stop`, `End` and `Unusable` it stays where it is and answers the same again.
class FreeFormReader {
  public:
    FreeFormReader(std::string_view record, FreeFormRules rules) noexcept
        : record_(record), rules_(rules) {}

    /// Reads the next item as a number. `count` is how many targets it stands for: 1, or the repeat
    /// count, at most `INT32_MAX`, for `Value` and `Empty`. A number ends at a separator, a slash
    /// or the end of the record; anything else directly after it makes it unusable.
    [[nodiscard]] ItemKind NextNumber(ScannedReal& number, std::int32_t& count) noexcept;

    /// Reads the next item as text into `word`, cut or blank-filled: enclosed in apostrophes or
    /// quotation marks (a doubled delimiter stands for one), or up to a separator or slash. Only
    /// `Value` writes `word`.
    [[nodiscard]] ItemKind NextWord(std::span<char> word) noexcept;

  private:
    [[nodiscard]] bool IsBlankAt(std::size_t at) const noexcept;
    [[nodiscard]] bool IsCommaAt(std::size_t at) const noexcept;
    [[nodiscard]] bool IsItemEnd(std::size_t at) const noexcept;
    [[nodiscard]] std::size_t AfterBlanks(std::size_t at) const noexcept;
    [[nodiscard]] std::size_t AfterNumber(std::size_t at, ScannedReal& number) const noexcept;
    [[nodiscard]] ItemKind BeginItem() noexcept;
    [[nodiscard]] ItemKind Repeated(std::size_t star, ScannedReal& number,
                                    std::int32_t& count) noexcept;
    [[nodiscard]] ItemKind QuotedWord(std::span<char> word) noexcept;
    ItemKind Finish(std::size_t at, ItemKind kind) noexcept;

    std::string_view record_;
    FreeFormRules rules_;
    std::size_t position_ = 0;
};

}  // namespace corvale::internal
