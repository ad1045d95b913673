#include <corvale/text/CompactNumbers.hpp>

#include <corvale/text/CsvCompressor.hpp>
#include <corvale/text/FixedNotation.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <cstddef>

namespace corvale::StrFunctions {

using internal::RenderFixed;
using internal::SignRule;

namespace {

constexpr std::int32_t kSignDecimals = 8;
constexpr std::string_view kSignOverflow = "********************";
constexpr std::string_view kOverflow = "******************************";
static_assert(kSignOverflow.size() == 20 && kOverflow.size() == internal::kWidestRendering);

// Writes the first `n` characters of a rendering in its field, which is as wide as `overflow`: a
// rendering that is wider than the field shows as asterisks. The blanks after a shorter one are
// copied with it: then the width is the same from call to call, which the processor predicts.
void PutCut(std::string_view rendering, std::string_view overflow, std::int32_t n,
            std::span<char> out) noexcept {
    const bool fits = !rendering.empty() && rendering.size() <= overflow.size();
    const char* const field = fits ? rendering.data() : overflow.data();
    internal::PutText({field, std::min(static_cast<std::size_t>(n), overflow.size())}, out);
}

}  // namespace

void Fx0ToSignAx(double value, std::int32_t n, std::span<char> out) noexcept {
    if (n < 1) {
        internal::FillWithBlanks(out);
        return;
    }
    internal::RenderingBuffer buffer;
    PutCut(RenderFixed(value, kSignDecimals, SignRule::Always, buffer), kSignOverflow, n, out);
}

void Fx0ToAx(double value, std::int32_t n, std::span<char> out) noexcept {
    if (n < 1) return;
    internal::RenderingBuffer buffer;
    PutCut(RenderFixed(value, n, SignRule::WhenNegative, buffer), kOverflow, n, out);
}

void CompressCsvLine(std::span<char> line) noexcept {
    internal::CsvCompressor(line).Compress();
}

}  // namespace corvale::StrFunctions
