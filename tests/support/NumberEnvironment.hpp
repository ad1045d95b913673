// Test help: settings of a thread that change the result of a careless conversion.
#pragma once

#include <cfenv>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#if defined(__SSE2__)
#include <pmmintrin.h>
#endif

namespace corvale::test {

constexpr int kRoundingModes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

// A rounding mode; all but the usual one together with subnormals flushed to zero, where the
// processor can do that.
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
#if defined(__SSE2__)
        _mm_setcsr(sseBefore_);  // MinGW's fesetenv leaves it as it is
#endif
    }
    RoundingModeScope(const RoundingModeScope&) = delete;
    RoundingModeScope& operator=(const RoundingModeScope&) = delete;

  private:
    std::fenv_t before_;
#if defined(__SSE2__)
    unsigned sseBefore_ = _mm_getcsr();
#endif
};

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
