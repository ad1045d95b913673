// Test help for WebAssembly: what the fuzz targets use of POSIX, as far as they use it. Pages cannot be
// protected there: a module that leaves its memory ends.
#pragma once

#include <stdlib.h>
#include <cstddef>

constexpr int PROT_NONE = 0, PROT_READ = 1, PROT_WRITE = 2;
constexpr int MAP_PRIVATE = 2, MAP_ANONYMOUS = 32;
constexpr void* MAP_FAILED = nullptr;

inline void* mmap(void*, std::size_t size, int, int, int, int) {
    return calloc(1, size);
}

inline int mprotect(void*, std::size_t, int) {
    return 0;
}

inline void munmap(void* memory, std::size_t) {
    free(memory);
}
