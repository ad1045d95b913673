#include "Escapes.hpp"

#include "Joined.hpp"

#include <algorithm>

namespace corvale::tool {

namespace {

struct ByteWord {
    char byte;
    std::string_view name;
};
constexpr ByteWord kByteNames[] = {
    {'\0', "a NUL"}, {'\t', "a tab"}, {'\r', "a carriage return"}, {'\x1a', "a control-Z"}};

bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}

std::string Hex(char c) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto code = static_cast<unsigned char>(c);
    return {digits[code >> 4U], digits[code & 15U]};
}

}  // namespace

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (IsPrintable(c))
            escaped += c;
        else
            escaped.append("\\x").append(Hex(c));
    }
    return escaped;
}

std::string EscapedLines(std::string_view text) {
    std::string lines;
    for (std::size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size()))) {
        end = std::min(text.find('\n'), text.size());
        lines.append(Escaped(text.substr(0, end))).append(end < text.size() ? "\n" : "");
    }
    return lines;
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t most = 40;
    return Joined("\"", Escaped(text.substr(0, most)), text.size() > most ? "..." : "", "\"");
}

std::string QuotedName(std::string_view name) {
    return Joined("\"", Escaped(name), "\"");
}

std::string PercentOf(char c) {
    return Joined("%", Hex(c));
}

std::string ByteName(char c) {
    for (const auto& [byte, name] : kByteNames)
        if (c == byte) return std::string(name);
    if (IsPrintable(c)) return Joined("'", std::string_view(&c, 1), "'");
    return Joined("the byte 0x", Hex(c));
}

}  // namespace corvale::tool
