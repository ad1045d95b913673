// The C API. A function converts the caller's texts, checks what only a caller in C can get wrong,
// calls one procedure and converts what comes back; no decision is made here.
//
// Texts  A name or message may end early at a NUL, and its leading blanks are no part of it: a caller
//        in another language passes a blank-filled buffer, one in C a terminated string, and both
//        mean the same. What is written fills its buffer exactly and has no terminator.
// Modes  The C API takes 0 and 1 and reports anything else; the C++ procedures store what they get.
// Null   Tested by the conversions of texts and by the procedures that write through a pointer.
#include <corvale/exports/CorvaleDllExports.h>

#include <corvale/core/CardTable.hpp>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/core/KeyModes.hpp>
#include <corvale/core/LogFile.hpp>
#include <corvale/numeric/SoftwareInfo.hpp>
#include <corvale/text/FixedWidthText.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

using namespace corvale;

// A C header cannot use the constants of the C++ API: here the two are held together.
static_assert(CORVALE_OK == CorvaleTypes::StatusOk);
static_assert(CORVALE_FAILED == CorvaleTypes::StatusFailed);
static_assert(CORVALE_NAME_WIDTH == CorvaleTypes::NameWidth);
static_assert(CORVALE_MESSAGE_WIDTH == CorvaleTypes::MessageWidth);
static_assert(CORVALE_MOIC_COUNT == internal::kMoicCount);

namespace {

// A caller's buffer as a text, left-adjusted: its leading blanks are moved to its end.
template <std::int32_t Width>
class BufferText {
  public:
    explicit BufferText(const char* buffer) noexcept {
        StrFunctions::CharArrToStr(buffer, Width, text_);
        if (text_.front() != internal::kBlank) return;
        internal::PutText(internal::WithoutLeadingBlanks(Whole()), text_);
    }
    [[nodiscard]] std::string_view Whole() const noexcept { return {text_.data(), text_.size()}; }
    [[nodiscard]] std::string_view Trimmed() const noexcept {
        return internal::WithoutTrailingBlanks(Whole());
    }

  private:
    std::array<char, Width> text_;
};

using NameText = BufferText<CorvaleTypes::NameWidth>;
using MessageText = BufferText<CorvaleTypes::MessageWidth>;

// Copies a stored message as it is at this moment; it has the width of the buffer already.
void HandOut(const FileIO::MessageStore& store, char* message) noexcept {
    std::array<char, CorvaleTypes::MessageWidth> text;
    store.Load(text);
    StrFunctions::StrToCharArr({text.data(), text.size()}, CorvaleTypes::MessageWidth, message);
}

// Stores `mode` with `set` if it is 0 or 1; otherwise reports `complaint`.
std::int32_t SetMode(std::int32_t mode, void (*set)(std::int32_t) noexcept,
                     std::string_view complaint) noexcept {
    if (mode != 0 && mode != 1) {
        FileIO::TraceLogError(complaint);
        return CorvaleTypes::StatusFailed;
    }
    set(mode);
    return CorvaleTypes::StatusOk;
}

}  // namespace

int32_t CorvaleInit() noexcept {
    return CorvaleTypes::StatusOk;
}

void CorvaleGetInfo(char* info) noexcept {
    std::array<char, CorvaleTypes::MessageWidth> line;
    GenFunctions::GetSoftwareInfo("Corvale", line);
    StrFunctions::StrToCharArr({line.data(), line.size()}, CorvaleTypes::MessageWidth, info);
}

void GetInitDllNames(char* names) noexcept {
    StrFunctions::StrToCharArr({}, CorvaleTypes::NameWidth, names);
}

int32_t OpenLogFile(const char* fileName) noexcept {
    // Trimmed: the system would take trailing blanks for a part of the name.
    return internal::OpenLog(NameText(fileName).Trimmed());
}

void CloseLogFile() noexcept {
    internal::CloseLog();
}

void LogMessage(const char* message) noexcept {
    // Whole: the line in the log is as wide as the buffer, its trailing blanks included.
    FileIO::TraceLogInfo(MessageText(message).Whole());
}

void GetLastErrMsg(char* message) noexcept {
    HandOut(FileIO::LastLoggedErrMsg, message);
}

void GetLastInfoMsg(char* message) noexcept {
    HandOut(FileIO::LogLastInfoMsg, message);
}

int32_t GetDupKeyMode() noexcept {
    return CorvaleCardReading::DupKeyModeGet();
}

int32_t SetDupKeyMode(int32_t mode) noexcept {
    return SetMode(mode, CorvaleCardReading::DupKeyModeSet,
                   "SetDupKeyMode: invalid input value for DUPLICATION key mode.");
}

int32_t GetAllKeyMode() noexcept {
    return CorvaleCardReading::AllKeyModeGet();
}

int32_t SetAllKeyMode(int32_t mode) noexcept {
    return SetMode(mode, CorvaleCardReading::AllKeyModeSet,
                   "SetAllKeyMode: invalid input value for elset key mode.");
}

void ResetAllKeyMode() noexcept {
    internal::ResetAllKeys();
}

int32_t GetElsetKeyMode() noexcept {
    return CorvaleCardReading::ElsetKeyModeGet();
}

int32_t SetElsetKeyMode(int32_t mode) noexcept {
    return SetMode(mode, CorvaleCardReading::ElsetKeyModeSet,
                   "SetElsetKeyMode: invalid input value for elset key mode.");
}

int32_t CorvaleLoadFile(const char* fileName) noexcept {
    return CorvaleCardReading::ReadCorvaleFrFile(NameText(fileName).Trimmed());
}

void GetMOICData(int32_t count, double* values) noexcept {
    if (values == nullptr || count < 1) return;
    // First, because a count above the array's gives that many zeros and nothing else.
    std::fill_n(values, static_cast<std::size_t>(count), 0.0);
    if (count <= CORVALE_MOIC_COUNT) CorvaleCardReading::RetrieveMocData(values, count);
}
