// Test help: a buffer whose end is the end of the memory that may be touched.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

namespace corvale::test {

/// `size` characters, filled with `fill`, right before an unmapped page: reading or writing one
/// more ends the test program.
class GuardedBuffer {
  public:
    explicit GuardedBuffer(std::size_t size, char fill = '#')
        : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          length_((size / page_ + 2) * page_),
          size_(size) {
        memory_ =
            mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory_ == MAP_FAILED) std::abort();
        if (mprotect(static_cast<char*>(memory_) + length_ - page_, page_, PROT_NONE) != 0)
            std::abort();
        if (size > 0) std::memset(Data(), fill, size);
    }
    explicit GuardedBuffer(std::string_view text) : GuardedBuffer(text.size()) {
        text.copy(Data(), text.size());
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer() { munmap(memory_, length_); }

    [[nodiscard]] char* Data() const {
        return static_cast<char*>(memory_) + length_ - page_ - size_;
    }
    [[nodiscard]] std::span<char> Span() const { return {Data(), size_}; }
    [[nodiscard]] std::string_view Text() const { return {Data(), size_}; }

  private:
    std::size_t page_, length_, size_;
    void* memory_ = nullptr;
};

}  // namespace corvale::test
