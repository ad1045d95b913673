// A number and a word in an input line against the reading rules, taken one by one.
#include "Targets.hpp"

#include "reference/NumericFields.hpp"

#include <corvale/text/NumericFields.hpp>

namespace corvale::fuzz {
namespace free_form {

constexpr std::string_view kPieces[] = {"=",   " = ", "1",   "-2.5", "1.5E+2", "e",     " ",  ",",
                                        " , ", ";",   "/",   "'",    "\"",     "''",    "km", "sec",
                                        "2*3", "+",   "a b", "\t",   "00000",  "1.5,,", ".",  "="};

}  // namespace free_form

void FreeForm(Choices in) {
    using namespace free_form;
    static thread_local GuardedMemory<512> lineMemory, wordMemory;
    std::array<char, 400> built;
    const std::span<char> word = wordMemory.Text(in.Below(20));
    const std::string_view line = lineMemory.HoldView(in.Text(kPieces, built));
    double number = -1.0;
    StrFunctions::InputStrToNumStr(line, number, word);

    const std::size_t equals = line.find('=');
    std::optional<reference::NumberAndWord> wanted;
    if (equals != std::string_view::npos)
        wanted = reference::FreeFormReader(line.substr(equals + 1)).Read();
    std::string text = wanted.value_or(reference::NumberAndWord()).word.substr(0, word.size());
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.resize(word.size(), ' ');
    ExpectSame(number, wanted.value_or(reference::NumberAndWord()).number,
               "InputStrToNumStr, number");
    ExpectSame({word.data(), word.size()}, text, "InputStrToNumStr, word");
}

}  // namespace corvale::fuzz
