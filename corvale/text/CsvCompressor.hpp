// Internal to the library: not installed, may change in any commit.
//
// One pass over a row of comma-separated values that leaves out useless blanks and zeros.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Rewrites one row in place. Positions count from 0 here.
///
/// The row is a sequence of characters, each handled by the first rule that knows it. What the
/// rules remember from one character to the next is whether a point has been seen in the current
/// number, and which zeros at its end would be useless if the number ended now. A comma or colon
/// makes them forget both, so a field of the wide layout can be taken whole: its outcome is known
/// without the rules.
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

    void TakeWideFields() noexcept;

    static constexpr std::size_t kWidth = 512;
    static constexpr std::size_t kSlack = 32;  // whole words may be written beyond the result

    std::span<char> line_;
    std::string_view input_;  // up to the last non-blank character
    std::size_t in_ = 0;
    std::size_t out_ = 0;
    bool isFraction_ = false;
    ZeroRun zeros_;
    // A point has followed useless zeros: when they go, characters behind them remain where they
    // are, also beyond `out_`. Otherwise all from `out_` on is blank, and not kept.
    bool hasRemains_ = false;
    std::array<char, kWidth + kSlack> result_;
};

}  // namespace corvale::internal
