// The fuzz targets in WebAssembly:
//
//     digests --digests FILE     or --random COUNT [TARGET...], as fuzz_replay
#include "fuzz/Digests.hpp"

// Objects of the one thread live as long as the program. The C++ library lacks what would end them.
extern "C" int __cxa_thread_atexit(void (*)(void*), void*, void*) {
    return 0;
}

int main(int argc, char** argv) {
    return corvale::fuzz::RunDigests({argv + 1, argv + argc});
}
