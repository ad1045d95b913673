// Internal to numeric/matrices/: not installed, may change in any commit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace corvale::internal {

/// Up to this order the work of a solver or inversion fits in the frame of the call.
constexpr std::size_t kOrderWithoutHeap = 16;

/// Room for doubles, aligned for every vector, taken from `own` bytes inside the object where that
/// is enough and else from the heap once; released with the object. It starts uninitialised.
template <std::size_t own>
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

    /// Null where there was no memory.
    [[nodiscard]] double* Data() noexcept { return data_; }

  private:
    static constexpr std::align_val_t kAlignment{64};

    static double* Allocate(std::size_t count) noexcept {
        if (count > PTRDIFF_MAX / sizeof(double)) return nullptr;
        return static_cast<double*>(
            ::operator new(count * sizeof(double), kAlignment, std::nothrow));
    }

    double* data_;
    alignas(64) double own_[own];
};

}  // namespace corvale::internal
