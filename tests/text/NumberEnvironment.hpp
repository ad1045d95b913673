// Test help: the surroundings that spoil a careless conversion, and memory that ends at a page.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cfenv>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <pmmintrin.h>
#endif

namespace corvale::test {

constexpr int kRoundingModes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

// A rounding mode; all but the usual one together with subnormals flushed to zero, where that can
// be had.
class RoundingModeScope {
  public:
    explicit RoundingModeScope(int mode) {
        std::fegetenv(&before_);
        std::fesetround(mode);
#if defined(__SSE2__)
        if (mode != FE_TONEAREST) {
            _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
            _MM_SET_DENORMALS_ZERO_MODE(_MM_DENORMALS_ZERO_ON);
        }
#endif
    }
    ~RoundingModeScope() {
        std::fesetenv(&before_);
    }
    RoundingModeScope(const RoundingModeScope&) = delete;
    RoundingModeScope& operator=(const RoundingModeScope&) = delete;

  private:
    std::fenv_t before_;
};

// A locale whose decimal point is a comma, made for the occasion.
class CommaLocaleScope {
  public:
    CommaLocaleScope() {
        std::string directory = std::filesystem::temp_directory_path() / "corvale_locale_XXXXXX";
        directory_ = ::mkdtemp(directory.data());
        const std::string target = directory_ / "de_DE.UTF-8";
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
    std::filesystem::path directory_;
};

// A page between two that fault. Texts stand at its start or its end.
class GuardedPage {
  public:
    GuardedPage()
        : size_(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
          memory_(static_cast<char*>(
              ::mmap(nullptr, 3 * size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        ::mprotect(memory_ + size_, size_, PROT_READ | PROT_WRITE);
    }
    ~GuardedPage() { ::munmap(memory_, 3 * size_); }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;

    [[nodiscard]] std::span<char> AtStart(std::string_view text) { return Put(text, 0); }
    [[nodiscard]] std::span<char> AtEnd(std::string_view text) {
        return Put(text, size_ - text.size());
    }

  private:
    std::span<char> Put(std::string_view text, std::size_t at) {
        char* const place = memory_ + size_ + at;
        if (!text.empty()) std::memcpy(place, text.data(), text.size());
        return {place, text.size()};
    }

    std::size_t size_;
    char* memory_;
};

}  // namespace corvale::test
