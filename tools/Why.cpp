// `corvale load --why`: which cards decided modes and elements.
#include "Why.hpp"

#include "Joined.hpp"
#include "Settings.hpp"
#include "Texts.hpp"

#include <algorithm>
#include <iostream>
#include <utility>

namespace corvale::tool {

namespace {

using nlohmann::ordered_json;

std::string FileNames(const Settings& all) {
    std::string names;
    for (const std::string& file : all.files)
        names += Joined(names.empty() ? "" : ", ", ShownName(file));
    return names;
}

// Modes keep what the first card sets, elements what the last one sets.
std::string AmongOthers(const NamedSetting& named) {
    const std::uint64_t cards = named.setting->cards;
    if (cards == 1) return "";
    return Joined("; ", named.id.contains("mode") ? "the first" : "the last", " of ", cards,
                  " cards that set it");
}

std::string Explanation(const NamedSetting& named, const Settings& all) {
    const Setting& setting = *named.setting;
    if (setting.cards == 0)
        return Joined(FileNames(all), ": ", named.name, " is 0: no card sets it");
    return Joined(PlaceText(setting, all), ": ", named.name, " is ", RealText(setting.value),
                  ", written ", setting.written, AmongOthers(named));
}

}  // namespace

std::string WhyNoSetting(const std::string& word) {
    const Settings none;
    const std::vector<NamedSetting> all = AllSettings(none);
    if (std::ranges::find(all, word, &NamedSetting::word) != all.end()) return "";
    return Joined("\"", word, "\" is neither an element from 1 to ", kElements,
                  " nor the name of a mode in --json");
}

int ExplainSettings(const LoadOptions& options) {
    Settings settings;
    const ProgressBar::Show show = ShowProgress(options.isQuiet, options.showsProgress);
    for (const std::string& file : options.files)
        if (const auto failure = AddFile(file, show, settings)) {
            std::cerr << "corvale: " << *failure << '\n';
            return kExitFailed;
        }
    const std::vector<NamedSetting> all = AllSettings(settings);
    ordered_json list = ordered_json::array();
    for (const std::string& word : options.why) {
        const NamedSetting& named = *std::ranges::find(all, word, &NamedSetting::word);
        if (options.asJson) {
            list.push_back(named.id);
            list.back().update(JsonSetting(*named.setting, settings));
        } else {
            std::cout << Explanation(named, settings) << '\n';
        }
    }
    if (options.asJson) std::cout << ordered_json{{"why", std::move(list)}}.dump(2) << '\n';
    return kExitOk;
}

}  // namespace corvale::tool
