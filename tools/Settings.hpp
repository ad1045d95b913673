// What files set when they are loaded one after the other into a fresh library, and the card that
// decided each mode and element: the first one that raised a mode, the last one that set an element.
#pragma once

#include "CardLines.hpp"
#include "JsonTexts.hpp"
#include "Terminal.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvale::tool {

/// A mode or an element. Where no card set it, only `value` says anything.
struct Setting {
    double value = 0.0;
    std::uint64_t cards = 0;  ///< that set it
    std::size_t file = 0;     ///< of the card that decided, counted from 0
    std::uint64_t line = 0;
    std::size_t column = 0;    ///< of the keyword, or of the number with its repeat count
    std::string written = {};  ///< what stands there
};

struct Settings {
    std::array<Setting, internal::kKeyModes.size()> modes = {};
    std::array<Setting, kElements> elements = {};
    std::vector<std::string> files = {};  ///< as the command line names them
};

/// Adds what a file sets. Returns why it cannot be read: "\"orbit.inp\" cannot be read: ...".
[[nodiscard]] std::optional<std::string> AddFile(const std::string& file, ProgressBar::Show show,
                                                 Settings& settings);

/// A mode or an element with its names: "value 7" for people, "7" on the command line.
struct NamedSetting {
    std::string name, word;
    nlohmann::ordered_json id;  ///< {"element": 7} or {"mode": "elsetKeyMode"}
    const Setting* setting;
};

/// All modes and elements, always in the same order.
[[nodiscard]] std::vector<NamedSetting> AllSettings(const Settings& settings);

/// The name of a file as messages show it.
[[nodiscard]] std::string ShownName(const std::string& file);

/// "orbit.inp:27:13", of a setting that has a card.
[[nodiscard]] std::string PlaceText(const Setting& setting, const Settings& all);

/// The value, the number of cards that set it, and the place of the one that decided, if any.
[[nodiscard]] nlohmann::ordered_json JsonSetting(const Setting& setting, const Settings& all);

}  // namespace corvale::tool
