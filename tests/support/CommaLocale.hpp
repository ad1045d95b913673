// Test help: a setting of the process that changes the result of a careless conversion.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace corvale::test {

// A locale whose decimal point is a comma, made for the occasion.
class CommaLocaleScope {
  public:
    CommaLocaleScope() {
        directory_ = (std::filesystem::temp_directory_path() / "corvale_locale_XXXXXX").string();
        if (::mkdtemp(directory_.data()) == nullptr) return;
        const std::string target = directory_ + "/de_DE.UTF-8";
        // it warns and ends with 1 even when all is well
        const int status =
            std::system(("localedef -c -i de_DE -f UTF-8 '" + target + "' 2>/dev/null").c_str());
        static_cast<void>(status);
        ::setenv("LOCPATH", directory_.c_str(), 1);
        std::setlocale(LC_ALL, "de_DE.UTF-8");
    }
    ~CommaLocaleScope() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
        std::filesystem::remove_all(directory_);
    }
    CommaLocaleScope(const CommaLocaleScope&) = delete;
    CommaLocaleScope& operator=(const CommaLocaleScope&) = delete;

    [[nodiscard]] bool IsComma() const { return std::strtod("1,5", nullptr) == 1.5; }

  private:
    std::string directory_;
};

}  // namespace corvale::test
