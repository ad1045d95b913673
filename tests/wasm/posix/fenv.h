/* Test help for WebAssembly, which rounds to nearest alone. */
#pragma once

#include_next <fenv.h>

#define FE_UPWARD FE_TONEAREST
#define FE_DOWNWARD FE_TONEAREST
#define FE_TOWARDZERO FE_TONEAREST
