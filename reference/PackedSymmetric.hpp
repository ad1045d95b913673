// Packing and unpacking a symmetric matrix, over contiguous arrays, column by column.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvale::reference {

inline void SqrMtx2Lta(const double* square, std::int32_t n, double* packed) {
    for (std::int32_t i = 0; i < n; ++i)
        for (std::int32_t j = 0; j <= i; ++j) *packed++ = square[std::ptrdiff_t{j} * n + i];
}

inline void Lta2SqrMtx(const double* packed, std::int32_t n, double* square) {
    for (std::int32_t i = 0; i < n; ++i)
        for (std::int32_t j = 0; j <= i; ++j)
            square[std::ptrdiff_t{j} * n + i] = square[std::ptrdiff_t{i} * n + j] = *packed++;
}

}  // namespace corvale::reference
