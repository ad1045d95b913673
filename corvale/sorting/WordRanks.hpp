// Internal to sorting/: not installed, may change in any commit.
//
// A few distinct words sorted without a branch that depends on them: the place of each is the count
// of the smaller ones.
#pragma once

#include <corvale/base/CodePath.hpp>

#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// The most words that are ranked at once; more are faster merged.
constexpr std::size_t kRanked = 16;

/// A word holds seven bytes of a key and, below them, the key's place.
constexpr std::size_t kWindow = 7;
constexpr std::uint64_t kPlace = 0xFF;

/// Lets the compiler take `words` for written, with whatever they hold: those that stay unwritten
/// are read and ignored, and need some value for that. Costs no instruction.
template <class Words>
CORVALE_INLINE void TakeForWritten(Words& words) noexcept {
    asm("" : "=m"(words));
}

/// The words of each vector against one word at once. `in` and `places` have space for kRanked words:
/// what follows `count` is read and ignored.
template <class Path>
struct Rank {
    /// The places of `count` words of `in` among them, counted from 0.
    CORVALE_INLINE void operator()(const std::uint64_t* in, std::size_t count,
                                   std::int64_t* places) const noexcept {
        constexpr std::size_t kLanes = Path::kVectorBytes / 8;
        constexpr std::size_t kVectors = kRanked / kLanes;
        using Lanes [[gnu::vector_size(8 * kLanes), gnu::aligned(8), gnu::may_alias]] =
            std::int64_t;
        Lanes words[kVectors], ranks[kVectors];
#pragma GCC unroll 8
        for (std::size_t v = 0; v < kVectors; ++v) {
            words[v] = reinterpret_cast<const Lanes*>(in)[v] ^ INT64_MIN;  // lanes have signs
            ranks[v] = Lanes{};
        }
        for (std::size_t j = 0; j < count; ++j) {
            const Lanes word = (Lanes{} + static_cast<std::int64_t>(in[j])) ^ INT64_MIN;
#pragma GCC unroll 8
            for (std::size_t v = 0; v < kVectors; ++v) ranks[v] -= words[v] > word;
        }
#pragma GCC unroll 8
        for (std::size_t v = 0; v < kVectors; ++v) reinterpret_cast<Lanes*>(places)[v] = ranks[v];
    }
};

}  // namespace corvale::internal
