// Internal to the library: not installed, may change in any commit.
//
// One pass over a row of comma-separated values that leaves out useless blanks and zeros.
//
// Idea      The row is a sequence of characters, each handled by the first rule that knows it. The
//           rules remember two things from one character to the next: whether a point has been seen
//           in the current number, and which zeros at its end would be useless if it ended now.
//           Rows are mostly fields of one wide layout, " 1.234000000000000E+002,", whose outcome is
//           known without the rules: such a field is checked, moved and shortened in whole words.
// Why       The rules branch on each character; a field at a time is at least 14 times as fast.
//           Everything else is left to the rules; bench: CsvLine/Corvale in NumbersBench.
// Invariant After a comma or colon the rules remember nothing, so a wide field may begin there.
// Source    Derived here
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Rewrites one row in place. Positions count from 0 here.
class CsvCompressor {
  public:
    explicit CsvCompressor(std::span<char> line) noexcept;
    void Compress() noexcept;

  private:
    // Zeros at the end of a fraction, so far: positions `first` to `last` of the result.
    struct ZeroRun {
        std::size_t first = 0;
        std::size_t last = 0;
        bool isRecorded = false;
    };

    [[nodiscard]] char At(std::size_t position) const noexcept;
    [[nodiscard]] bool Matches(std::string_view pattern) const noexcept;
    [[nodiscard]] bool IsLast() const noexcept { return in_ + 1 == input_.size(); }

    void ApplyFirstRule() noexcept;
    void Separator() noexcept;
    void ExponentLetter() noexcept;
    void Point() noexcept;
    void Zero() noexcept;
    void Copy() noexcept;
    void ClearAtLineEnd() noexcept;
    [[nodiscard]] std::size_t EndOfNumber() noexcept;
    void BlankZeroRun() noexcept;

    void CompressWideFields() noexcept;

    static constexpr std::size_t kWidth = 512;
    static constexpr std::size_t kSlack = 32;  // whole words may be written beyond the result

    std::span<char> line_;
    std::string_view input_;  // up to the last non-blank character
    std::size_t in_ = 0;
    std::size_t out_ = 0;
    bool isFraction_ = false;
    ZeroRun zeros_;
    // True once a second point follows a run of trailing zeros ("48.000."): removing the zeros does
    // not move what follows, so characters beyond `out_` count. Otherwise all from `out_` on is
    // blank, and not stored.
    bool keepsWidth_ = false;
    std::array<char, kWidth + kSlack> result_;
};

}  // namespace corvale::internal
