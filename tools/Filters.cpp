#include "Filters.hpp"

#include "AngleTexts.hpp"
#include "Commands.hpp"
#include "Escapes.hpp"
#include "Input.hpp"
#include "LineFilter.hpp"
#include "NumberFields.hpp"
#include "Texts.hpp"

#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <iostream>
#include <limits>
#include <optional>
#include <vector>

namespace corvale::tool {

namespace {

constexpr std::size_t kCodeWidth = 5;
constexpr std::int32_t kLargestNumber = 339999;

template <std::size_t N>
std::string Text(const std::array<char, N>& characters) {
    return {characters.data(), characters.size()};
}

Converted EncodeNumber(std::string_view line) {
    const IntegerField field = ReadInteger(line);
    if (!field.value) return Unusable{field.column, field.why};
    if (*field.value < 0 || *field.value > kLargestNumber)
        return Unusable{field.column, Quoted(Trim(line).text) + " is no number from 0 to 339999"};
    return Text(GenFunctions::NumToAlpha5(*field.value));
}

// The library reads what is no code as 0. A code that is 0 holds no other digit.
bool IsZeroCode(std::string_view code) {
    const std::size_t first = code.find_first_not_of(' ');
    const bool hasSign = code[first] == '+' || code[first] == '-';
    const std::string_view digits = code.substr(first + (hasSign ? 1 : 0));
    return digits.find('0') != std::string_view::npos &&
           digits.find_first_not_of("0 ") == std::string_view::npos;
}

Converted DecodeCode(std::string_view line) {
    const auto [code, column] = Trim(line);
    if (code.empty()) return Unusable{1, "the line is blank"};
    if (code.size() > kCodeWidth)
        return Unusable{column + kCodeWidth, Quoted(code) + " is longer than 5 characters"};
    const std::int32_t number = GenFunctions::Alpha5ToNum(code);
    if (number == 0 && !IsZeroCode(code))
        return Unusable{column, Quoted(code) + " is no code of a satellite number"};
    return std::to_string(number);
}

// An exponent after a fraction is rewritten character by character, and must have its layout.
std::optional<Unusable> BadExponent(std::string_view line) {
    bool inFraction = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '.') inFraction = true;
        if (line[i] == ',' || line[i] == ':') inFraction = false;
        if (line[i] != 'E' || !inFraction) continue;
        inFraction = false;
        const std::string_view rest = line.substr(i + 1);
        const std::size_t digits = std::min(rest.find_first_not_of("0123456789", 1), rest.size());
        if (rest.empty() || (rest[0] != '+' && rest[0] != '-') || digits != 4)
            return Unusable{i + 1, "the exponent after this E is not a sign and three digits"};
    }
    return std::nullopt;
}

Converted CompressRow(std::string_view line) {
    constexpr std::size_t most = 512;
    if (auto bad = BadExponent(line)) return *bad;
    std::string row(line);
    StrFunctions::CompressCsvLine(row);
    row.erase(row.find_last_not_of(' ') + 1);
    if (row.size() < most || line.size() <= most) return row;
    std::string shorter(line.substr(0, line.find_last_not_of(' ')));
    StrFunctions::CompressCsvLine(shorter);
    if (shorter.size() < most || shorter[most - 1] == ' ') return row;
    return Unusable{most + 1, "the compressed row is longer than 512 characters"};
}

// A key and its companion, as a line holds them.
struct KeyLine {
    Sorting::Key key;
    std::int64_t companion = 0;
};

std::variant<KeyLine, Unusable> ReadKeyLine(std::string_view line, bool addsNumbers,
                                            std::int64_t number) {
    KeyLine read;
    constexpr std::size_t width = std::tuple_size_v<Sorting::Key>;
    read.key.fill(' ');
    line.copy(read.key.data(), width);
    read.companion = number;
    const auto [text, column] = Trim(line.substr(std::min(line.size(), width)));
    if (addsNumbers && text.empty()) return read;
    if (addsNumbers) return Unusable{width + column, "the key is longer than 32 characters"};
    if (text.empty()) return Unusable{width + 1, "no integer follows the key of 32 characters"};
    const char* const end = text.data() + text.size();
    const bool hasPlus = text.front() == '+' && !text.starts_with("+-");
    const auto result = std::from_chars(text.data() + (hasPlus ? 1 : 0), end, read.companion);
    if (result.ec != std::errc() || result.ptr != end)
        return Unusable{width + column, Quoted(text) + " is no integer of 64 bits"};
    return read;
}

// Of the column after the key: any 64-bit integer, right-aligned.
constexpr std::size_t kCompanionWidth = 21;

void PrintKeys(const std::vector<Sorting::Key>& keys, const std::vector<std::int64_t>& companions) {
    for (std::size_t i = 0; i < keys.size() && std::cout; ++i) {
        const std::string number = std::to_string(companions[i]);
        std::cout << Text(keys[i]) << std::string(kCompanionWidth - number.size(), ' ') << number
                  << '\n';
    }
}

}  // namespace

int EncodeAlpha5(const FilterOptions& options) {
    return RunFilter("alpha5", options, EncodeNumber);
}

int DecodeAlpha5(const FilterOptions& options) {
    return RunFilter("alpha5", options, DecodeCode);
}

int ConvertAngles(const AngleOptions& angle, const FilterOptions& options) {
    return RunFilter("angle", options, [&](std::string_view line) -> Converted {
        if (angle.decodes) return DecodeAngle(line, angle.inHours);
        return EncodeAngle(line, angle.inHours);
    });
}

int CompressRows(const FilterOptions& options) {
    return RunFilter("compress", options, CompressRow);
}

int ReadNumberFields(const NumberOptions& number, const FilterOptions& options) {
    return RunFilter("number", options, [&](std::string_view line) -> Converted {
        const std::size_t equals = number.afterEquals ? line.find('=') : 0;
        if (equals == std::string_view::npos) return Unusable{1, "the line has no \"=\""};
        const std::size_t skipped = number.afterEquals ? equals + 1 : 0;
        return NumberText(line, skipped, number.isInteger);
    });
}

int SortKeys(bool addsNumbers, const FilterOptions& options) {
    InputLines input(options);
    std::vector<Sorting::Key> keys;
    std::vector<std::int64_t> companions;
    int status = kExitOk;
    Line line;
    for (std::int64_t number = 1; input.Next(line); ++number) {
        const auto read = ReadKeyLine(line.text, addsNumbers, number);
        if (const auto* unusable = std::get_if<Unusable>(&read)) {
            SayUnusable("sort", input.Place(line), *unusable);
            status = kExitFindings;
            if (!options.goesOn) return status;
            continue;
        }
        keys.push_back(std::get<KeyLine>(read).key);
        companions.push_back(std::get<KeyLine>(read).companion);
    }
    if (input.Failure()) return SayUnreadable("sort", *input.Failure());
    if (keys.size() > std::numeric_limits<std::int32_t>::max()) {
        std::cerr << "corvale sort: more than 2147483647 lines\n";
        return kExitFailed;
    }
    Sorting::QuickSortIterative(static_cast<std::int32_t>(keys.size()), keys.data(),
                                companions.data());
    PrintKeys(keys, companions);
    return status;
}

int UpperCaseLines(const FilterOptions& options) {
    return RunFilter("upper", options, [](std::string_view line) -> Converted {
        std::string result(line);
        StrFunctions::ToUpperCase(line, result);
        return result;
    });
}

int LowerCaseLines(const FilterOptions& options) {
    return RunFilter("lower", options, [](std::string_view line) -> Converted {
        std::string result(line);
        StrFunctions::ToLowerCase(line, result);
        return result;
    });
}

// The library's result is as wide as its text, so the text is first widened until the result fits.
// What is added are NULs: no argument of a command line holds one, so the pattern is not found there.
int ReplaceInLines(const std::string& pattern, const std::string& replacement,
                   const FilterOptions& options) {
    return RunFilter("replace", options, [&](std::string_view line) -> Converted {
        std::size_t width = line.size();
        for (std::size_t at = line.find(pattern); at < line.size();
             at = line.find(pattern, at + pattern.size()))
            width = width + replacement.size() - pattern.size();
        std::string text(line);
        text.resize(std::max(width, line.size()), '\0');
        std::string result(text.size(), ' ');
        StrFunctions::ReplaceString(text, pattern, replacement, result);
        result.resize(width);
        return result;
    });
}

}  // namespace corvale::tool
