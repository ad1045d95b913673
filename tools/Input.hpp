// Input of the program: files and standard input, a line at a time, byte for byte. The library
// takes lines without their ends and cut to a width; to explain a file, what was cut off must be
// seen, too.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace corvale::tool {

/// What the system says of an error number, in English.
[[nodiscard]] std::string SystemReason(int error);

/// One line without its end.
struct Line {
    std::string text;          ///< at most as much as was asked for
    std::size_t length = 0;    ///< of the whole line, a CR before its LF not counted
    bool hasReturn = false;    ///< ended with CR LF, not with LF alone
    std::uint64_t number = 0;  ///< counted from 1
};

/// A text file that is open for reading, or the reason why it is not. It opens what the library
/// opens: regular files, pipes, terminals and the null device; backslashes in its name are slashes.
class InputFile {
  public:
    /// "-" is standard input. A named pipe is given two seconds to find its writer.
    explicit InputFile(const std::string& name);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Why the file could not be opened or read on; nothing while all is well.
    [[nodiscard]] const std::optional<std::string>& Failure() const { return failure_; }
    /// The size of a regular file; nothing for a pipe.
    [[nodiscard]] std::optional<std::uint64_t> Size() const { return size_; }
    [[nodiscard]] std::uint64_t BytesRead() const { return bytesRead_; }
    /// Where in the file the next line begins.
    [[nodiscard]] std::uint64_t Position() const { return bytesRead_ - (end_ - begin_); }

    /// Reads the next line, of which `line` keeps `most` bytes. False at the end and on failure.
    [[nodiscard]] bool ReadLine(Line& line, std::size_t most);

    /// Calls `work` whenever more input is about to be waited for.
    void BeforeWaiting(std::function<void()> work) { beforeWaiting_ = std::move(work); }

  private:
    void Open(const std::string& name);
    void Fail(int error);
    [[nodiscard]] bool Fill();
    [[nodiscard]] bool WaitForWriter();

    int descriptor_ = -1;
    std::optional<std::string> failure_;
    std::optional<std::uint64_t> size_;
    std::uint64_t bytesRead_ = 0;
    std::uint64_t lines_ = 0;
    std::array<char, 0x10000> buffer_;
    std::size_t begin_ = 0, end_ = 0;  // what of the buffer is still to be handed out
    std::function<void()> beforeWaiting_ = [] {};
};

}  // namespace corvale::tool
