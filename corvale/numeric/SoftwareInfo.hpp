// The information line: which library this is, its version, and what built it.
#pragma once

#include <corvale/base/Module.hpp>

#include <optional>
#include <span>
#include <string_view>

namespace corvale::GenFunctions {

/// Writes the information line of the library `libName`: "Arvenit " + `libName` + " - Version: " +
/// `version` + " - Build: ", the build date as "May  3 2024", " - Platform: ", 16 characters,
/// " - Compiler: " and the compiler's name. Where no version is given it is "v9.4": applications know
/// this text, so it stays when CORVALE_VERSION rises.
///
/// Width      exactly 128 characters, blank-filled, without a terminator; trailing blanks of
///            `libName` and `version` are kept
/// Bad input  a line longer than 128 characters is cut there: `libName`, `version` and the name of
///            the compiler have at least 44 characters together
/// Aliasing   `info` must not overlap `libName` or `version`
/// Threads    no state: any number of threads at once
CORVALE_API void GetSoftwareInfo(std::string_view libName, std::span<char, 128> info,
                                 std::optional<std::string_view> version = std::nullopt) noexcept;

}  // namespace corvale::GenFunctions
