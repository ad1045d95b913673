// Internal to the library: not installed, may change in any commit.
//
// What core/ needs of the units beyond their public face.
#pragma once

#include <corvale/platform/Descriptors.hpp>
#include <corvale/platform/LineWriter.hpp>
#include <corvale/platform/ThreadLock.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Opens `name` on `unit`, after closing what was open there. Trailing blanks are not part of the
/// name. False when it cannot be opened; `unit` is then closed.
[[nodiscard]] bool OpenUnit(std::int32_t unit, std::string_view name, FileAccess access) noexcept;

/// Opens `name` on a number that no open unit has: 1000000 or higher, and another one after each
/// close, so that a number kept too long names nothing. 0 when it cannot be opened.
[[nodiscard]] std::int32_t OpenFreshUnit(std::string_view name, FileAccess access) noexcept;

/// Reads the next bytes of a unit: their number, 0 at the end, -1 on error or when it does not
/// read.
[[nodiscard]] std::ptrdiff_t ReadBytes(std::int32_t unit, std::span<char> buffer) noexcept;

/// A unit while a line is written to it: no other thread writes to it or closes it.
class WritingUnit {
  public:
    explicit WritingUnit(std::int32_t unit) noexcept;

    /// Null where the unit is not open or does not write.
    [[nodiscard]] TextFile* File() const noexcept { return file_; }

  private:
    ThreadLock lock_;
    TextFile* file_ = nullptr;
};

/// Writes one line that is given in pieces, as `TextUnits::WriteLine` does. Inline, as `WriteWhole`
/// is.
[[nodiscard, gnu::always_inline]] inline bool WriteLine(
    std::int32_t unit, std::span<const std::string_view> pieces) noexcept {
    const ShortLine line(pieces);
    const WritingUnit writing(unit);
    TextFile* const file = writing.File();
    if (file == nullptr) [[unlikely]]
        return false;
    if (!line.IsWhole()) [[unlikely]]
        return WriteLongLine(*file, pieces);
    return WriteWhole(*file, line.Text(file->lacksLineEnd));
}

}  // namespace corvale::internal
