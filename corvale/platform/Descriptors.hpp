// Internal to platform/: not installed, may change in any commit.
//
// Text files as the operating system sees them: opening with everything that can go wrong, reading
// and writing with interrupted and partial calls taken care of.
#pragma once

#ifndef _WIN32
#include <sys/uio.h>
#include <unistd.h>
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

/// An open file, or none.
struct TextFile {
    int descriptor = -1;
    FileAccess access = FileAccess::Read;
    bool mayRaiseSignals = false;        ///< writing can raise SIGPIPE or SIGXFSZ
    bool lacksLineEnd = false;           ///< what stands at its end is not a whole line
    bool isStuck = false;                ///< was full, and the wait for room was in vain
    std::optional<char> firstByte = {};  ///< was read while opening; precedes all further reading

    [[nodiscard]] bool IsOpen() const noexcept { return descriptor >= 0; }
};

/// Opens a text file: a regular file, a pipe, a terminal, the null device; to write, any character
/// device. Directories, block devices and devices that never end are none. The descriptor is 3 or
/// higher and is closed on exec. Nothing blocks: a named pipe that nobody reads does not open for
/// writing, one that nobody writes does not open for reading after two seconds.
///
/// Bad input  a name that is blank, holds a NUL or is longer than the system's paths opens nothing
[[nodiscard]] TextFile OpenTextFile(std::string_view name, FileAccess access) noexcept;

/// Reads what is there, up to the size of `buffer`: the number of bytes, 0 at the end, -1 on error.
[[nodiscard]] std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept;

/// Goes back to the first byte; false where there is no way back.
[[nodiscard]] bool GoToStart(int descriptor) noexcept;

void CloseFile(int descriptor) noexcept;

/// Writes `parts`, which end in a line end, in one system call wherever the system takes them
/// whole. Returns false if that was impossible; `lacksLineEnd` of `file` then says whether a part
/// of a line is left behind. A full pipe is given one second to make room, and none again until it
/// has taken something. `parts` is used up.
[[nodiscard]] bool WriteAll(TextFile& file, std::span<iovec> parts) noexcept;

#ifdef _WIN32
/// `WriteAll` of one text.
[[nodiscard]] bool WriteWhole(TextFile& file, std::string_view text) noexcept;
#endif

/// `text` as the system calls take it; they only read it.
inline iovec PartOf(std::string_view text) noexcept {
    return {const_cast<char*>(text.data()), text.size()};
}

#ifndef _WIN32
// What `WriteWhole` is made of: the first call where the file may raise signals, and all that
// follows a first call which returned `written`.
[[nodiscard]] std::ptrdiff_t WriteQuietly(TextFile& file, std::string_view text) noexcept;
[[nodiscard]] bool GoOnWriting(TextFile& file, std::string_view text,
                               std::ptrdiff_t written) noexcept;

/// `WriteAll` of one text. Inline, since the processor forgets during a system call where its
/// callers go on, and each of them costs some nanoseconds (bench: LogLine).
[[nodiscard]] inline bool WriteWhole(TextFile& file, std::string_view text) noexcept {
    if (file.mayRaiseSignals) [[unlikely]]
        return GoOnWriting(file, text, WriteQuietly(file, text));
    const std::ptrdiff_t written = write(file.descriptor, text.data(), text.size());
    if (written != static_cast<std::ptrdiff_t>(text.size())) [[unlikely]]
        return GoOnWriting(file, text, written);
    file.isStuck = false;
    file.lacksLineEnd = false;
    return true;
}
#endif

}  // namespace corvale::internal
