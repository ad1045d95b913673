// Values of the program in JSON.
#pragma once

#include "Texts.hpp"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

namespace corvale::tool {

/// A real that reads back to the same bits; infinities, which JSON does not know, as texts.
[[nodiscard]] inline nlohmann::ordered_json JsonReal(double value) {
    if (std::isfinite(value)) return value;
    return RealText(value);
}

/// A file's name as a JSON text. One that is not UTF-8 has no such text: it is escaped as the program
/// shows it elsewhere.
[[nodiscard]] std::string JsonName(const std::string& name);

}  // namespace corvale::tool
