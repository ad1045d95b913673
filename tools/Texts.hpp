// Texts across the C API: out of its fixed-width buffers, and names that it would not take whole.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

/// What a function of the C API writes to a buffer of 128 characters, without trailing blanks.
std::string MessageFrom(void (*write)(char*) noexcept);

/// Why the C API would cut `name` and open another file, if it would.
std::optional<std::string> WhyNameIsRefused(std::string_view name);

/// The shortest text that reads back to the same bits; "Infinity" and "-Infinity".
std::string RealText(double value);

}  // namespace corvale::tool
