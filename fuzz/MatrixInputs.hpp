// What the targets of matrices share: any matrix, and what lies between the elements of a view.
#pragma once

#include "Targets.hpp"

#include "reference/inputs/MatrixKinds.hpp"

namespace corvale::fuzz {

constexpr double kAround = 0x1.23456789abcdep+77;  // what lies between the elements of a view

// One of the kinds, with so many elements changed as the input has bytes for.
inline reference::Matrix AnyMatrix(Choices& in, std::int32_t n, const Choices& changes) {
    reference::Matrix a = in.Pick(reference::kMatrixKinds).make(n);
    Choices rest = changes;
    while (rest.Left() > 2) a[rest.Byte() % a.size()] = rest.Real();
    return a;
}

}  // namespace corvale::fuzz
