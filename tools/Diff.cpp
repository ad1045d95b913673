// `corvale diff`: which modes and elements two files set to different values, and where.
#include "Commands.hpp"
#include "Settings.hpp"
#include "Texts.hpp"

#include <bit>
#include <cstdint>
#include <iostream>
#include <utility>

namespace corvale::tool {

namespace {

using nlohmann::ordered_json;

struct Difference {
    NamedSetting left, right;
};

// The values are compared to the bit: -0 is not 0.
std::vector<Difference> DifferencesOf(const Settings& left, const Settings& right) {
    const auto bits = [](const NamedSetting& named) {
        return std::bit_cast<std::uint64_t>(named.setting->value);
    };
    const std::vector<NamedSetting> lefts = AllSettings(left), rights = AllSettings(right);
    std::vector<Difference> differences;
    for (std::size_t i = 0; i < lefts.size(); ++i)
        if (bits(lefts[i]) != bits(rights[i])) differences.push_back({lefts[i], rights[i]});
    return differences;
}

void PrintSide(char mark, const Setting& setting, const Settings& all) {
    std::cout << mark << ' ';
    if (setting.cards == 0)
        std::cout << ShownName(all.files.front()) << ": 0, no card sets it\n";
    else
        std::cout << PlaceText(setting, all) << ": " << RealText(setting.value) << '\n';
}

void PrintText(const std::vector<Difference>& differences, const Settings& left,
               const Settings& right) {
    for (const Difference& each : differences) {
        std::cout << each.left.name << '\n';
        PrintSide('<', *each.left.setting, left);
        PrintSide('>', *each.right.setting, right);
    }
}

void PrintJson(const std::vector<Difference>& differences, const Settings& left,
               const Settings& right) {
    ordered_json all = {{"same", differences.empty()}, {"differences", ordered_json::array()}};
    for (const Difference& each : differences) {
        ordered_json json = each.left.id;
        json["left"] = JsonSetting(*each.left.setting, left);
        json["right"] = JsonSetting(*each.right.setting, right);
        all["differences"].push_back(std::move(json));
    }
    std::cout << all.dump(2) << '\n';
}

int Fail(const std::string& why) {
    std::cerr << "corvale: " << why << '\n';
    return kExitFailed;
}

}  // namespace

int Diff(const DiffOptions& options) {
    if (options.left == "-" && options.right == "-")
        return Fail("standard input can be one of the two files, not both");
    Settings left, right;
    const ProgressBar::Show show = ShowProgress(options.isQuiet, false);
    if (const auto failure = AddFile(options.left, show, left)) return Fail(*failure);
    if (const auto failure = AddFile(options.right, show, right)) return Fail(*failure);

    const std::vector<Difference> differences = DifferencesOf(left, right);
    if (!options.isQuiet) (options.asJson ? PrintJson : PrintText)(differences, left, right);
    return differences.empty() ? kExitOk : kExitFindings;
}

}  // namespace corvale::tool
