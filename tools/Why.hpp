// Where modes and elements come from.
#pragma once

#include "Commands.hpp"

#include <string>

namespace corvale::tool {

/// What is wrong with `word` as the name of a mode or element; empty if nothing is.
[[nodiscard]] std::string WhyNoSetting(const std::string& word);

/// Prints the card that decided each of `options.why`. Returns the exit status.
int ExplainSettings(const LoadOptions& options);

}  // namespace corvale::tool
