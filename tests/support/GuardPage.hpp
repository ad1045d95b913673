// Test help: a buffer beside memory that must not be touched.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <span>
#include <string_view>

namespace corvale::test {

/// Characters between two unmapped pages, right before the second or right after the first:
/// reading or writing one beyond that border ends the test program.
class GuardedBuffer {
  public:
    enum class Side { End, Start };

    explicit GuardedBuffer(std::size_t size, char fill = '#', Side side = Side::End)
        : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          length_((size / page_ + 3) * page_),
          size_(size) {
        void* const memory = mmap(nullptr, length_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) std::abort();
        memory_ = static_cast<char*>(memory);
        const std::size_t usable = length_ - 2 * page_;
        if (mprotect(memory_ + page_, usable, PROT_READ | PROT_WRITE) != 0) std::abort();
        data_ = memory_ + page_ + (side == Side::End ? usable - size : 0);
        std::fill_n(data_, size, fill);
    }
    explicit GuardedBuffer(std::string_view text, Side side = Side::End)
        : GuardedBuffer(text.size(), '#', side) {
        text.copy(data_, text.size());
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer() { munmap(memory_, length_); }

    [[nodiscard]] char* Data() const { return data_; }
    [[nodiscard]] std::span<char> Span() const { return {data_, size_}; }
    [[nodiscard]] std::string_view Text() const { return {data_, size_}; }

  private:
    std::size_t page_, length_, size_;
    char *memory_, *data_;
};

inline constexpr GuardedBuffer::Side kSides[] = {GuardedBuffer::Side::End,
                                                 GuardedBuffer::Side::Start};

}  // namespace corvale::test
