// What `corvale check` prints of its files. Everything is printed as the lines come: memory does not
// grow with the files, however much there is to say of them.
#pragma once

#include "CardLines.hpp"
#include "Input.hpp"

#include <memory>
#include <string>

namespace corvale::tool {

enum class CheckStyle : std::uint8_t { Text, AllLines, Json, Quiet };

/// Takes what is found out about the files, one file after the other. This one prints nothing but
/// errors; each format is a class derived from it.
class CheckReport {
  public:
    CheckReport() = default;
    virtual ~CheckReport() = default;
    CheckReport(const CheckReport&) = delete;
    CheckReport& operator=(const CheckReport&) = delete;

    virtual void BeginFile(const std::string& name) { name_ = name; }
    virtual void TakeLine(const Line& /*line*/, const Explained& /*explained*/) {}
    virtual void EndFile(const FileContent& /*content*/) {}
    /// Instead of EndFile: the file cannot be read, or not to its end.
    virtual void Unreadable(const std::string& why);
    /// After the last file.
    virtual void Finish() {}
    /// Whether `TakeLine` would print something.
    [[nodiscard]] virtual bool Wants(const Explained& /*explained*/) const { return false; }

  protected:
    [[nodiscard]] const std::string& FileName() const { return name_; }

  private:
    std::string name_;
};

[[nodiscard]] std::unique_ptr<CheckReport> MakeCheckReport(CheckStyle style);

/// One JSON object for all files.
[[nodiscard]] std::unique_ptr<CheckReport> MakeJsonReport();

}  // namespace corvale::tool
