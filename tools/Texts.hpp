// Texts across the C API: out of its fixed-width buffers, and names that it would not take whole.
#pragma once

#include <corvale/core/KeyModes.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

/// What a function of the C API writes to a buffer of 128 characters, without trailing blanks.
std::string MessageFrom(void (*write)(char*) noexcept);

/// Why the C API would cut `name` and open another file, if it would.
std::optional<std::string> WhyNameIsRefused(std::string_view name);

/// The name of a mode with blanks up to the column of its value in a list of all modes.
std::string PaddedName(const internal::KeyMode& mode);

/// The shortest text that reads back to the same bits; "Infinity" and "-Infinity".
std::string RealText(double value);

}  // namespace corvale::tool
