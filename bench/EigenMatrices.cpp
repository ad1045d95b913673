// Eigen as a user of this machine would build it: with every instruction the processor has.
#include "EigenMatrices.hpp"

#include <Eigen/Dense>

namespace corvale::bench {

using Square = Eigen::Map<Eigen::MatrixXd>;
using ConstSquare = Eigen::Map<const Eigen::MatrixXd>;
using Column = Eigen::Map<Eigen::VectorXd>;
using ConstColumn = Eigen::Map<const Eigen::VectorXd>;

void EigenCholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x) {
    const Eigen::LLT<Eigen::MatrixXd, Eigen::Upper> llt(ConstSquare(a, n, n));
    Column(x, n) = llt.solve(ConstColumn(b, n));
    Square(inverse, n, n) = llt.solve(Eigen::MatrixXd::Identity(n, n));
}

void EigenInverse(const double* a, std::int32_t n, double* result) {
    Square(result, n, n) = ConstSquare(a, n, n).partialPivLu().inverse();
}

}  // namespace corvale::bench
