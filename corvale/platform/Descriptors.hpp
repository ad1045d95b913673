// Internal to platform/: not installed, may change in any commit.
//
// Text files as the operating system sees them: opening with everything that can go wrong, reading
// and writing with interrupted, partial and refused calls taken care of. No call is a cancellation
// point.
#pragma once

#include <corvale/platform/CancelHold.hpp>

#ifndef _WIN32
#include <sys/uio.h>
#include <unistd.h>
#endif
#ifdef __linux__
#include <sys/syscall.h>
#endif
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace corvale::internal {

#ifdef _WIN32
constexpr std::string_view kLineEnd = "\r\n";

/// A part of what is written, as other systems declare it.
struct iovec {
    void* iov_base;
    std::size_t iov_len;
};
#else
constexpr std::string_view kLineEnd = "\n";
#endif

/// The descriptor of the process's standard output. It is not ours to close.
constexpr int kStandardOutput = 1;

enum class FileAccess : std::uint8_t {
    Read,     ///< must exist; from its start
    Replace,  ///< created or emptied; write only
    Append    ///< created or kept; write only, at its end
};

/// The name of a file. Trailing blanks are not part of it.
struct FileName {
    std::string_view text;
    bool hasBackslashes = false;  ///< that stand for slashes
};

/// An open file, or none. None is all zero: a table of them takes no space in the library's file.
struct TextFile {
    int descriptor = 0;  ///< 1 for standard output, above 2 for files
    FileAccess access = FileAccess::Read;
    bool mayRaiseSignals = false;        ///< writing can raise SIGPIPE or SIGXFSZ
    bool lacksLineEnd = false;           ///< the file ends inside a line
    std::optional<char> firstByte = {};  ///< was read while opening; precedes all further reading

    [[nodiscard]] bool IsOpen() const noexcept { return descriptor > 0; }
};

/// Opens a text file: a regular file, a pipe, a terminal, the null device; to write, any character
/// device. Directories, block devices and devices that never end are none. The descriptor is 3 or
/// higher and is closed on exec. A named pipe that nobody reads does not open for writing, one that
/// nobody writes does not open for reading after two seconds; where another process holds a lease
/// on the file, opening waits until it is given up. A file is emptied last: where opening fails,
/// nothing has changed.
///
/// Bad input  a name that is blank, holds a NUL or is longer than the system's paths opens nothing
[[nodiscard]] TextFile OpenTextFile(FileName name, FileAccess access) noexcept;

/// Reads what is there, up to the size of `buffer`: the number of bytes, 0 at the end, -1 on error.
[[nodiscard]] std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept;

/// Goes back to the first byte; false where there is no way back.
[[nodiscard]] bool GoToStart(int descriptor) noexcept;

void CloseFile(int descriptor) noexcept;

/// What became of a line.
enum class Outcome : std::uint8_t {
    Written,
    Refused,  ///< a pipe or terminal is full; nothing of the line was written
    Lost      ///< the system does not take it; `lacksLineEnd` says whether a part is in the file
};

/// Writes `parts` of a line in one system call wherever the system takes them whole. Half a line is
/// not left for another writer to end: once a pipe or terminal has taken some of it, and where it
/// `isBegun` already, the rest is waited for. `parts` is used up.
[[nodiscard]] Outcome WriteAll(TextFile& file, std::span<iovec> parts, bool isBegun) noexcept;

/// Waits until a pipe or terminal may have room again, a second at most. `refusals` counts the
/// waits of one line.
void WaitForRoom(int descriptor, int refusals) noexcept;

/// `text` as the system calls take it; they only read it.
inline iovec PartOf(std::string_view text) noexcept {
    return {const_cast<char*>(text.data()), text.size()};
}

#ifdef _WIN32
/// `WriteAll` of one text.
[[nodiscard]] Outcome WriteWhole(TextFile& file, std::string_view text) noexcept;
#else
/// Writes what a first call, which returned `written`, has left of `parts`.
[[nodiscard]] Outcome FinishLine(TextFile& file, std::span<iovec> parts, std::ptrdiff_t written,
                                 bool isBegun) noexcept;

/// write(), but no cancellation point: making it none by `CancelHold` costs a log line 2 % (bench:
/// LogLine).
inline std::ptrdiff_t WriteOnce(int descriptor, std::string_view text) noexcept {
#ifdef __linux__
    return syscall(SYS_write, descriptor, text.data(), text.size());
#else
    const CancelHold hold;
    return write(descriptor, text.data(), text.size());
#endif
}

/// `WriteAll` of a line in one text.
[[nodiscard]] inline Outcome WriteWhole(TextFile& file, std::string_view text) noexcept {
    iovec part = PartOf(text);
    if (file.mayRaiseSignals) [[unlikely]]
        return WriteAll(file, {&part, 1}, false);
    const std::ptrdiff_t written = WriteOnce(file.descriptor, text);
    if (written != static_cast<std::ptrdiff_t>(text.size())) [[unlikely]]
        return FinishLine(file, {&part, 1}, written, false);
    file.lacksLineEnd = false;
    return Outcome::Written;
}
#endif

}  // namespace corvale::internal
