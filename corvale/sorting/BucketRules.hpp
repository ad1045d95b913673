// Internal to sorting/: not installed, may change in any commit.
//
// Rules that turn a key into a bucket number. A rule never descends where keys ascend, and it
// splits every range that it is made for: the least and the greatest byte in the first place where
// keys differ never share a bucket.
#pragma once

#include <corvale/sorting/KeyRange.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// The least and the greatest value of each byte of the keys.
struct Survey {
    std::array<std::uint8_t, kKeyBytes> least;
    std::array<std::uint8_t, kKeyBytes> greatest;
};
[[nodiscard]] Survey SurveyBytes(const KeyRange& range) noexcept;

/// Above all numbers of buckets.
constexpr std::size_t kNoBucket = 0x1000;

/// The first three bytes that vary, as digits of a number with as many values a digit as lie
/// between the least and the greatest byte in its place, scaled to the count of buckets. Cheap, and
/// good where bytes take many of the values between.
class ScaledRule {
  public:
    /// `mostBuckets` is even.
    ScaledRule(const Survey& survey, std::size_t mostBuckets) noexcept;

    /// How many buckets there are; 0 where all keys are equal.
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

    /// Whether the keys of one bucket are equal.
    [[nodiscard]] bool IsComplete() const noexcept { return isComplete_; }

    [[nodiscard]] std::size_t operator()(const Key& key) const noexcept {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < kDigits; ++i)
            value += static_cast<unsigned char>(key[places_[i]]) * weights_[i];
        return (value - least_) >> kFraction;
    }

  private:
    static constexpr std::size_t kDigits = 3;
    static constexpr unsigned kFraction = 48;  // bits behind the point of the scaled number
    std::array<std::size_t, kDigits> places_{};
    std::array<std::uint64_t, kDigits> weights_{};
    std::uint64_t least_ = 0;
    std::size_t count_ = 0;
    bool isComplete_ = false;
};

/// Up to nine bytes that vary as digits, each the rank of the byte among those that occur in its
/// place, the last one coarser where not all its values fit. For keys of few values a byte, of
/// which the scaled rule would leave most buckets empty. Costs twice the time a key.
class RankedRule {
  public:
    /// Looks at each `step`th key.
    RankedRule(const KeyRange& range, const Survey& survey, std::size_t mostBuckets,
               std::size_t step) noexcept;

    [[nodiscard]] std::size_t Count() const noexcept { return count_; }
    [[nodiscard]] bool IsComplete() const noexcept { return isComplete_; }

    /// kNoBucket or more where the key has a byte that no key looked at has in its place.
    [[nodiscard]] std::size_t operator()(const Key& key) const noexcept {
        std::size_t bucket = 0;
        for (std::size_t i = 0; i < digits_; ++i)
            bucket += parts_[i][static_cast<unsigned char>(key[places_[i]])];
        return bucket;
    }

  private:
    static constexpr std::size_t kMostDigits = 9;

    void AddDigit(const KeyRange& range, std::size_t place, std::size_t most,
                  std::size_t step) noexcept;
    void SetWeights() noexcept;

    std::array<std::size_t, kMostDigits> places_{};
    std::array<std::size_t, kMostDigits> values_{};
    std::array<std::array<std::uint16_t, 256>, kMostDigits> parts_{};  // of the bucket number
    std::size_t digits_ = 0;
    std::size_t count_ = 1;
    bool isComplete_ = true;
};

}  // namespace corvale::internal
