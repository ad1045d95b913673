#include <corvale/text/StrFunctions.hpp>

#include "tests/support/GuardPage.hpp"

#include <gtest/gtest.h>
#include <climits>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace corvale::StrFunctions {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::GuardedBuffer;

// What `write` makes of a result of `width` characters at the end of mapped memory.
std::string Result(std::size_t width, const std::function<void(std::span<char>)>& write) {
    const GuardedBuffer buffer(width);
    write(buffer.Span());
    return std::string(buffer.Text());
}

std::string Blanks(std::size_t count) {
    return std::string(count, ' ');
}

struct BufferCase {
    std::string_view chars;
    std::int32_t n;
    std::string_view text;
    const char* why;
};
const BufferCase kBuffers[] = {
    {"AB\0CDE"sv, 6, "AB    ", "a NUL ends the text, what follows is lost"},
    {"AB\tCDE", 6, "AB    ", "so does a tab"},
    {"abcdef", 6, "abcdef", "a full buffer has no terminator"},
    {"abcdef", 4, "abcd  ", "no more than n are read"},
    {"ab\0"sv, INT_MAX, "ab", "a count larger than the text: the text limits"},
    {"abc", 0, "   ", "no characters: nothing is read"},
    {"abc", INT_MIN, "   ", "a negative count likewise"},
};

TEST(CharArrToStr, StopsAtTheFirstControlOrHighByteAndReadsNothingBeyond) {
    for (const auto& [chars, n, text, why] : kBuffers) {
        // The buffer ends with the character that stops, if one does.
        const std::size_t stop = chars.find_first_of("\0\t\x1f\x80\xff"sv);
        const GuardedBuffer buffer(stop == chars.npos ? chars : chars.substr(0, stop + 1));
        EXPECT_EQ(
            Result(text.size(), [&, n = n](auto out) { CharArrToStr(buffer.Data(), n, out); }),
            text)
            << why;
    }
    EXPECT_EQ(Result(3, [](auto out) { CharArrToStr(nullptr, 3, out); }), "   ") << "null";
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        const std::string kept = code < 32 || code > 127 ? " " : std::string(1, character);
        EXPECT_EQ(Result(1, [&](auto out) { CharArrToStr(&character, 1, out); }), kept) << code;
    }
}

TEST(StrToCharArr, FillsExactlyNElements) {
    const auto handOut = [](std::string_view text, std::int32_t n) {
        return [=](std::span<char> out) { StrToCharArr(text, n, out.data()); };
    };
    EXPECT_EQ(Result(5, handOut("abc", 5)), "abc  ") << "blanks follow, no terminator";
    EXPECT_EQ(Result(3, handOut("\0\t\xff"sv, 3)), "\0\t\xff"s) << "no stopping in this direction";
    EXPECT_EQ(Result(2, handOut("abc", 2)), "ab") << "a longer text is cut";
    EXPECT_EQ(Result(2, handOut({}, 2)), "  ") << "an empty text is blanks";
    EXPECT_EQ(Result(2, handOut("abc", 0)), "##") << "no elements: nothing is written";
    EXPECT_EQ(Result(2, handOut("abc", INT_MIN)), "##") << "nor for a negative count";
    StrToCharArr("abc", 3, nullptr);
}

struct ReplaceCase {
    std::string_view text, pattern, replacement, result;
    const char* why;
};
const ReplaceCase kReplacements[] = {
    {"aaa", "aa", "b", "ba ", "occurrences do not overlap"},
    {"abcd", "", "x", "    ", "an empty pattern blanks the text"},
    {"ab", "abc", "x", "ab", "a pattern wider than the text"},
    {"a b  ", "b ", "c", "a c  ", "blanks of the pattern match blanks"},
    {"a-b-c", "-", "+ ", "a+ b+", "blanks of the replacement are inserted"},
    {"xyxyxz", "xyxz", "12", "xy12  ", "a false start is searched again from its second character"},
    {"", "", "", "", "width 0 with an empty pattern"},
};

TEST(ReplaceString, ReplacesFromLeftToRightAndKeepsTheWidth) {
    for (const auto& c : kReplacements) {
        const auto replace = [&](std::span<char> out) {
            ReplaceString(c.text, c.pattern, c.replacement, out);
        };
        const std::string wanted(c.result);
        EXPECT_EQ(Result(wanted.size(), replace), wanted) << c.why;
        EXPECT_EQ(Result(wanted.size() + 20, replace), wanted + Blanks(20)) << c.why;
        EXPECT_EQ(Result(wanted.size() / 2, replace), wanted.substr(0, wanted.size() / 2)) << c.why;
        if (c.replacement.size() > c.pattern.size()) continue;
        const GuardedBuffer inPlace(c.text);
        ReplaceString(inPlace.Text(), c.pattern, c.replacement, inPlace.Span());
        EXPECT_EQ(inPlace.Text(), wanted) << "in place: " << c.why;
    }
}

TEST(ReplaceString, TakesTimeThatGrowsWithTheTextOnly) {
    const std::string many(1U << 22U, 'a');
    EXPECT_EQ(Result(many.size(), [&](auto out) { ReplaceString(many, "a", many, out); }), many);
    EXPECT_EQ(Result(many.size(), [&](auto out) { ReplaceString(many, "a", "", out); }),
              Blanks(many.size()));
}

using Operation = void (*)(std::string_view, std::span<char>) noexcept;

// Into a result of its own, and over its own input.
void ExpectResult(Operation operation, std::string_view text, std::string_view result,
                  const char* why = "") {
    const GuardedBuffer input(text);
    EXPECT_EQ(Result(result.size(), [&](auto out) { operation(input.Text(), out); }), result)
        << why;
    if (text.size() != result.size()) return;
    operation(input.Text(), input.Span());
    EXPECT_EQ(input.Text(), result) << "in place: " << why;
}

struct OperationCase {
    Operation operation;
    std::string_view text, result;
    const char* why;
};
const OperationCase kOperations[] = {
    {ToUpperCase, "abc", "ABC  ", "a wider result is filled"},
    {ToUpperCase, "abc", "AB", "a narrower one is cut"},
    {RemSpaceSlashChars, "2023/10/05 12:30:45.5", "20231005123045.5     ", "the rest closes up"},
    {RemSpaceSlashChars, "1234567890123456789012345", "12345678901234567",
     "what does not fit is dropped"},
    {GetInputStr, "Mode =  abc Def ", "ABC DEF         ", "to the left, inner blank kept"},
    {GetInputStr, "  no sign here", "NO SIGN HERE  ", "a line without = is all value"},
    {GetInputStr, "KEY = A = b", "A = B      ", "only the first = separates"},
    {GetInputStr, "k=\ta", "\tA  ", "a tab is no blank"},
    {GetInputFileName, "f=abc", "ab", "a narrower result is cut"},
    {GetInputFileName, "", "  ", "width 0"},
};

TEST(FixedWidthText, FollowsTheRuleOfEachOperation) {
    for (const auto& [operation, text, result, why] : kOperations)
        ExpectResult(operation, text, result, why);
}

TEST(IsBlankOrNull, AcceptsBlanksAlone) {
    for (std::size_t i = 0; i < 100; ++i) {
        std::string text = Blanks(100);
        text[i] = '\0';
        EXPECT_EQ(IsBlankOrNull(text), 0) << "a NUL at " << i;
        NullToSpace(text);
        EXPECT_EQ(IsBlankOrNull(text), 1) << "until it is made a blank";
    }
}

}  // namespace
}  // namespace corvale::StrFunctions
