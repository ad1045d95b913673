#include <corvale/sorting/RangeStack.hpp>

#include <cstdio>
#include <cstdlib>

namespace corvale::internal {

// Not zero-filled: each entry is written before it is read.
RangeStack::RangeStack(std::int32_t n) noexcept : size_(static_cast<std::size_t>(n)) {
    const std::size_t bytes = size_ * sizeof(std::int32_t);
    entries_ = static_cast<std::int32_t*>(std::malloc(bytes));
    if (entries_ != nullptr) return;
    (void)std::fprintf(stderr, "Error allocating %lu bytes\n", static_cast<unsigned long>(bytes));
    std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe): other threads end with the process
}

RangeStack::~RangeStack() {
    std::free(entries_);
}

}  // namespace corvale::internal
