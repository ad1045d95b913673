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

/// A line that is put together on the stack, since one write of one part is cheaper than one of
/// several (bench: LogLine). A longer one is not copied.
class ShortLine {
  public:
    /// Puts the pieces together, unless they are too long for it.
    explicit ShortLine(std::span<const std::string_view> pieces) noexcept;

    /// Whether the pieces have found room.
    [[nodiscard]] bool IsWhole() const noexcept { return size_ > 0; }

    /// What is to be written where the file ends with a whole line, or else in the middle of one.
    [[nodiscard]] std::string_view Text(bool endsInsideLine) const noexcept {
        const std::size_t before = endsInsideLine ? kLineEnd.size() : 0;
        return {text_.data() + kBegin - before, size_ + before};
    }

  private:
    static constexpr std::size_t kShortLine = 1000;
    static constexpr std::size_t kBegin = 16;  // behind a line end; copying from there is fastest

    std::size_t size_ = 0;
    alignas(kBegin) std::array<char, kBegin + kShortLine + kLineEnd.size()> text_;
};

/// Writes a line of any length to `file`, on a line of its own. False when the system does not take
/// all of it.
[[nodiscard]] bool WriteLongLine(TextFile& file, std::span<const std::string_view> pieces) noexcept;

}  // namespace corvale::internal
