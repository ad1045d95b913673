#include "Document.hpp"

#include "Joined.hpp"
#include "NumberList.hpp"
#include "RealWords.hpp"
#include "Texts.hpp"

#include <algorithm>

namespace corvale::tool {

namespace {

// "value 3 is 0.25", "values 3 to 5 keep what they held"
std::string ItemText(const NumberItem& item, std::string_view word) {
    const bool isOne = item.count == 1;
    const std::string which =
        isOne ? Joined("value ", item.first + 1)
              : Joined("values ", item.first + 1, " to ", item.first + item.count);
    const std::string_view value = word.substr(word.find('*') + 1);
    if (value.empty()) return Joined(which, isOne ? " keeps what it held" : " keep what they held");
    return Joined(which, isOne ? " is " : " are ", RealText(CardReal(value)));
}

}  // namespace

Document::Document(std::string_view text) {
    FileContent content;
    Line line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        line.hasReturn = end < text.size() && end > 0 && text[end - 1] == '\r';
        line.length = end - (line.hasReturn ? 1 : 0);
        line.text = text.substr(0, std::min(line.length, kLineKept));
        ++line.number;
        Explained explained = ExplainLine(line, content);
        lines_.push_back({line, std::move(explained)});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::optional<std::string> Document::Hint(std::size_t line, std::size_t byte) const {
    if (line >= lines_.size() || lines_[line].explained.kind != LineKind::Card) return std::nullopt;
    const auto& [read, explained] = lines_[line];
    std::string hint = EffectText(explained);
    if (explained.card->mode) return hint;
    for (const NumberItem& item : ItemsOf(read.text, read.length)) {
        const std::size_t start = item.column - 1;
        if (byte >= start && byte < start + item.length && item.count > 0)
            hint.append("; ").append(
                ItemText(item, std::string_view(read.text).substr(start, item.length)));
    }
    return hint;
}

}  // namespace corvale::tool
