// Internal to core/: not installed, may change in any commit.
#pragma once

#include <corvale/core/CardScan.hpp>
#include <corvale/text/FreeFormReader.hpp>

#include <bitset>
#include <cstddef>
#include <string_view>

namespace corvale::internal {

/// Fills `MoicArr` from QZ_MOIC cards that are read from the last one to the first.
///
/// The array is seen only after the load, so of all cards that give an element a value the last one
/// decides. Read backwards, each element is converted once, and a card whose elements all have
/// values already is skipped unread (bench: CardFile; read forwards every number is converted).
///
/// Invariant: an element with a value is never written again, and all before `firstUnset_` have one.
class MoicCards {
  public:
    /// Reads the numbers of a card that stands before all cards read so far: columns 9 to 512. The
    /// 32 characters before them must be readable.
    void ReadEarlier(std::string_view numbers) noexcept {
        if (MostValues(numbers) > firstUnset_) ReadItems(numbers);
    }

  private:
    void ReadItems(std::string_view numbers) noexcept;
    void Store(std::size_t first, std::size_t end, const ScannedReal& number) noexcept;

    std::bitset<128> isSet_;
    std::size_t firstUnset_ = 0;
};

}  // namespace corvale::internal
