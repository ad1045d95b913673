// TextUnits: the text files of the process by unit number, one table for every library of the
// family.
//
// Files are opened by `FileIO::FileOpen` and `FileOpenMT`; what they opened is read, written,
// rewound and closed here. A unit either reads or writes. Unit 6 is the process's standard output
// until something is opened on it or it is closed; the log file is opened on it. Unit 3 is the one
// that input files are loaded through. As many units may be open as the process may open files.
//
// A line ends with LF or with CR LF, and is written with the one of the system. A CR elsewhere, a
// NUL, a tab, bytes above 127 are ordinary characters. The last line of a file counts without a
// line end too.
//
// Bad input  a unit that is not open, or open for the other direction: false, and nothing changes
// Threads    the table is safe from any thread and in a forked child, and lines of several threads
//            to one unit come out whole; reading and rewinding one unit, or closing it while
//            another thread reads it, is for its owner to serialise. No call is a cancellation
//            point. Not from a signal handler
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::TextUnits {

/// True while a file, or for unit 6 the standard output, is connected to `unit`.
[[nodiscard]] CORVALE_API bool IsOpen(std::int32_t unit) noexcept;

/// Closes `unit`; does nothing when it is not open. Standard output itself stays open to the
/// process.
CORVALE_API void Close(std::int32_t unit) noexcept;

/// Goes back to the first line of a unit that reads. A pipe or terminal cannot go back: true only
/// as long as nothing has been read from it.
[[nodiscard]] CORVALE_API bool Rewind(std::int32_t unit) noexcept;

/// Reads the next line into `line`, waiting for the writer of a pipe as long as that lives: false
/// at the end of the file (`line` keeps what it held) and when the system reports an error (what
/// `line` holds then is unspecified).
///
/// Width      the line is cut or blank-filled to `line.size()`; what was cut off is skipped,
///            whatever its length
[[nodiscard]] CORVALE_API bool ReadLine(std::int32_t unit, std::span<char> line) noexcept;

/// Writes `text` and a line end: both have been handed to the system when it returns. CR and LF
/// inside `text` become blanks, so that one text is one line. Where an earlier line could not be
/// written whole, or the file's last line had no end when it was opened, the new one starts on a
/// line of its own. Where a pipe or terminal is full, it waits as long as somebody reads there.
/// Meanwhile other threads may use all units; closing this one ends the wait, unless a part of the
/// line is written already or the unit is the standard output.
///
/// Width      any; trailing blanks are written. In one system call, so that lines of several
///            processes do not mix: in a file lines of any length, in a pipe those of at most 4,096
///            bytes with their line end (Linux; 512 are certain elsewhere). Only without memory for
///            a copy, a line with dozens of line ends inside takes several calls
/// Bad input  false when the system does not take the whole line (disk full, nobody reads the
///            pipe); the unit stays open, and later lines are written again once they can be
[[nodiscard]] CORVALE_API bool WriteLine(std::int32_t unit, std::string_view text) noexcept;

}  // namespace corvale::TextUnits
