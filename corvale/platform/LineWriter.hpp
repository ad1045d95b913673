// Internal to platform/: not installed, may change in any commit.
//
// Lines of text as they go into a file: CR and LF inside become blanks, a line end follows.
#pragma once

#include <corvale/platform/Descriptors.hpp>

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace corvale::internal {

/// The pieces of which a line is made, in their order.
using Pieces = std::span<const std::string_view>;

/// A line that is joined on the stack: one write of one part is cheaper than one of several (bench:
/// LogLine).
class ShortLine {
  public:
    /// Joins the pieces, unless they are too long for it.
    explicit ShortLine(Pieces pieces) noexcept;

    /// Whether the pieces fit.
    [[nodiscard]] bool IsWhole() const noexcept { return size_ > 0; }

    /// The bytes to write where the file ends with a whole line, or else inside of one.
    [[nodiscard]] std::string_view Text(bool endsInsideLine) const noexcept {
        const std::size_t before = endsInsideLine ? kLineEnd.size() : 0;
        return {text_.data() + kBegin - before, size_ + before};
    }

  private:
    static constexpr std::size_t kShortLine = 1000;
    static constexpr std::size_t kBegin = 16;  // leaves space for a line end; aligned for the copy

    std::size_t size_ = 0;
    alignas(kBegin) std::array<char, kBegin + kShortLine + kLineEnd.size()> text_;
};

/// Writes a line of any length to `file`, on a line of its own, in one system call: where it is
/// without copying it, as far as its line ends allow. Only without memory for the copy, a line with
/// dozens of line ends is written in several calls.
[[nodiscard]] Outcome WriteLongLine(TextFile& file, Pieces pieces) noexcept;

}  // namespace corvale::internal
