#include <corvale/numeric/SoftwareInfo.hpp>

#include "BuildDate.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace corvale::GenFunctions {

// Three facts of this build: cmake/CorvaleBuildDate.cmake writes the first, CorvaleBuildInfo.cmake
// finds the others.
constexpr std::string_view kBuildDate = CORVALE_BUILD_DATE;
constexpr std::string_view kPlatform = CORVALE_PLATFORM;
constexpr std::string_view kCompiler = CORVALE_COMPILER;
static_assert(kBuildDate.size() == 11 && kPlatform.size() == 16);

void GetSoftwareInfo(std::string_view libName, std::span<char, 128> info,
                     std::optional<std::string_view> version) noexcept {
    const std::array<std::string_view, 10> pieces = {
        "Arvenit ", libName,         " - Version: ", version.value_or("v9.4"), " - Build: ",
        kBuildDate, " - Platform: ", kPlatform,      " - Compiler: ",          kCompiler};

    // Cut where the line is full, so that a long name loses what follows it.
    std::size_t end = 0;
    for (const std::string_view piece : pieces) {
        const std::size_t count = std::min(piece.size(), info.size() - end);
        std::copy_n(piece.begin(), count, info.begin() + static_cast<std::ptrdiff_t>(end));
        end += count;
    }
    std::fill(info.begin() + static_cast<std::ptrdiff_t>(end), info.end(), ' ');
}

}  // namespace corvale::GenFunctions
