// Random files of cards and near-cards: what `corvale check` says that loading sets, and what loading
// sets, bit for bit.
//
//     check_soak [COUNT [SEED]]    COUNT files. Prints the differences, and exits with 1 if there
//                                  are any
#include "CardLines.hpp"
#include "Input.hpp"
#include "Joined.hpp"

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>

#include <unistd.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

namespace {

namespace cards = corvale::CorvaleCardReading;
using namespace corvale::tool;

constexpr double kOld = -77.25;  // what every element holds before a file is loaded

std::mt19937_64 gRandom;

std::size_t Below(std::size_t limit) {
    return gRandom() % limit;
}

bool OneIn(std::size_t count) {
    return Below(count) == 0;
}

template <class Items>
std::string Pick(const Items& items) {
    return std::string(items[Below(std::size(items))]);
}

std::string Junk(std::size_t size) {
    constexpr std::string_view characters = "0123456789+-.eEdDqQ*,/; \tXxQZ_MOICDNAL\"\r";
    std::string text;
    while (text.size() < size)
        text += OneIn(12) ? static_cast<char>(Below(256)) : characters[Below(characters.size())];
    return text;
}

std::string Digits(std::size_t most) {
    std::string digits;
    for (std::size_t n = Below(most); n > 0; --n) digits += static_cast<char>('0' + Below(10));
    return digits;
}

std::string Number() {
    constexpr std::string_view odd[] = {"1.5",
                                        "-0",
                                        "+.5",
                                        "2.",
                                        ".",
                                        "1.2.3",
                                        "1e400",
                                        "5e-324",
                                        "NaN",
                                        "Inf",
                                        "1e",
                                        "1.5+2",
                                        "-1e-999",
                                        "1e99999999999999999999",
                                        "9007199254740993",
                                        "2.4703282292062327208e-324",
                                        "1.7976931348623158079e308"};
    if (OneIn(4)) return Pick(odd);
    constexpr std::string_view signs[] = {"", "", "-", "+"};
    constexpr std::string_view exponents[] = {"e", "E", "d", "D", "q", "Q", "+", "-", "e-", "D+"};
    std::string number = Pick(signs) + Digits(OneIn(9) ? 60 : 9);
    if (OneIn(2)) number.append(".").append(Digits(OneIn(9) ? 120 : 9));
    if (OneIn(3)) number += Pick(exponents) + Digits(4);
    return number;
}

std::string Item() {
    if (OneIn(40)) return Junk(1 + Below(6));
    if (OneIn(60)) return "/";
    std::string item;
    if (OneIn(5))
        item = (OneIn(12) ? Digits(4) : std::to_string(1 + Below(OneIn(4) ? 200 : 9))) + "*";
    return item.empty() || !OneIn(4) ? item + Number() : item;
}

std::string Numbers() {
    constexpr std::string_view separators[] = {" ", " ", "  ", "\t", ",", " , ", ",,", ", "};
    std::string numbers;
    for (std::size_t n = Below(OneIn(5) ? 160 : 12); n > 0; --n)
        numbers += Item() + Pick(separators);
    if (OneIn(8)) numbers.insert(Below(numbers.size() + 1), std::string(400, ' '));
    return numbers;
}

std::string Keyword() {
    constexpr std::string_view keywords[] = {
        "QZ_MOIC",   "QZ_MOIC",    "qz_moic", "Qz_Moic",    "QZ_DMA_ON",  "QZ_DMA_ALL_ON",
        "qz_dma_on", "QZ_DMA_ALL", "QZMOIC",  "QZ_DMA_OFF", "*QZ_DMA_ON", " QZ_MOIC"};
    std::string keyword = Pick(keywords);
    if (OneIn(15)) keyword[Below(keyword.size())] = Junk(1)[0];
    if (OneIn(30)) keyword.insert(0, OneIn(2) ? "\xef\xbb\xbf" : Junk(1));
    return keyword;
}

std::string RandomLine() {
    if (OneIn(6)) return Junk(Below(OneIn(10) ? 1200 : 40));
    constexpr std::string_view ends[] = {"\n", "\n", "\n", "\r\n", "\r", "\r\r\n"};
    const std::string between = OneIn(12) ? Junk(1) : " ";
    return Keyword() + between + Numbers() + Pick(ends);
}

std::string RandomFile() {
    std::string content;
    for (std::size_t n = Below(12); n > 0; --n) content += RandomLine();
    return content;
}

FileContent ExplainFile(const std::string& name) {
    FileContent content;
    InputFile input(name);
    for (Line line; input.ReadLine(line, kLineKept);) static_cast<void>(ExplainLine(line, content));
    return content;
}

bool Load(const std::string& name) {
    cards::MoicArr.fill(kOld);
    cards::ElsetKeyModeSet(0);
    corvale::CorvaleTypes::gAllKeyMode = 0;
    corvale::CorvaleTypes::gUseAllKeyMode = 0;
    return cards::ReadCorvaleFrFile(name) == 0;
}

// What differs, or an empty text.
std::string Difference(const FileContent& content) {
    if (cards::ElsetKeyModeGet() != (content.setsElsetKeyMode ? 1 : 0))
        return "element-set key mode";
    if (cards::AllKeyModeGet() != (content.setsAllKeyMode ? 1 : 0)) return "all-key mode";
    if (cards::UseAllKeyMode() != (content.setsAllKeyMode ? 1 : 0)) return "use-all-key mode";
    for (std::size_t i = 0; i < kElements; ++i) {
        const double said = content.isSet[i] ? content.values[i] : kOld;
        if (std::bit_cast<std::uint64_t>(said) != std::bit_cast<std::uint64_t>(cards::MoicArr[i]))
            return Joined("element ", i + 1);
    }
    return "";
}

}  // namespace

int main(int argc, char** argv) {
    const long count = argc > 1 ? std::atol(argv[1]) : 10000;
    const unsigned long seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
    gRandom.seed(seed);
    const std::string name =
        std::filesystem::temp_directory_path() / ("check_soak." + std::to_string(getpid()));
    int differences = 0;
    std::uint64_t cardCount = 0, findings = 0, elements = 0;
    for (long i = 0; i < count; ++i) {
        std::ofstream(name, std::ios::binary) << RandomFile();
        const FileContent content = ExplainFile(name);
        const std::string difference = Load(name) ? Difference(content) : "not loaded";
        cardCount += content.cards;
        findings += content.findings;
        elements += content.isSet.count();
        if (difference.empty()) continue;
        ++differences;
        const std::string kept = name + "." + std::to_string(i);
        std::filesystem::copy_file(name, kept, std::filesystem::copy_options::overwrite_existing);
        std::printf("file %ld: %s differs: %s\n", i, difference.c_str(), kept.c_str());
    }
    std::filesystem::remove(name);
    std::printf("%ld files, %llu cards, %llu findings, %llu elements set, %d differences\n", count,
                static_cast<unsigned long long>(cardCount),
                static_cast<unsigned long long>(findings),
                static_cast<unsigned long long>(elements), differences);
    return differences == 0 ? 0 : 1;
}
