// FileIO: the last error and the last informational message of the process, the log file that they
// are written to, and the opening of text files.
//
// A procedure that fails stores a message with TraceLogError, beginning with its own name and a
// colon, and returns status 2. A success never clears the stored message. The log file is opened
// and closed by the C functions OpenLogFile and CloseLogFile; while it is open each message is also
// one line in it: "Error-" and the message for an error, the message alone otherwise, in full
// length, trailing blanks included.
//
// What is certain of a line
//
// When TraceLogError and TraceLogInfo return, the line has been handed to the system by one
// write() to a file that is opened to append. From this follows:
//
// Killed process   loses no line whose call has returned. The line that was being written may be
//                  cut, as the last one that this process leaves
// Power cut        may lose lines: the system keeps them in memory for some seconds. Who needs them
//                  safe opens the log on a file system that is mounted with "sync"
// Several threads  lines of all threads are whole
// Other processes  may share a log: their lines are whole, in a file of any length, in a pipe up to
//                  4,096 bytes with the line end, and none is written over; each process that opens
//                  the log by OpenLogFile empties it. After a part of a line that another process
//                  has left (killed, or out of space) a line begins on the same line
// Full disk        or the limit of a file's size: loses lines, without an error; later lines are
//                  written again once they can be, on lines of their own. A process that limits
//                  file sizes at or below the size of its open log must ignore SIGXFSZ itself
// Paused reader    of a pipe, or a stopped terminal: the call waits, as long as somebody reads
// Reader gone      loses lines, without an error and without SIGPIPE, until another one has come
// Removed log      goes on taking lines
// Little memory    a line of over 1,000 characters with dozens of line ends inside takes several
//                  calls of write() where no memory is left for a copy
//
// Message  LastLoggedErrMsg  LogLastInfoMsg  TraceLogError  TraceLogInfo  LogFileUnit
// Open     FileOpen  FileOpenMT
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace corvale::FileIO {

/// A message of 128 characters, all blank at first.
///
/// Threads    any number at once: a message that is read while another is stored may mix the two
class CORVALE_API MessageStore {
  public:
    /// Copies the message to `message`, blank-filled, without a terminator.
    void Load(std::span<char, 128> message) const noexcept;

    /// Keeps the first 128 characters of `message`, blank-filled.
    void Store(std::string_view message) noexcept;

  private:
    static constexpr std::uint64_t kBlanks = 0x2020202020202020;  // eight blanks
    using Word = std::atomic<std::uint64_t>;

    std::array<Word, 16> words_ = {Word{kBlanks}, Word{kBlanks}, Word{kBlanks}, Word{kBlanks},
                                   Word{kBlanks}, Word{kBlanks}, Word{kBlanks}, Word{kBlanks},
                                   Word{kBlanks}, Word{kBlanks}, Word{kBlanks}, Word{kBlanks},
                                   Word{kBlanks}, Word{kBlanks}, Word{kBlanks}, Word{kBlanks}};
};

/// The last error message. Stored and logged under the named lock "cs_logerrormessage".
extern CORVALE_API MessageStore LastLoggedErrMsg;

/// The last informational message. Stored and logged under the named lock "cs_loginfomessage".
extern CORVALE_API MessageStore LogLastInfoMsg;

/// The unit of the log file: 6 while one is open and after opening one has failed, 0 when the
/// library is loaded and after CloseLogFile.
extern CORVALE_API std::atomic<std::int32_t> LogFileUnit;

/// Stores an error message and writes its line, "Error-" and the message, to an open log.
///
/// Width      any: 128 characters are stored, the line holds all. CR and LF are stored as they are
///            and become blanks in the line
/// Bad input  a blank or empty message clears the store and writes no line
/// Threads    any number at once, also in a forked child and in handlers of fork; one message at a
///            time holds the lock "cs_logerrormessage", which must not be held by the caller. No
///            cancellation point. Not from a signal handler
CORVALE_API void TraceLogError(std::string_view message) noexcept;

/// Stores an informational message and writes it as one line to an open log.
///
/// Width      as `TraceLogError`
/// Bad input  a blank message clears the store and is written too, an empty one as an empty line
/// Threads    as `TraceLogError`, with the lock "cs_loginfomessage"
CORVALE_API void TraceLogInfo(std::string_view message) noexcept;

/// Opens a text file on `fileUnit`, any number, after closing what was open there. Backslashes of
/// the name are taken as slashes; trailing blanks are not part of it, leading ones are.
/// Directories, block devices and devices that never end are no text files; opening never waits for
/// a named pipe longer than two seconds (reading one then waits for its writer as long as that
/// lives). Where another process holds a lease on the file it waits until that is given up. Lines
/// are read and written with TextUnits. A file is emptied when nothing can fail any more.
///
/// `ioMode`     0 to write (the file is created or emptied), 1 to read (it must exist), 2 to append
///              (it is created or kept)
/// `readFlag`   makes no difference
/// Width        any: names longer than the system takes open nothing
/// Bad input    status 2 and a message: "FileOpen: File name is empty." (tested first), "FileOpen:
///              Invalid ioMode for FileOpen.", "FileOpen: Unable to open file " with the name as it
///              was given, in quotes, and " for reading." or " for writing."; a name that holds a
///              NUL opens nothing. `fileUnit` is then closed, and no file has changed
/// Threads      as TextUnits: safe, but two callers that use one number disturb each other
[[nodiscard]] CORVALE_API std::int32_t FileOpen(
    std::int32_t fileUnit, std::string_view fileName, std::int32_t ioMode,
    std::optional<std::int32_t> readFlag = std::nullopt) noexcept;

/// Opens a text file on a number that no open unit has and gives the number in `fileUnit`; 0 when
/// nothing was opened. As `FileOpen`, but nothing is closed first and `ioMode` 2 is not allowed.
///
/// Width      as `FileOpen`
/// Bad input  as `FileOpen`, with messages that begin "FileOpenMT: ", but for
///            "FileOpen: File name is empty."
/// Threads    any number at once
[[nodiscard]] CORVALE_API std::int32_t FileOpenMT(std::string_view fileName, std::int32_t ioMode,
                                                  std::int32_t& fileUnit) noexcept;

}  // namespace corvale::FileIO
