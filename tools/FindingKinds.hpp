// What `corvale check` can find, one row for each kind. The output of all formats, --select and
// --ignore, silencing comments and the table of the guide's page on findings (a test compares it) are
// made from these rows and know no code besides. A kind that is retired keeps its code to itself.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvale::tool {

enum class Severity : std::uint8_t {
    Error,    ///< what is loaded is not what is written
    Warning,  ///< something is not read, or read otherwise than it looks
    Note      ///< all is read as it looks, and some of it has no effect
};

enum class FindingKind : std::uint8_t {
    TwoByteText,
    NotInColumn1,
    NoBlankInColumn8,
    UnknownKeyword,
    UnfinishedKeyword,
    CarriageReturn,
    LongerWord,
    NotOff,
    SetsNothing,
    NotANumber,
    DecimalComma,
    TooLarge,
    TooSmall,
    Slash,
    CutNumber,
    Cut,
    BeyondLast,
    Overwritten,
    ChangesNothing,
    UnknownCode,
};

/// A row of the table.
struct FindingRow {
    FindingKind kind;
    std::string_view code;  ///< for programs, and for people to look up
    Severity severity;
    std::string_view summary;
    std::string_view fix = {};  ///< what mends it, for people; empty: nothing that is certain
};

inline constexpr std::array kFindingRows = {
    FindingRow{FindingKind::TwoByteText, "two-byte-text", Severity::Error,
               "the file is a text in units of two bytes"},
    FindingRow{FindingKind::NotInColumn1, "not-in-column-1", Severity::Warning,
               "a keyword stands behind blanks or other characters",
               "move the keyword to column 1"},
    FindingRow{FindingKind::NoBlankInColumn8, "no-blank-in-column-8", Severity::Warning,
               "QZ_MOIC is followed by something other than a blank", "write a blank in column 8"},
    FindingRow{FindingKind::UnknownKeyword, "unknown-keyword", Severity::Warning,
               "a word is one or two letters off a keyword", "write the keyword"},
    FindingRow{FindingKind::UnfinishedKeyword, "unfinished-keyword", Severity::Warning,
               "a word is the beginning of a keyword"},
    FindingRow{FindingKind::CarriageReturn, "carriage-return", Severity::Warning,
               "a card follows a carriage return that ends no line",
               "end lines at carriage returns"},
    FindingRow{FindingKind::LongerWord, "longer-word", Severity::Warning,
               "a longer word counts as the keyword that it begins with"},
    FindingRow{FindingKind::NotOff, "not-off", Severity::Error,
               "a card that says off sets its mode to 1"},
    FindingRow{FindingKind::SetsNothing, "sets-nothing", Severity::Warning,
               "a QZ_MOIC card sets no value"},
    FindingRow{FindingKind::NotANumber, "not-a-number", Severity::Warning,
               "a word among the values is no number and ends the list",
               "write a slash before the remark"},
    FindingRow{FindingKind::DecimalComma, "decimal-comma", Severity::Warning,
               "a comma makes two values of what looks like one number", "write a decimal point"},
    FindingRow{FindingKind::TooLarge, "too-large", Severity::Error,
               "a number is too large for a real and sets an infinity"},
    FindingRow{FindingKind::TooSmall, "too-small", Severity::Warning,
               "a number is too small for a real and sets 0"},
    FindingRow{FindingKind::Slash, "slash", Severity::Warning,
               "a slash between two digits ends the list"},
    FindingRow{FindingKind::CutNumber, "cut-number", Severity::Error,
               "column 512 cuts a number in two"},
    FindingRow{FindingKind::Cut, "cut", Severity::Warning, "words stand beyond column 512"},
    FindingRow{FindingKind::BeyondLast, "beyond-last", Severity::Warning,
               "there are values after the 128th", "write a slash before the remark"},
    FindingRow{FindingKind::Overwritten, "overwritten", Severity::Note,
               "a card overwrites values that the file has set before"},
    FindingRow{FindingKind::ChangesNothing, "changes-nothing", Severity::Note,
               "a card sets what the file has set before"},
    FindingRow{FindingKind::UnknownCode, "unknown-code", Severity::Warning,
               "a silencing comment names no code of a finding"},
};

inline constexpr std::size_t kFindingKinds = kFindingRows.size();
static_assert([] {
    for (std::size_t i = 0; i < kFindingKinds; ++i)
        if (static_cast<std::size_t>(kFindingRows[i].kind) != i) return false;
    return true;
}());

using KindSet = std::bitset<kFindingKinds>;

[[nodiscard]] constexpr const FindingRow& RowOf(FindingKind kind) noexcept {
    return kFindingRows[static_cast<std::size_t>(kind)];
}

/// The kind with a code; nothing where none has it.
[[nodiscard]] constexpr std::optional<FindingKind> KindOf(std::string_view code) noexcept {
    for (const FindingRow& row : kFindingRows)
        if (row.code == code) return row.kind;
    return std::nullopt;
}

/// "error", "warning" or "note".
[[nodiscard]] constexpr std::string_view SeverityName(Severity severity) noexcept {
    constexpr std::array<std::string_view, 3> names = {"error", "warning", "note"};
    return names[static_cast<std::size_t>(severity)];
}

}  // namespace corvale::tool
