// All 2^32 single-precision values, through text and back, against the C library.
//
//     float_soak SLICE [STEP]   the 2^24 values whose highest byte is SLICE (0 to 255), or every
//                               STEP-th of them. Prints: slice, values, differences, checksum
//
// Each value is written in one of eight forms, read by StrToReal and by strtod, and compared bit for
// bit. Then Fx0ToSignAx writes it into a field and "%+.8f" says what has to stand there. glibc's
// strtod and printf are exact: they work on all digits of the binary value and round once, halfway
// to even. The checksum covers every bit that the library gave.
#include "tests/support/Bits.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using namespace corvale::StrFunctions;
using Text = std::array<char, 128>;

constexpr std::uint32_t kSliceSize = 1U << 24U;
constexpr std::uint64_t kGolden = 0x9e3779b97f4a7c15U;  // 2^64 / golden ratio: spreads all bits

long gDifferences = 0;

struct Form {
    std::chars_format format;
    int digits;   // after the first; 0: the fewest that give the value back
    char letter;  // of the exponent; 0: its sign alone
    std::string_view before, after;
};
constexpr Form kForms[] = {
    {std::chars_format::fixed, 0, 'e', "", ""},
    {std::chars_format::fixed, 0, 'e', "   ", " 7"},
    {std::chars_format::scientific, 0, 'e', "", ","},
    {std::chars_format::scientific, 0, 'D', " ", ""},
    {std::chars_format::scientific, 0, '\0', "", "x"},
    {std::chars_format::scientific, 8, 'E', "", "/2"},
    {std::chars_format::scientific, 8, '\0', "  ", "   "},
    {std::chars_format::scientific, 16, 'd', "", ";"},
};

// What strtod reads, zero-terminated; returns its size. 16 digits are those of the double.
std::size_t WritePlain(float value, const Form& form, Text& plain) {
    char* const first = plain.data();
    char* const last = first + plain.size();
    char* end = form.digits == 0   ? std::to_chars(first, last, value, form.format).ptr
                : form.digits == 8 ? std::to_chars(first, last, value, form.format, 8).ptr
                                   : std::to_chars(first, last, double{value}, form.format, 16).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - first);
}

// The same number as the library takes it.
std::string_view WriteField(std::string_view plain, const Form& form, Text& field) {
    char* end = field.data();
    const auto append = [&end](std::string_view part) {
        std::memcpy(end, part.data(), part.size());
        end += part.size();
    };
    const std::size_t mantissa =
        form.format == std::chars_format::fixed ? plain.size() : plain.find('e');
    append(form.before);
    append(plain.substr(0, mantissa));
    if (mantissa < plain.size()) {
        if (form.letter != '\0') *end++ = form.letter;
        append(plain.substr(mantissa + 1));
    }
    append(form.after);
    return {field.data(), static_cast<std::size_t>(end - field.data())};
}

void Report(const char* procedure, float value, std::string_view text) {
    if (++gDifferences <= 20)
        std::fprintf(stderr, "%s differs at %a: [%.*s]\n", procedure, double{value},
                     static_cast<int>(text.size()), text.data());
}

std::uint64_t CheckRead(float value, const Form& form) {
    const bool isFinite = std::isfinite(value);
    Text plain, fieldRoom;
    std::string_view field = std::signbit(value) ? "-Infinity" : "NaN";  // no numbers: read as 0
    double wanted = 0.0;
    if (isFinite) {
        field = WriteField({plain.data(), WritePlain(value, form, plain)}, form, fieldRoom);
        wanted = std::strtod(plain.data(), nullptr);
    }
    const auto bits = std::bit_cast<std::uint64_t>(StrToReal(field));
    if (bits != std::bit_cast<std::uint64_t>(wanted)) Report("StrToReal", value, field);
    return bits;
}

// What a field of 20 shows, without a call where the magnitude says it: below 2^-28 all decimals are
// 0, from 2^34 on there is no room.
std::string_view Rendering(float value, Text& buffer) {
    constexpr std::string_view kNoRoom = "********************";
    const bool isNegative = std::signbit(value);
    const float magnitude = std::fabs(value);
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return isNegative ? "-Inf" : "+Inf";
    if (magnitude < 0x1p-28F) return isNegative ? "-.00000000" : "+.00000000";
    if (magnitude >= 0x1p34F) return kNoRoom;
    auto size = static_cast<std::size_t>(
        std::snprintf(buffer.data(), buffer.size(), "%+.8f", double{value}));
    char* first = buffer.data();
    if (first[1] == '0') {  // the only digit before the point is not shown
        first[1] = first[0];
        ++first;
        --size;
    }
    return size <= kNoRoom.size() ? std::string_view{first, size} : kNoRoom;
}

std::uint64_t CheckWritten(float value, std::uint64_t mixed) {
    // Mostly the whole field, otherwise cut anywhere; always in a text of some other width.
    const std::size_t n = (mixed & 3U) != 0 ? 20 : 1 + (mixed >> 2U) % 20;
    const std::size_t width = n + (mixed >> 8U) % 4;
    std::array<char, 24> wanted, out;
    wanted.fill(' ');
    out.fill('?');
    Text buffer;
    const std::string_view rendering = Rendering(value, buffer).substr(0, n);
    std::memcpy(wanted.data(), rendering.data(), rendering.size());
    std::memset(wanted.data() + width, '?', wanted.size() - width);
    Fx0ToSignAx(double{value}, static_cast<std::int32_t>(n), {out.data(), width});
    if (out != wanted) Report("Fx0ToSignAx", value, {out.data(), width});
    std::array<std::uint64_t, 3> words;
    std::memcpy(words.data(), out.data(), sizeof words);
    return words[0] ^ std::rotl(words[1], 21) ^ std::rotl(words[2], 42);
}

}  // namespace

int main(int argc, char** argv) {
    const int slice = argc > 1 ? std::atoi(argv[1]) : 0;
    const int step = argc > 2 ? std::atoi(argv[2]) : 1;
    if (slice < 0 || slice > 255 || step < 1) return 2;
    std::uint64_t checksum = 0;
    long values = 0;
    for (std::uint32_t low = 0; low < kSliceSize;
         low += static_cast<std::uint32_t>(step), ++values) {
        const std::uint32_t bits = static_cast<std::uint32_t>(slice) << 24U | low;
        const auto value = std::bit_cast<float>(bits);
        const std::uint64_t mixed = bits * kGolden >> 20U;
        checksum = std::rotl(checksum * kGolden, 23) ^ CheckRead(value, kForms[mixed >> 41U]);
        checksum = std::rotl(checksum * kGolden, 23) ^ CheckWritten(value, mixed);
    }
    std::printf("%d %ld %ld %016llx\n", slice, values, gDifferences,
                static_cast<unsigned long long>(checksum));
    return gDifferences == 0 ? 0 : 1;
}
