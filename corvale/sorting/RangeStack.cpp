#include <corvale/sorting/RangeStack.hpp>

#include <cstdio>

namespace corvale::internal {

void StopForMemory(std::size_t bytes) noexcept {
    (void)std::fprintf(stderr, "Error allocating %lu bytes\n", static_cast<unsigned long>(bytes));
    std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe): other threads end with the process
}

}  // namespace corvale::internal
