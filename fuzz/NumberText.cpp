// The two writers of short numbers against the C library's formatted output.
#include "Targets.hpp"

#include "reference/CompactNumbers.hpp"
#include "tests/support/NumberEnvironment.hpp"

#include <corvale/text/CompactNumbers.hpp>

namespace corvale::fuzz {

void NumberText(Choices in) {
    static thread_local GuardedMemory<64> guarded;
    const int mode = test::kRoundingModes[std::max(0, in.Byte() % 8 - 4)];
    const bool hasSign = in.Flip();
    const std::span<char> out = guarded.Text(in.Below(41));
    const std::int32_t n = in.Flip() ? in.Int32() : static_cast<std::int32_t>(in.Below(34)) - 1;
    const double value = in.Real();
    {
        const test::RoundingModeScope scope(mode);
        (hasSign ? StrFunctions::Fx0ToSignAx : StrFunctions::Fx0ToAx)(value, n, out);
    }
    std::string wanted(out.size(), n < 1 && !hasSign ? '#' : ' ');
    if (n >= 1) {
        const std::size_t width = hasSign ? 20 : 30;
        const std::string rendering =  // more than 30 decimals never fit
            n > 30 && !hasSign && std::isfinite(value)
                ? std::string(31, '0')
                : reference::FixedNotation(value, hasSign ? 8 : n, hasSign);
        const auto shown = std::min({static_cast<std::size_t>(n), width, out.size()});
        wanted = reference::CutToWidth(rendering, width, shown);
        wanted.resize(out.size(), ' ');
    }
    ExpectSame({out.data(), out.size()}, wanted, hasSign ? "Fx0ToSignAx" : "Fx0ToAx");
}

}  // namespace corvale::fuzz
