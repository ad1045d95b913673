// Text that is printed later than it is known, without memory that grows with it.
#pragma once

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace corvale::tool {

/// Small texts stay in memory, a file without a name takes the rest.
class Spool {
  public:
    Spool() = default;
    ~Spool() {
        if (file_ != nullptr) std::fclose(file_);
    }
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    [[nodiscard]] bool IsEmpty() const { return isEmpty_; }
    void Add(std::string_view text) {
        isEmpty_ = false;
        waiting_.append(text);
        if (waiting_.size() >= kBlock) MoveToFile();
    }
    /// Prints what was added, and begins anew.
    void Print() {
        if (file_ != nullptr) PrintFile();
        std::cout << waiting_;
        waiting_.clear();
        isEmpty_ = true;
    }

  private:
    static constexpr std::size_t kBlock = 0x40000;

    void MoveToFile() {
        if (file_ == nullptr) file_ = std::tmpfile();
        if (file_ == nullptr ||
            std::fwrite(waiting_.data(), 1, waiting_.size(), file_) != waiting_.size())
            throw std::runtime_error("there is no space for a temporary file");
        waiting_.clear();
    }
    void PrintFile() {
        std::rewind(file_);
        std::string block(kBlock, ' ');
        while (const std::size_t count = std::fread(block.data(), 1, kBlock, file_))
            std::cout.write(block.data(), static_cast<std::streamsize>(count));
        if (std::ferror(file_) != 0)
            throw std::runtime_error("the temporary file cannot be read back");
        std::fclose(file_);
        file_ = nullptr;
    }

    std::FILE* file_ = nullptr;
    std::string waiting_;
    bool isEmpty_ = true;
};

}  // namespace corvale::tool
