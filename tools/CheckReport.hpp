// What `corvale check` prints of a file: for people, as the lines come, or as one JSON object.
#pragma once

#include "CardLines.hpp"
#include "Input.hpp"

#include <memory>
#include <string>

namespace corvale::tool {

enum class CheckStyle : std::uint8_t { Text, AllLines, Json, Quiet };

/// Takes what is found out about the files, one file after the other.
class CheckReport {
  public:
    virtual ~CheckReport() = default;

    virtual void BeginFile(const std::string& name) = 0;
    virtual void TakeLine(const Line& line, const Explained& explained) = 0;
    virtual void EndFile(const FileContent& content) = 0;
    /// Instead of EndFile: the file cannot be read, or not to its end.
    virtual void Unreadable(const std::string& why) = 0;
    /// After the last file.
    virtual void Finish() {}
    /// Whether `TakeLine` would print something.
    [[nodiscard]] virtual bool Wants(const Explained& explained) const = 0;
};

[[nodiscard]] std::unique_ptr<CheckReport> MakeCheckReport(CheckStyle style);

}  // namespace corvale::tool
