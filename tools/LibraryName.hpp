// Names of input files on their way to the library. The C API takes 512 printable characters without
// blanks at the ends; it would cut any other name and open another file. Such a file is opened here
// and goes to the library by its descriptor.
#pragma once

#include <optional>
#include <string>

namespace corvale::tool {

/// The path that the system is asked for: "-" is standard input, backslashes are slashes.
[[nodiscard]] std::string InputPath(const std::string& file);

/// A name that the library opens `file` by, for as long as this lives.
class LibraryName {
  public:
    explicit LibraryName(const std::string& file);
    ~LibraryName();
    LibraryName(const LibraryName&) = delete;
    LibraryName& operator=(const LibraryName&) = delete;

    /// Why there is none.
    [[nodiscard]] const std::optional<std::string>& Failure() const { return failure_; }
    [[nodiscard]] const std::string& Text() const { return text_; }
    /// Whether it is not the file's own name.
    [[nodiscard]] bool IsAlias() const { return descriptor_ >= 0; }

  private:
    int descriptor_ = -1;
    std::string text_;
    std::optional<std::string> failure_;
};

}  // namespace corvale::tool
