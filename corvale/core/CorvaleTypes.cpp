#include <corvale/core/CorvaleTypes.hpp>

namespace corvale::CorvaleTypes {

// Usable before the first static constructor and after the last exit handler.
constinit std::atomic<std::int32_t> gDupKeyMode{0};
constinit std::atomic<std::int32_t> gAllKeyMode{0};
constinit std::atomic<std::int32_t> gUseAllKeyMode{0};

}  // namespace corvale::CorvaleTypes
