#include <corvale/sorting/BucketRules.hpp>

#include <algorithm>

namespace corvale::internal {

Survey SurveyBytes(const KeyRange& range) noexcept {
    using Bytes [[gnu::vector_size(16)]] = std::uint8_t;
    Bytes least[2];
    Bytes greatest[2];
    std::memcpy(least, range.keys, kKeyBytes);
    std::memcpy(greatest, range.keys, kKeyBytes);
    for (std::size_t i = 1; i < range.count; ++i) {
        Bytes key[2];
        std::memcpy(key, range.keys + i, kKeyBytes);
        for (std::size_t half = 0; half < 2; ++half) {
            least[half] = key[half] < least[half] ? key[half] : least[half];
            greatest[half] = key[half] > greatest[half] ? key[half] : greatest[half];
        }
    }
    Survey survey;
    std::memcpy(survey.least.data(), least, kKeyBytes);
    std::memcpy(survey.greatest.data(), greatest, kKeyBytes);
    return survey;
}

ScaledRule::ScaledRule(const Survey& survey, std::size_t mostBuckets) noexcept {
    std::array<std::uint64_t, kDigits> sizes{1, 1, 1};
    std::size_t varying = 0;
    for (std::size_t i = 0; i < kKeyBytes; ++i) {
        if (survey.least[i] == survey.greatest[i]) continue;
        if (varying < kDigits) {
            places_[varying] = i;
            sizes[varying] = std::uint64_t{survey.greatest[i]} - survey.least[i] + 1;
        }
        ++varying;
    }
    if (varying == 0) return;
    const std::uint64_t values = sizes[0] * sizes[1] * sizes[2];
    count_ = static_cast<std::size_t>(std::min<std::uint64_t>(values, mostBuckets));
    isComplete_ = varying <= kDigits && count_ == values;

    // Rounded up: with an even count, or one for each value, the least and the greatest first digit
    // are then in different buckets, even if there are but two.
    std::uint64_t weight = ((std::uint64_t{count_} << kFraction) + values - 1) / values;
    for (std::size_t i = kDigits; i-- > 0; weight *= sizes[i]) {
        if (i >= varying) continue;
        weights_[i] = weight;
        least_ += survey.least[places_[i]] * weight;
    }
}

RankedRule::RankedRule(const KeyRange& range, const Survey& survey, std::size_t mostBuckets,
                       std::size_t step) noexcept {
    std::size_t place = 0;
    for (; place < kKeyBytes && digits_ < kMostDigits && count_ * 2 <= mostBuckets; ++place)
        if (survey.least[place] != survey.greatest[place])
            AddDigit(range, place, mostBuckets / count_, step);
    for (; place < kKeyBytes; ++place)
        if (survey.least[place] != survey.greatest[place]) isComplete_ = false;
    SetWeights();
}

// Ranks the bytes that occur in `place` as the next digit, which takes `most` values at most.
void RankedRule::AddDigit(const KeyRange& range, std::size_t place, std::size_t most,
                          std::size_t step) noexcept {
    auto& part = parts_[digits_];
    for (std::size_t i = 0; i < range.count; i += step)
        part[static_cast<unsigned char>(range.keys[i][place])] = 1;
    std::size_t occurring = 0;
    for (const std::uint16_t isMarked : part) occurring += isMarked;

    const std::size_t values = std::min(occurring, most);
    std::size_t rank = 0;
    for (std::uint16_t& entry : part) {
        const std::size_t isMarked = entry;
        entry = static_cast<std::uint16_t>(isMarked != 0 ? rank * values / occurring : kNoBucket);
        rank += isMarked;
    }
    if (values < occurring) isComplete_ = false;
    places_[digits_] = place;
    values_[digits_] = values;
    ++digits_;
    count_ *= values;
}

// A digit counts as much as all values of those behind it together.
void RankedRule::SetWeights() noexcept {
    std::size_t weight = 1;
    for (std::size_t digit = digits_; digit-- > 0; weight *= values_[digit])
        for (std::uint16_t& entry : parts_[digit])
            if (entry < kNoBucket) entry = static_cast<std::uint16_t>(entry * weight);
}

}  // namespace corvale::internal
