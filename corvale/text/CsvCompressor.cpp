#include <corvale/text/CsvCompressor.hpp>

#include <corvale/text/DigitWords.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <cstring>

namespace corvale::internal {

namespace {

constexpr std::string_view kZeroField = " 0 ,";
constexpr std::string_view kWideZero = " 0.000000000000000E+000";

// The wide layout: a blank or minus, a digit, the point, 15 digits, 'E', a sign and three digits.
constexpr std::size_t kWideWidth = 23;

// A field of the wide layout in little words: all of it after the first two characters.
struct WideField {
    explicit WideField(const char* first) noexcept
        : sign(first[0]),
          digit(first[1]),
          point(LoadLittle<std::uint64_t>(first + 2)),
          fraction(LoadLittle<std::uint64_t>(first + 10)),
          exponent(LoadLittle<std::uint64_t>(first + kWideWidth - 8) >> 24U) {}

    // What follows the 'E' may be anything: the rules copy it whatever it is, but for leading zeros.
    [[nodiscard]] bool IsValid() const noexcept {
        const std::uint64_t values = point ^ kPointAndZeros;
        const std::uint64_t wrong = MarkFirstAbove<9>(values) | (values & 0xFFU) |
                                    MarkFirstAbove<9>(DigitValues(fraction)) |
                                    ((exponent & 0xFFU) ^ 'E');
        return wrong == 0 && (sign == kBlank || sign == '-') && digit >= '0' && digit <= '9';
    }

    // The width of the point and the digits up to the last that is not 0; 0 where all are. Both
    // words are counted and one count is used: a branch between them could not be predicted.
    [[nodiscard]] std::size_t FractionWidth() const noexcept {
        const std::size_t first = 8 - ZeroBytesAtEnd(point ^ kPointAndZeros);
        const std::size_t shortWidth = first == 1 ? 0 : first;  // the point alone is useless
        const std::uint64_t last = DigitValues(fraction);
        const std::size_t longWidth = 16 - ZeroBytesAtEnd(last);
        return last != 0 ? longWidth : shortWidth;
    }

    // How many zeros the exponent begins with, 0 to 2: its last digit stays even if it is 0.
    [[nodiscard]] std::size_t ExponentZeros() const noexcept {
        const std::uint64_t digits = DigitValues(exponent >> 16U) & 0xFFFFU;
        return ZeroBytesFirst(digits | 0x10000U);
    }

    static constexpr std::uint64_t kPointAndZeros = WordOf(".0000000");
    // The zero bytes after the last other one, 7 at most: in the reversed word they come first. That
    // is much faster than counting from the high end on processors without LZCNT.
    static std::size_t ZeroBytesAtEnd(std::uint64_t word) noexcept {
        const std::uint64_t turned = ReverseBytes(word) | std::uint64_t{1} << 63U;
        return ZeroBytesFirst(turned);
    }

    char sign;
    char digit;
    std::uint64_t point;     // the point and seven digits
    std::uint64_t fraction;  // the other eight
    std::uint64_t exponent;  // 'E', sign, three digits
};

// Compresses one field of the wide layout with what ends it, a comma or the end of the line, and
// moves both positions on. False where the next field is of another layout. A zero at the end of the
// line is left to the rules, which know it.
bool CompressWideField(std::string_view& input, char*& out) noexcept {
    if (input.size() < kWideWidth) return false;
    const bool isAtEnd = input.size() == kWideWidth;
    if (isAtEnd ? input == kWideZero : input[kWideWidth] != ',') return false;
    const WideField field(input.data());
    if (!field.IsValid()) return false;

    *out = field.sign;
    out += field.sign == kBlank ? 0 : 1;
    *out++ = field.digit;
    std::memcpy(out, input.data() + 2, 16);
    out += field.FractionWidth();

    const std::size_t zeros = field.ExponentZeros();
    const std::size_t width = 5 - zeros;
    const std::uint64_t digits = field.exponent >> 16U >> 8 * zeros << 16U;
    const std::uint64_t comma = std::uint64_t{','} << 8 * width;
    StoreLittle((field.exponent & 0xFFFFU) | digits | comma, out);
    out += width + (isAtEnd ? 0 : 1);
    input.remove_prefix(kWideWidth + (isAtEnd ? 0 : 1));
    return true;
}

}  // namespace

CsvCompressor::CsvCompressor(std::span<char> line) noexcept
    : line_(line), input_(WithoutTrailingBlanks({line.data(), line.size()})) {}

void CsvCompressor::Compress() noexcept {
    if (input_.empty()) return;
    CompressWideFields();
    while (in_ < input_.size() && out_ < kWidth) ApplyFirstRule();
    PutText({result_.data(), keepsWidth_ ? kWidth : std::min(out_, kWidth)}, line_);
}

char CsvCompressor::At(std::size_t position) const noexcept {
    return position < input_.size() ? input_[position] : kBlank;
}

bool CsvCompressor::Matches(std::string_view pattern) const noexcept {
    return input_.substr(in_).starts_with(pattern);
}

// The rules in their order: a character is handled by the first one that fits.
void CsvCompressor::ApplyFirstRule() noexcept {
    switch (input_[in_]) {
        case kBlank:
            if (Matches(kZeroField)) {
                in_ += 2;
            } else if (Matches(kWideZero) && At(in_ + kWideWidth) == kBlank) {
                in_ += kWideWidth;
            } else {
                ++in_;
            }
            break;
        case ',':
        case ':':
            if (isFraction_) {
                Separator();
            } else {
                Copy();
            }
            if (!keepsWidth_) CompressWideFields();  // nothing is remembered now
            break;
        case 'E':
            if (isFraction_) {
                ExponentLetter();
            } else {
                Copy();
            }
            break;
        case '.':
            Point();
            break;
        case '0':
            Zero();
            break;
        default:
            Copy();
    }
}

// A comma or colon ends a fraction.
void CsvCompressor::Separator() noexcept {
    out_ = EndOfNumber();
    result_[out_++] = input_[in_++];
    isFraction_ = false;
}

// An 'E' ends a fraction. The sign and three digits after it belong to it, whatever they are.
void CsvCompressor::ExponentLetter() noexcept {
    out_ = EndOfNumber();
    std::size_t digits = 3;
    if (At(in_ + 2) == '0') digits = At(in_ + 3) == '0' ? 1 : 2;
    result_[out_++] = 'E';
    result_[out_++] = At(in_ + 1);
    in_ += 5;
    for (std::size_t i = in_ - digits; i < in_; ++i) result_[out_++] = At(i);
    isFraction_ = false;
}

// A point begins a fraction, a second one in a number, too: from there on the result keeps its width.
void CsvCompressor::Point() noexcept {
    if (zeros_.isRecorded && !keepsWidth_) {
        keepsWidth_ = true;
        std::fill(result_.begin() + static_cast<std::ptrdiff_t>(out_), result_.end(), kBlank);
    }
    isFraction_ = true;
    result_[out_++] = '.';
    ClearAtLineEnd();
    ++in_;
}

// A zero of a fraction begins or extends the run that is useless if nothing else follows.
void CsvCompressor::Zero() noexcept {
    if (isFraction_) {
        if (!zeros_.isRecorded) {
            // a run directly after the point makes the point useless, too
            const bool followsPoint = input_[in_ - 1] == '.';
            zeros_ = {followsPoint ? out_ - 1 : out_, out_, true};
        }
        zeros_.last = out_;
    }
    result_[out_++] = '0';
    if (isFraction_) ClearAtLineEnd();
    ++in_;
}

// Any other character stays and makes the zeros before it significant.
void CsvCompressor::Copy() noexcept {
    result_[out_++] = input_[in_++];
    zeros_.isRecorded = false;
}

// The end of the line ends a fraction, too.
void CsvCompressor::ClearAtLineEnd() noexcept {
    if (IsLast() && zeros_.isRecorded) BlankZeroRun();
}

// The position of what ends the number, after its useless zeros have been removed.
std::size_t CsvCompressor::EndOfNumber() noexcept {
    if (!zeros_.isRecorded) return out_;
    BlankZeroRun();
    zeros_.isRecorded = false;
    return zeros_.first;
}

void CsvCompressor::BlankZeroRun() noexcept {
    const std::size_t width = zeros_.last + 1 - zeros_.first;
    std::memset(result_.data() + zeros_.first, kBlank, width);
}

// Compresses the fields of the wide layout that follow, with both positions in registers. Only
// called where the rules remember nothing.
void CsvCompressor::CompressWideFields() noexcept {
    std::string_view rest = input_.substr(in_);
    char* out = result_.data() + out_;
    const char* const last = result_.data() + kWidth - kWideWidth - 1;
    while (out <= last && CompressWideField(rest, out)) continue;
    in_ = input_.size() - rest.size();
    out_ = static_cast<std::size_t>(out - result_.data());
}

}  // namespace corvale::internal
