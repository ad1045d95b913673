// The Cholesky procedures as plain loops over contiguous arrays, column by column, every sum in the
// order that defines the result. Tests compile them at -O0, benchmarks like the library.
#pragma once

#include <cstdint>

namespace corvale::reference {

void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x);
void Cholesky2(const double* a, const double* b, std::int32_t n, double* inverse, double* x);

}  // namespace corvale::reference
