// Opening by mode, with a message for each way to fail. The order of the checks is part of what
// callers see: the unit is closed first, then the name is looked at, then the mode.
//
// Messages quote the name as the caller gives it; the system gets it with slashes for backslashes.
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/core/LogFile.hpp>
#include <corvale/platform/TextUnits.hpp>
#include <corvale/platform/UnitFiles.hpp>
#include <corvale/text/FixedWidthText.hpp>
#include <corvale/text/TextParts.hpp>

#include <array>

namespace corvale::FileIO {

namespace {

using internal::FileAccess;

// The values of `ioMode`.
constexpr std::int32_t kWrite = 0;
constexpr std::int32_t kRead = 1;
constexpr std::int32_t kAppend = 2;

// Nothing for a mode that neither procedure knows.
std::optional<FileAccess> AccessFor(std::int32_t ioMode) noexcept {
    switch (ioMode) {
        case kRead:
            return FileAccess::Read;
        case kAppend:
            return FileAccess::Append;
        case kWrite:
            return FileAccess::Replace;
        default:
            return std::nullopt;
    }
}

// Stores the message; the status of every failure.
std::int32_t Fail(std::string_view message) noexcept {
    TraceLogError(message);
    return CorvaleTypes::StatusFailed;
}

// The message holds the name whole, however long: in pieces it needs no memory.
std::int32_t FailToOpen(std::string_view beginning, std::string_view name,
                        std::int32_t ioMode) noexcept {
    const std::array<std::string_view, 6> line = {
        internal::kErrorPrefix,
        beginning,
        "\"",
        name,
        "\"",
        ioMode == kRead ? " for reading." : " for writing."};
    internal::TraceErrorLine(line);
    return CorvaleTypes::StatusFailed;
}

}  // namespace

std::int32_t FileOpen(std::int32_t fileUnit, std::string_view fileName, std::int32_t ioMode,
                      std::optional<std::int32_t> /*readFlag*/) noexcept {
    TextUnits::Close(fileUnit);
    if (StrFunctions::IsBlankOrNull(fileName) == 1) return Fail("FileOpen: File name is empty.");
    const std::optional<FileAccess> access = AccessFor(ioMode);
    if (!access) return Fail("FileOpen: Invalid ioMode for FileOpen.");

    const std::string_view name = internal::WithoutTrailingBlanks(fileName);
    if (internal::OpenUnit(fileUnit, {name, true}, *access)) return CorvaleTypes::StatusOk;
    return FailToOpen("FileOpen: Unable to open file ", name, ioMode);
}

std::int32_t FileOpenMT(std::string_view fileName, std::int32_t ioMode,
                        std::int32_t& fileUnit) noexcept {
    fileUnit = 0;
    if (StrFunctions::IsBlankOrNull(fileName) == 1) return Fail("FileOpen: File name is empty.");
    const std::optional<FileAccess> access = AccessFor(ioMode);
    if (!access || ioMode == kAppend) return Fail("FileOpenMT: Invalid ioMode for FileOpen.");

    const std::string_view name = internal::WithoutTrailingBlanks(fileName);
    fileUnit = internal::OpenFreshUnit({name, true}, *access);
    if (fileUnit != 0) return CorvaleTypes::StatusOk;
    return FailToOpen("FileOpenMT: Unable to open file ", name, ioMode);
}

}  // namespace corvale::FileIO
