// Soak help: a folder of the run's own, and a count of what was not as it should be.
#pragma once

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace corvale::soak {

class Folder {
  public:
    Folder() : path_(std::filesystem::temp_directory_path() / "corvale-soak-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) std::abort();
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] std::string operator/(std::string_view name) const {
        return path_ + "/" + std::string(name);
    }

  private:
    std::string path_;
};

inline std::atomic<long> gDifferences{0};

inline void Expect(bool holds, const char* what) {
    if (!holds && gDifferences++ < 20) std::printf("not so: %s\n", what);
}

}  // namespace corvale::soak
