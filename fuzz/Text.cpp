// The operations on fixed-width text against plain loops: every width of text and result, results
// in place, buffers that end or start beside memory that cannot be touched.
#include "Targets.hpp"

#include "reference/FixedWidthText.hpp"

#include <corvale/text/FixedWidthText.hpp>

namespace corvale::fuzz {
namespace text {

using namespace StrFunctions;
using reference::Cased;
using reference::Fit;
using namespace std::literals;

constexpr std::string_view kPieces[] = {"aA", " ", "    ", "=",  " = ", "\\", "\\\\", "/",  "\0"sv,
                                        "zZ", "{", "@[`",  "09", ".",   "aa", "aaa",  "ab", "\t"};

using OneText = void (*)(std::string_view, std::span<char>) noexcept;
struct Operation {
    OneText run;
    std::string (*plain)(const std::string&);
};
const Operation kOperations[] = {
    {ToLowerCase, [](const std::string& text) { return Cased(text, 'A', 32); }},
    {ToUpperCase, [](const std::string& text) { return Cased(text, 'a', -32); }},
    {GetInputStr,
     [](const std::string& text) { return Cased(reference::GetInputFileName(text), 'a', -32); }},
    {GetInputFileName, reference::GetInputFileName},
    {RemSpaceSlashChars, reference::RemSpaceSlashChars}};

thread_local GuardedMemory<1024> gTextMemory, gPatternMemory, gReplacementMemory, gResultMemory;

void InPlace(std::size_t kind, const std::string& given) {
    const std::span<char> text = gTextMemory.Hold(given);
    std::string wanted = given;
    for (char& c : wanted)
        if (c == (kind == 0 ? '\0' : ' ')) c = kind == 0 ? ' ' : '0';
    (kind == 0 ? NullToSpace : BlankToZeroChar)(text);
    ExpectSame({text.data(), text.size()}, wanted, "NullToSpace or BlankToZeroChar");
    ExpectSame(IsBlankOrNull(gTextMemory.HoldView(given)),
               given.find_first_not_of(' ') == std::string::npos ? 1 : 0, "IsBlankOrNull");
}

// Buffers of `n` characters, in and out; a buffer that goes in may end at a character that stops it.
void Buffers(Choices& in, const std::string& given) {
    const auto n = static_cast<std::int32_t>(in.Below(90)) - 8;
    const auto count = static_cast<std::size_t>(std::max(n, 0));
    std::string wanted;
    for (std::size_t i = 0; i < std::min(count, given.size()); ++i) {
        const auto code = static_cast<unsigned char>(given[i]);
        if (code < 32 || code > 127) break;
        wanted += given[i];
    }
    const bool stops = wanted.size() < std::min(count, given.size());
    const std::string_view held =  // ends where reading has to stop: nothing after that may be read
        gTextMemory.HoldView(given.substr(0, stops ? wanted.size() + 1 : count));
    const auto taken = stops ? n : std::min(n, static_cast<std::int32_t>(held.size()));
    const std::span<char> text = gResultMemory.Text(in.Below(100));
    CharArrToStr(held.data(), taken, text);
    ExpectSame({text.data(), text.size()}, Fit(wanted, text.size()), "CharArrToStr");

    char* const chars = gResultMemory.Of(count);
    StrToCharArr(gTextMemory.HoldView(given), n, chars);
    ExpectSame({chars, count}, Fit(given, count), "StrToCharArr");
}

void Replace(Choices& in, const std::string& text, const std::string& rest) {
    const std::string pattern = rest.substr(0, in.Below(6));
    const std::string replacement = rest.substr(pattern.size(), in.Below(12));
    const bool isInPlace = in.Flip() && replacement.size() <= pattern.size();
    const std::string wanted =
        Fit(reference::ReplaceString(text, pattern, replacement), text.size());
    const std::span<char> held = gTextMemory.Hold(text);
    const std::span<char> result = isInPlace ? held : gResultMemory.Text(in.Below(100));
    ReplaceString({held.data(), held.size()}, gPatternMemory.HoldView(pattern),
                  gReplacementMemory.HoldView(replacement), result);
    ExpectSame({result.data(), result.size()}, Fit(wanted, result.size()), "ReplaceString");
}

void OneOf(Choices& in, const Operation& operation, const std::string& text) {
    const std::span<char> held = gTextMemory.Hold(text);
    const std::span<char> result = in.Flip() ? held : gResultMemory.Text(in.Below(100));
    operation.run({held.data(), held.size()}, result);
    ExpectSame({result.data(), result.size()}, Fit(operation.plain(text), result.size()),
               "an operation on one text");
}

}  // namespace text

void Text(Choices in) {
    using namespace text;
    std::array<char, 600> built;
    const std::size_t kind = in.Below(10);
    Choices sizes(in);  // the widths are read from the same bytes as the text
    const std::string text(in.Text(kPieces, built));
    if (kind < 2) return InPlace(kind, text);
    if (kind == 2) return Buffers(sizes, text);
    if (kind >= 5) return OneOf(sizes, kOperations[kind - 5], text);
    Replace(sizes, text.substr(text.size() / 4), text);
}

}  // namespace corvale::fuzz
