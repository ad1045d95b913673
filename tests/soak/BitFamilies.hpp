// Every public procedure whose result is promised, fed with fixed random input: what came out, bit
// by bit, as one number for each family. All builds on all machines have to agree.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::soak {

enum class Promise : std::uint8_t {
    Everywhere,  // the same bits with every compiler, flag and processor; no state is touched
    OneProcess,  // so too, but the process's modes, units and messages are used
    OneLibrary,  // the last bit is the C library's, on the processor it runs on
};

struct Family {
    std::string_view name;
    std::uint64_t (*digest)();  // about 50 ms
    Promise promise;
};

std::span<const Family> Families();

}  // namespace corvale::soak
