// Internal to the library: not installed, may change in any commit.
//
// What core/ needs of the units beyond their public API.
#pragma once

#include <corvale/platform/Descriptors.hpp>
#include <corvale/platform/LineWriter.hpp>
#include <corvale/platform/ThreadLock.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Opens `name` on `unit`, after closing what was open there. False when it cannot be opened; `unit`
/// is then closed, and no file has changed.
[[nodiscard]] bool OpenUnit(std::int32_t unit, FileName name, FileAccess access) noexcept;

/// Opens `name` on a number that no open unit has: 1000000 or higher, and another one after each
/// close, so that a number kept too long names nothing. 0 when it cannot be opened; no file has
/// then changed.
[[nodiscard]] std::int32_t OpenFreshUnit(FileName name, FileAccess access) noexcept;

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

/// Writes a line once. `line` holds the pieces if they fit.
[[nodiscard, gnu::always_inline]] inline Outcome OfferLine(std::int32_t unit, const ShortLine& line,
                                                           Pieces pieces) noexcept {
    const WritingUnit writing(unit);
    TextFile* const file = writing.File();
    if (file == nullptr) [[unlikely]]
        return Outcome::Lost;
    if (!line.IsWhole()) [[unlikely]]
        return WriteLongLine(*file, pieces);
    return WriteWhole(*file, line.Text(file->lacksLineEnd));
}

/// Goes on after a refusal until the line is written or lost.
[[nodiscard]] Outcome WaitAndOffer(std::int32_t unit, const ShortLine& line,
                                   Pieces pieces) noexcept;

/// Writes one line that is given in pieces, as `TextUnits::WriteLine` does.
///
/// Inline down to the system call, and so is what calls it for a message: the call flushes the
/// processor's return predictor, so that each function above it costs a mispredicted return. With
/// plain functions TraceLogInfo takes 1.07 times a bare write(), so 1.06 (bench: LogLine).
[[nodiscard, gnu::always_inline]] inline bool WriteLine(std::int32_t unit, Pieces pieces) noexcept {
    const ShortLine line(pieces);
    Outcome outcome = OfferLine(unit, line, pieces);
    if (outcome == Outcome::Refused) [[unlikely]]
        outcome = WaitAndOffer(unit, line, pieces);
    return outcome == Outcome::Written;
}

}  // namespace corvale::internal
