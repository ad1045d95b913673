#include <corvale/sorting/KeyBuckets.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace corvale::internal {

namespace {

constexpr std::size_t kMostBuckets = 512;
constexpr std::size_t kFewestBuckets = 16;
constexpr std::size_t kKeysPerBucket = 16;

// The least and the greatest value of each byte of the keys.
struct Survey {
    std::array<std::uint8_t, kKeyBytes> least;
    std::array<std::uint8_t, kKeyBytes> greatest;
};

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

// Turns a key into a bucket number: its first three bytes that vary, as digits of a number with as
// many values a digit as the byte takes, scaled to the count of buckets. Never descends where keys
// ascend.
class BucketRule {
  public:
    BucketRule(const Survey& survey, std::size_t mostBuckets) noexcept {
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
        const std::uint64_t values = sizes[0] * sizes[1] * sizes[2];
        count_ = static_cast<std::size_t>(std::min<std::uint64_t>(values, mostBuckets));
        isComplete_ = varying <= kDigits && count_ == values;
        if (varying == 0) count_ = 0;

        // Rounded up: with an even count, or one for each value, the least and the greatest first
        // digit never share a bucket, so that every rule splits its range.
        std::uint64_t weight = ((std::uint64_t{count_} << kFraction) + values - 1) / values;
        for (std::size_t i = kDigits; i-- > 0; weight *= sizes[i]) {
            if (i >= varying) continue;
            weights_[i] = weight;
            least_ += survey.least[places_[i]] * weight;
        }
    }

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

struct Bucket {
    std::uint32_t next;  // the first place not yet filled
    std::uint32_t end;
};
using Buckets = std::array<Bucket, kMostBuckets>;

// Takes a key that is not where it belongs, puts it there, goes on with the one it drives out.
void FillBuckets(const KeyRange& range, const BucketRule& rule, Buckets& buckets) noexcept {
    for (std::size_t b = 0; b < rule.Count(); ++b) {
        for (; buckets[b].next < buckets[b].end; ++buckets[b].next) {
            const std::size_t hole = buckets[b].next;
            std::size_t target = rule(range.keys[hole]);
            if (target == b) continue;

            Key key = range.keys[hole];
            std::int64_t companion = range.companion[hole];
            while (target != b) {
                const std::size_t place = buckets[target].next++;
                __builtin_prefetch(range.keys + place + 4, 1);
                __builtin_prefetch(range.companion + place + 8, 1);
                target = rule(range.keys[place]);
                std::swap(key, range.keys[place]);
                std::swap(companion, range.companion[place]);
            }
            range.keys[hole] = key;
            range.companion[hole] = companion;
        }
    }
}

}  // namespace

void DealIntoBuckets(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept {
    const std::size_t most =
        std::clamp(range.count / (2 * kKeysPerBucket) * 2, kFewestBuckets, kMostBuckets);
    const BucketRule rule(SurveyBytes(range), most);
    if (rule.Count() == 0) return;

    Buckets buckets{};
    for (std::size_t i = 0; i < range.count; ++i) ++buckets[rule(range.keys[i])].end;
    std::uint32_t place = 0;
    for (std::size_t b = 0; b < rule.Count(); ++b) {
        buckets[b].next = place;
        place += buckets[b].end;
        buckets[b].end = place;
    }
    FillBuckets(range, rule, buckets);
    if (rule.IsComplete()) return;

    for (std::size_t b = rule.Count(); b-- > 0;) {
        const std::size_t first = b == 0 ? 0 : buckets[b - 1].end;
        if (buckets[b].end - first > 1) pending.Push(begin + first, begin + buckets[b].end);
    }
}

}  // namespace corvale::internal
