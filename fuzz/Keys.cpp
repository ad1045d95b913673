// Satellite keys and numbers, modes through both APIs, checksums, logical values and the
// information line.
#include "Targets.hpp"

#include "reference/SatelliteNumbers.hpp"

#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/numeric/GenFunctions.hpp>

namespace corvale::fuzz {
namespace keys {

using namespace GenFunctions;
using namespace CorvaleCardReading;
using namespace std::literals;

constexpr std::string_view kPieces[] = {"A",  "H", "I", "J", "N",  "O", "P",     "Z",
                                        "a",  "0", "9", "1", "12", " ", "   ",   "+",
                                        "-1", "-", ".", ",", "@",  "[", "\0\t"sv};

void SatelliteKeys(std::int64_t key) {
    const bool isTenth = key % 10 == 0;
    ExpectSame(SatKeyToAddr(key), key / 10, "SatKeyToAddr");
    // No part of the digest: addresses have 32 bits on some machines.
    Expect(KeyToCPtr(key) == static_cast<std::intptr_t>(key / 10), "KeyToCPtr");
    ExpectSame(IsDma(key), key != 0 && isTenth ? 1 : 0, "IsDma");
    ExpectSame(IsNoDup(key), key == 0 || (!isTenth && key <= 3669999999999999999) ? 1 : 0,
               "IsNoDup");
    const auto next = static_cast<std::int64_t>(static_cast<std::uint64_t>(key) + 10000000000U);
    ExpectSame(NextSatKey(key), next, "NextSatKey");
}

void SatelliteNumbers(std::int32_t number, std::string_view text) {
    const auto code = NumToAlpha5(number);
    const std::string_view view(code.data(), code.size());
    ExpectSame(view, reference::NumToAlpha5(number), "NumToAlpha5");
    if (number >= 0 && number < 340000) ExpectSame(Alpha5ToNum(view), number, "a round trip");
    ExpectSame(Alpha5ToNum(text), reference::Alpha5ToNum(std::string(text)), "Alpha5ToNum");
}

void CheckSum(std::string_view line, std::int32_t first, std::int32_t last) {
    std::int32_t total = 0, sum = -1, status = -1;
    const bool isRange = first >= 1 && first <= last;
    for (std::size_t i = 0; i < line.size() && isRange; ++i) {
        const auto position = static_cast<std::int32_t>(i + 1);
        if (position < first || position > last) continue;
        total += line[i] == '-' ? 1 : line[i] >= '0' && line[i] <= '9' ? line[i] - '0' : 0;
    }
    CkSum(line, first, last, sum, status);
    ExpectSame(sum, total % 10, "CkSum");
    ExpectSame(status, isRange ? 0 : 2, "CkSum, status");
}

void LogicalValues(std::int32_t i) {
    ExpectSame(Int2Logical(i), i != 0 ? 1 : 0, "Int2Logical");
    ExpectSame(Logical2Int(i), i, "Logical2Int");
    ExpectSame(InvalidFlag(i), i != 0 && i != 1 ? 1 : 0, "InvalidFlag");
}

struct Modes {
    std::int32_t dup = 0, all = 0, elset = 0, useAll = 0;
};

// One call that sets a mode, through the API that `call` says, and what it makes of `modes`.
void SetMode(std::size_t call, std::int32_t mode, Modes& modes) {
    const bool isValid = mode == 0 || mode == 1;
    const std::int32_t status = isValid ? 0 : 2;
    if (call == 0) ExpectSame(SetDupKeyMode(mode), status, "SetDupKeyMode");
    if (call == 1) ExpectSame(SetAllKeyMode(mode), status, "SetAllKeyMode");
    if (call == 2) ExpectSame(SetElsetKeyMode(mode), status, "SetElsetKeyMode");
    if (call == 3) DupKeyModeSet(mode);
    if (call == 4) AllKeyModeSet(mode);
    if (call == 5) ElsetKeyModeSet(mode);
    if (call == 6) {
        ResetAllKeyMode();
        modes.dup = modes.all = modes.useAll = 0;
    }
    if (call > 5 || (call < 3 && !isValid)) return;
    (call % 3 == 0 ? modes.dup : call % 3 == 1 ? modes.all : modes.elset) = mode;
    if (call % 3 == 1) modes.useAll = 1;
}

void CompareModes(const Modes& wanted) {
    ExpectSame(GetDupKeyMode(), wanted.dup, "GetDupKeyMode");
    ExpectSame(GetAllKeyMode(), wanted.all, "GetAllKeyMode");
    ExpectSame(GetElsetKeyMode(), wanted.elset, "GetElsetKeyMode");
    ExpectSame(DupKeyModeGet(), CorvaleTypes::gDupKeyMode.load(), "DupKeyModeGet");
    ExpectSame(AllKeyModeGet(), CorvaleTypes::gAllKeyMode.load(), "AllKeyModeGet");
    ExpectSame(ElsetKeyModeGet(), ElsetKeyMode.load(), "ElsetKeyModeGet");
    ExpectSame(UseAllKeyMode(), wanted.useAll, "UseAllKeyMode");
}

void KeyModes(Choices& in) {
    Modes modes;
    ResetAllKeyMode();
    ElsetKeyModeSet(0);
    for (int calls = 0; calls < 8 && in.Left() > 0; ++calls) {
        const std::size_t call = in.Below(7);
        const bool isMode = in.Flip();
        SetMode(call, isMode ? static_cast<std::int32_t>(in.Below(2)) : in.Int32(), modes);
        CompareModes(modes);
    }
}

void InformationLine(std::string_view name, std::string_view version, bool hasVersion) {
    static thread_local GuardedMemory<128> guarded;
    const std::span<char, 128> info(guarded.Of(128), 128);
    if (hasVersion)
        GetSoftwareInfo(name, info, version);
    else
        GetSoftwareInfo(name, info);
    std::string wanted = "Arvenit " + std::string(name) + " - Version: ";
    wanted += std::string(hasVersion ? version : "v9.4") + " - Build: ";
    wanted.resize(std::min<std::size_t>(wanted.size(), 128));
    ExpectSame({info.data(), wanted.size()}, wanted, "GetSoftwareInfo");
    Expect(std::find(info.begin(), info.end(), '#') == info.end() || wanted.find('#') < 128,
           "all of the information line is written");
}

}  // namespace keys

void Keys(Choices in) {
    using namespace keys;
    static thread_local GuardedMemory<256> textMemory, otherMemory;
    std::array<char, 160> built;
    const std::size_t kind = in.Below(6);
    if (kind == 0) {
        const auto key = in.Raw<std::int64_t>();
        const bool isEdge = in.Flip();  // beside the greatest key without duplication
        return SatelliteKeys(isEdge ? 3670000000000000000 + key % 64 : key);
    }
    if (kind == 1) return KeyModes(in);
    const std::int32_t number = in.Int32(), other = in.Int32();
    const std::string_view text = textMemory.HoldView(in.Text(kPieces, built));
    if (kind == 2) return SatelliteNumbers(other % 2 == 0 ? number : other % 500000, text);
    if (kind == 3) return CheckSum(text, number, other);
    if (kind == 4) return LogicalValues(number);
    InformationLine(text, otherMemory.HoldView(text.substr(text.size() / 2)), number > 0);
}

}  // namespace corvale::fuzz
