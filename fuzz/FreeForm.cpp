// A number and a word in an input line against the reading rules, taken one by one.
#include "Targets.hpp"

#include "literal/LiteralNumbers.hpp"

#include <corvale/text/NumericFields.hpp>

namespace corvale::fuzz {
namespace {

constexpr std::string_view kPieces[] = {"=",   " = ", "1",   "-2.5", "1.5E+2", "e",     " ",  ",",
                                        " , ", ";",   "/",   "'",    "\"",     "''",    "km", "sec",
                                        "2*3", "+",   "a b", "\t",   "00000",  "1.5,,", ".",  "="};

struct NumberAndWord {
    double number = 0.0;
    std::string word;  // not yet as wide as its target
};

class LiteralReader {
  public:
    explicit LiteralReader(std::string_view rest) : rest_(rest) {}

    // Nothing where the reading fails.
    std::optional<NumberAndWord> Read() {
        NumberAndWord result;
        if (char c = Next(); c == '\0') {
            return std::nullopt;
        } else if (c == '/') {
            return result;
        } else if (IsComma(c)) {
            rest_.remove_prefix(1);
        } else {
            const auto number = test::NormalisedReal(TakeItem());
            if (!number) return std::nullopt;
            result.number = std::strtod(number->c_str(), nullptr);
            if (c = Next(); IsComma(c)) rest_.remove_prefix(1);
        }
        const char c = Next();
        if (c == '\0') return std::nullopt;
        if (c == '/' || IsComma(c)) return result;
        if (c != '\'' && c != '"') {
            result.word = TakeItem();
            return result;
        }
        return TakeQuoted(c, result.word) ? std::optional(result) : std::nullopt;
    }

  private:
    static bool IsComma(char c) { return c == ',' || c == ';'; }

    // The next character that is not blank; '\0' at the end ('\x01' for a NUL that stands there).
    char Next() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
        return rest_.empty() ? '\0' : rest_[0] == '\0' ? '\x01' : rest_[0];
    }
    std::string_view TakeItem() {
        const std::string_view item = rest_.substr(0, rest_.find_first_of(" ,;/"));
        rest_.remove_prefix(item.size());
        return item;
    }
    bool TakeQuoted(char delimiter, std::string& word) const {
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] == delimiter && (i + 1 == rest_.size() || rest_[++i] != delimiter))
                return true;
            word += rest_[i];
        }
        return false;
    }

    std::string_view rest_;
};

}  // namespace

void FreeForm(Choices in) {
    static Room<512> lineRoom, wordRoom;
    std::array<char, 400> built;
    const std::span<char> word = wordRoom.Text(in.Below(20));
    const std::string_view line = lineRoom.HoldView(in.Text(kPieces, built));
    double number = -1.0;
    StrFunctions::InputStrToNumStr(line, number, word);

    const std::size_t equals = line.find('=');
    std::optional<NumberAndWord> wanted;
    if (equals != std::string_view::npos) wanted = LiteralReader(line.substr(equals + 1)).Read();
    std::string text = wanted.value_or(NumberAndWord()).word.substr(0, word.size());
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.resize(word.size(), ' ');
    ExpectSame(number, wanted.value_or(NumberAndWord()).number, "InputStrToNumStr, number");
    ExpectSame({word.data(), word.size()}, text, "InputStrToNumStr, word");
}

}  // namespace corvale::fuzz
