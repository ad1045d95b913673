// The values of the 128 elements while a file is explained.
#pragma once

#include <corvale/core/CardTable.hpp>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvale::tool {

inline constexpr std::size_t kElements = internal::kMoicCount;

/// Most values are overwritten before anybody asks for them: the text of a short decimal is kept and
/// converted when it is read. In a file of cards without a fault that takes a third of the time.
class ElementValues {
  public:
    /// The width of a text that is kept: such a decimal is neither too large nor too small.
    static constexpr std::size_t kTextWidth = 24;

    /// `column` is where the item begins that sets the value.
    void Set(std::size_t element, double value, std::size_t column) {
        areNew_ =
            areNew_ || sizes_[element] != 0 ||
            std::bit_cast<std::uint64_t>(values_[element]) != std::bit_cast<std::uint64_t>(value);
        values_[element] = value;
        sizes_[element] = 0;
        columns_[element] = static_cast<std::uint16_t>(column);
    }
    /// A real without an exponent, of at most `kTextWidth` characters.
    void SetDecimal(std::size_t element, std::string_view decimal, std::size_t column) {
        areNew_ = areNew_ || decimal != std::string_view(texts_[element].data(), sizes_[element]);
        decimal.copy(texts_[element].data(), kTextWidth);
        sizes_[element] = static_cast<std::uint8_t>(decimal.size());
        columns_[element] = static_cast<std::uint16_t>(column);
    }
    [[nodiscard]] double operator[](std::size_t element) const;
    /// Where on its line the item begins that set the value, counted from 1.
    [[nodiscard]] std::size_t Column(std::size_t element) const { return columns_[element]; }

    /// Whether anything was set since `BeginCard` that is not written as what it replaces.
    [[nodiscard]] bool AreNew() const { return areNew_; }
    void BeginCard() { areNew_ = false; }

  private:
    std::array<double, kElements> values_{};
    std::array<std::array<char, kTextWidth>, kElements> texts_{};
    bool areNew_ = false;
    std::array<std::uint8_t, kElements> sizes_{};  // 0: the value is in `values_`
    std::array<std::uint16_t, kElements> columns_{};
};

}  // namespace corvale::tool
