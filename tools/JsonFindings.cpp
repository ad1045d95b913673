#include "JsonFindings.hpp"

namespace corvale::tool {

using nlohmann::ordered_json;

namespace {

ordered_json JsonKeyword(const internal::Card* card) {
    return card == nullptr ? ordered_json(nullptr) : ordered_json(NameOf(*card));
}

}  // namespace

ordered_json JsonElements(const Elements& set) {
    ordered_json numbers = ordered_json::array();
    for (std::size_t i = 0; i < set.size(); ++i)
        if (set[i]) numbers.push_back(i + 1);
    return numbers;
}

ordered_json JsonFinding(std::uint64_t line, const Explained& explained, const Finding& finding) {
    const FindingRow& row = RowOf(finding.kind);
    return {{"line", line},
            {"column", finding.column},
            {"length", finding.length},
            {"code", row.code},
            {"severity", SeverityName(row.severity)},
            {"card", JsonKeyword(CardOfFinding(explained, finding))},
            {"elements", JsonElements(finding.elements)},
            {"message", finding.message},
            {"help", finding.help}};
}

ordered_json JsonCard(const Explained& explained) {
    ordered_json card = {{"card", JsonKeyword(explained.card)}};
    if (explained.card->mode) {
        card["mode"] = internal::kKeyModes[*explained.card->mode].id;
    } else {
        card["elements"] = JsonElements(explained.sets);
        card["setBefore"] = JsonElements(explained.setBefore);
    }
    card["effect"] = EffectText(explained);
    return card;
}

}  // namespace corvale::tool
