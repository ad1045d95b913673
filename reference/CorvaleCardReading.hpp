// The simplest reader of the cards of an input file: every line in order, every item of a card. For
// the "C" locale and round-to-nearest.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace corvale::reference {

struct CardModes {
    std::int32_t elset, all, useAll;
    bool operator==(const CardModes&) const = default;
};

struct CardOutcome {
    CardModes modes = {0, 0, 0};
    std::array<double, 128> moic;
};

inline double CardValue(const std::string& number) {
    const std::size_t exponent = std::min(number.find_first_of("EeDdQq+-", 1), number.size());
    const bool hasLetter = exponent < number.size() && number[exponent] > '9';
    const std::string rest = number.substr(exponent + (hasLetter ? 1 : 0));
    // strtod stops before an exponent without digits
    return std::strtod((number.substr(0, exponent) + "e" + rest).c_str(), nullptr);
}

inline bool IsReal(std::string_view item) {
    const auto take = [&](std::string_view any) {
        const bool isThere = !item.empty() && any.find(item.front()) != std::string_view::npos;
        item.remove_prefix(isThere ? 1 : 0);
        return isThere;
    };
    const auto takeDigits = [&] {
        int count = 0;
        while (take("0123456789")) ++count;
        return count;
    };
    take("+-");
    int digits = takeDigits();
    if (take(".")) digits += takeDigits();
    const bool hasLetter = take("EeDdQq");
    if (take("+-") || hasLetter) takeDigits();
    return digits > 0 && item.empty();
}

inline void ReadNumbers(const std::string& record, std::array<double, 128>& moic) {
    std::size_t element = 0;
    const auto skip = [&](std::size_t at) {
        return std::min(record.find_first_not_of(" \t", at), record.size());
    };
    for (std::size_t at = skip(0); at < record.size() && record[at] != '/';) {
        const std::size_t end = std::min(record.find_first_of(" \t,/", at), record.size());
        std::string item = record.substr(at, end - at);
        double count = 1;
        if (const std::size_t star = item.find('*'); star != std::string::npos) {
            if (item.find_first_not_of("0123456789") != star) return;
            count = std::strtod(item.c_str(), nullptr);
            item.erase(0, star + 1);
        }
        if (count < 1 || (!item.empty() && !IsReal(item))) return;
        for (; count > 0 && element < 128; --count, ++element)
            if (!item.empty()) moic[element] = CardValue(item);
        at = skip(end);
        if (at < record.size() && record[at] == ',') at = skip(at + 1);
    }
}

inline void ReadCards(std::string_view content, CardOutcome& outcome) {
    while (!content.empty()) {
        const std::size_t end = content.find('\n');
        std::string line(content.substr(0, end));
        content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
        if (end != std::string_view::npos && line.ends_with('\r')) line.pop_back();
        line.resize(512, ' ');
        if (line[0] == '*') continue;
        std::string capitals = line;
        for (char& c : capitals)
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (capitals.starts_with("QZ_MOIC "))
            ReadNumbers(line.substr(8), outcome.moic);
        else if (capitals.starts_with("QZ_DMA_ON"))
            outcome.modes.elset = 1;
        else if (capitals.starts_with("QZ_DMA_ALL_ON"))
            outcome.modes.all = outcome.modes.useAll = 1;
    }
}

}  // namespace corvale::reference
