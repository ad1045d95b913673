// The two workloads of MatrixBench.cpp in Eigen.
#pragma once

#include <cstdint>

namespace corvale::bench {

void EigenCholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x);
void EigenInverse(const double* a, std::int32_t n, double* result);

}  // namespace corvale::bench
