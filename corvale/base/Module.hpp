// What every module header includes first: how declarations are marked, and a clear word where the
// compiler is set to an older language.
#pragma once

#if __cplusplus < 202002L
#error "Corvale's C++ headers need C++20: compile with -std=c++20 (the C API, Corvale.h, does not)"
#endif

#include <corvale/base/Export.h>
