// A message: its line in the log, then the store, both under the lock of its kind.
//
// The line comes first: a process that is killed between the two has lost nothing that a reader of
// the log could miss. Nothing is buffered, since a log is read after a crash. What this promises to
// callers is at the head of FileIO.hpp.
//
// A message may come in pieces, because a name of any length can be in it and no memory is taken:
// the pieces meet in the line, and as far as they fit in the store.
#include <corvale/core/LogFile.hpp>

#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/MessageLocks.hpp>
#include <corvale/platform/TextUnits.hpp>
#include <corvale/platform/ThreadLock.hpp>
#include <corvale/platform/UnitFiles.hpp>
#include <corvale/text/FixedWidthText.hpp>

#include <algorithm>
#include <array>
#include <cstddef>

namespace corvale::FileIO {

constinit std::atomic<std::int32_t> LogFileUnit{0};

namespace {

constexpr std::int32_t kNoLog = 0;
constexpr std::int32_t kLogUnit = 6;

using internal::Pieces;

bool IsBlank(Pieces pieces) noexcept {
    return std::all_of(pieces.begin(), pieces.end(), [](std::string_view piece) {
        return StrFunctions::IsBlankOrNull(piece) == 1;
    });
}

// Joins as much of the pieces as the store holds, which takes one text.
void StorePieces(Pieces pieces, MessageStore& store) noexcept {
    if (pieces.size() == 1) return store.Store(pieces.front());
    std::array<char, CorvaleTypes::MessageWidth> message;
    std::size_t end = 0;
    for (const std::string_view piece : pieces)
        end += piece.copy(message.data() + end, message.size() - end);
    store.Store({message.data(), end});
}

// A line that the system does not take is lost: there is nobody to tell. Always inline for the
// reason given at `internal::WriteLine`.
[[gnu::always_inline]] inline void WriteToLog(Pieces pieces) noexcept {
    const std::int32_t unit = LogFileUnit.load(std::memory_order_relaxed);
    if (unit != kNoLog) static_cast<void>(internal::WriteLine(unit, pieces));
}

void CloseOpenLog() noexcept {
    const std::int32_t unit = LogFileUnit.load(std::memory_order_relaxed);
    if (unit != kNoLog) TextUnits::Close(unit);
}

}  // namespace

void TraceLogError(std::string_view message) noexcept {
    internal::TraceErrorLine(std::array{internal::kErrorPrefix, message});
}

// Without the stack protector, which costs a line 2 % (bench: LogLine): the one array of the frame
// is filled by ShortLine, which compares the length first.
__attribute__((no_stack_protector)) void TraceLogInfo(std::string_view message) noexcept {
    const internal::ThreadLock guard(internal::InfoMessageMutex());
    WriteToLog({&message, 1});
    LogLastInfoMsg.Store(message);
}

}  // namespace corvale::FileIO

namespace corvale::internal {

using namespace FileIO;

void TraceErrorLine(std::span<const std::string_view> line) noexcept {
    const ThreadLock guard(ErrorMessageMutex());
    const Pieces message = line.subspan(1);
    if (!IsBlank(message)) WriteToLog(line);
    StorePieces(message, LastLoggedErrMsg);
}

std::int32_t OpenLog(std::string_view name) noexcept {
    CloseOpenLog();
    LogFileUnit.store(kLogUnit, std::memory_order_relaxed);
    if (OpenUnit(kLogUnit, {name}, FileAccess::Replace)) return CorvaleTypes::StatusOk;
    TraceLogError("OpenLogFile: log file failed to open.");
    return CorvaleTypes::StatusFailed;
}

void CloseLog() noexcept {
    CloseOpenLog();
    LogFileUnit.store(kNoLog, std::memory_order_relaxed);
    TraceLogError("");
}

}  // namespace corvale::internal
