// Shared by the models of the matrix procedures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvale::reference {

/// An n-by-n matrix by columns, counted from 1.
struct Square {
    explicit Square(std::int32_t n) : order(n), own(Count(), 0.0), elements(own.data()) {}
    Square(double* data, std::int32_t n) : order(n), elements(data) {}
    std::size_t Count() const {
        return static_cast<std::size_t>(order) * static_cast<std::size_t>(order);
    }
    Square(const Square&) = delete;  // `elements` may point into `own`
    Square& operator=(const Square&) = delete;
    double& operator()(std::int32_t i, std::int32_t j) const {
        return elements[std::ptrdiff_t{j - 1} * order + i - 1];
    }
    std::int32_t order;
    std::vector<double> own;
    double* elements;
};

}  // namespace corvale::reference
