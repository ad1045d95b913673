// Internal to numeric/: not installed, may change in any commit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace corvale::internal {

/// Up to this order the work of a solver or inversion fits in the frame of the call.
constexpr std::size_t kOrderWithoutHeap = 16;

/// Uninitialised memory for `count` elements, aligned for every vector and released with the object:
/// `own` elements inside the object if they are enough, else one allocation.
template <class T, std::size_t own>
class Scratch {
  public:
    explicit Scratch(std::size_t count) noexcept : data_(own_) {
        if (count > own) data_ = Allocate(count);
    }
    ~Scratch() {
        if (data_ != own_) ::operator delete(data_, kAlignment, std::nothrow);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// Null if the allocation failed.
    [[nodiscard]] T* Data() noexcept { return data_; }

  private:
    static constexpr std::align_val_t kAlignment{64};

    static T* Allocate(std::size_t count) noexcept {
        if (count > PTRDIFF_MAX / sizeof(T)) return nullptr;
        return static_cast<T*>(::operator new(count * sizeof(T), kAlignment, std::nothrow));
    }

    alignas(64) T own_[own];
    T* data_;
};

}  // namespace corvale::internal
