// Test help: settings of a thread that change the result of a careless conversion.
#pragma once

#include <cfenv>

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

}  // namespace corvale::test
