// Internal to sorting/: not installed, may change in any commit.
//
// The pending ranges of one sort: pairs of positions (low, high), counted from 1, in one block of
// 4 x n bytes. Pending ranges do not overlap and hold two keys at least, or there is one alone, of
// the only stray among many: n entries suffice.
#pragma once

#include <corvale/sorting/KeyRange.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace corvale::internal {

/// Stops the process: there are no `bytes` bytes.
[[noreturn]] inline void StopForMemory(std::size_t bytes) noexcept {
    (void)std::fprintf(stderr, "Error allocating %lu bytes\n", static_cast<unsigned long>(bytes));
    std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe): other threads end with the process
}

class RangeStack {
  public:
    /// Takes the block for `n` keys, not zero-filled: each entry is written before it is read.
    /// Stops the process where it is not available.
    explicit RangeStack(std::size_t n) noexcept
        : entries_(static_cast<std::int32_t*>(std::malloc(n * sizeof(std::int32_t)))), size_(n) {
        if (entries_ == nullptr) StopForMemory(n * sizeof(std::int32_t));
    }
    ~RangeStack() { std::free(entries_); }
    RangeStack(const RangeStack&) = delete;
    RangeStack& operator=(const RangeStack&) = delete;

    [[nodiscard]] bool IsEmpty() const noexcept { return top_ == 0; }

    /// Puts the part `begin` to `end` (places from 0, `end` excluded) of all keys on top.
    void Push(std::size_t begin, std::size_t end) noexcept {
        entries_[top_] = static_cast<std::int32_t>(begin) + 1;
        entries_[top_ + 1] = static_cast<std::int32_t>(end);
        top_ += 2;
    }

    /// Takes the part on top of `all` away. `begin` is where it begins.
    [[nodiscard]] KeyRange Pop(const KeyRange& all, std::size_t& begin) noexcept {
        top_ -= 2;
        begin = static_cast<std::size_t>(entries_[top_]) - 1;
        return all.Part(begin, static_cast<std::size_t>(entries_[top_ + 1]));
    }

    /// The whole block, for other use while no range is pending.
    [[nodiscard]] std::span<std::int32_t> Block() noexcept { return {entries_, size_}; }

  private:
    std::int32_t* entries_;
    std::size_t size_;
    std::size_t top_ = 0;
};

}  // namespace corvale::internal
