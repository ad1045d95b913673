// What libFuzzer calls: built once for each target, with its name.
#include "Targets.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    corvale::fuzz::CORVALE_FUZZ_TARGET(corvale::fuzz::Choices(data, size));
    return 0;
}
