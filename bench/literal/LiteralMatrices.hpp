// Test help: the matrix procedures as plain loops over contiguous arrays, column by column, every
// sum and every step in the order in which a result is defined. Tests compile them at -O0, the
// benchmarks like the library.
#pragma once

#include <cstdint>

namespace corvale::literal {

void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x);
void Cholesky2(const double* a, const double* b, std::int32_t n, double* inverse, double* x);
void MtxInv(const double* a, std::int32_t n, double* r);
void MInv(const double* a, std::int32_t n, double* r);
void SqrMtx2Lta(const double* square, std::int32_t n, double* packed);
void Lta2SqrMtx(const double* packed, std::int32_t n, double* square);

}  // namespace corvale::literal
