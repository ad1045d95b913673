// Test help for Windows: what the tests of text and numbers use of POSIX, as far as they use it.
// Included before everything else.
#pragma once

#include <stdlib.h>
#include <cstddef>

constexpr int PROT_NONE = 1, PROT_READ = 0, PROT_WRITE = 4;  // no access; read and write
constexpr int MAP_PRIVATE = 0x1000, MAP_ANONYMOUS = 0x2000;  // with memory, and addresses for it
constexpr int _SC_PAGESIZE = 0;
constexpr void* MAP_FAILED = nullptr;

extern "C" {
__declspec(dllimport) void* VirtualAlloc(void*, std::size_t, unsigned long, unsigned long);
__declspec(dllimport) int VirtualProtect(void*, std::size_t, unsigned long, unsigned long*);
__declspec(dllimport) int VirtualFree(void*, std::size_t, unsigned long);
}

inline long sysconf(int) {
    return 4096;
}

inline void* mmap(void*, std::size_t size, int access, int kind, int, int) {
    return VirtualAlloc(nullptr, size, static_cast<unsigned long>(kind),
                        static_cast<unsigned long>(access));
}

inline int mprotect(void* memory, std::size_t size, int access) {
    unsigned long before = 0;
    return VirtualProtect(memory, size, static_cast<unsigned long>(access), &before) != 0 ? 0 : -1;
}

inline void munmap(void* memory, std::size_t) {
    constexpr unsigned long release = 0x8000;
    VirtualFree(memory, 0, release);
}

inline char* mkdtemp(char* pattern) {
    return pattern;
}

inline int setenv(const char* name, const char* value, int) {
    return _putenv_s(name, value);
}

inline int unsetenv(const char* name) {
    return _putenv_s(name, "");
}
