// The inversions as plain loops over contiguous arrays, column by column, every step in the order that
// defines the result. Tests compile them at -O0, benchmarks like the library.
#pragma once

#include <cstdint>

namespace corvale::reference {

void MtxInv(const double* a, std::int32_t n, double* result);
void MInv(const double* a, std::int32_t n, double* result);

}  // namespace corvale::reference
