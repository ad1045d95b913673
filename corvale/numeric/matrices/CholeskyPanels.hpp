// Internal to numeric/matrices/: not installed, may change in any commit.
//
// What both solvers work on. The matrices lie in panels (VectorTiles.hpp): the upper factor U and
// the product D U with the columns side by side and the rows as steps, W (the inverse of U) and
// W D^-1 with the rows side by side and the columns as steps. So every sum of both solvers walks
// down two panels. The order is rounded up to whole tiles with ones on the diagonal and zeros
// beside it, which changes no element of the order asked for.
#pragma once

#include <corvale/numeric/matrices/VectorTiles.hpp>

#include <algorithm>
#include <cstddef>

namespace corvale::internal {

struct CholeskyWork {
    const double *a, *b;  // as passed
    bool rootFree;
    double* inverse;
    std::size_t n;
    std::size_t steps;             // n in whole tiles: the length of a panel
    double *u, *v, *w, *z;         // U, D U, W, W D^-1; v is u and z is w where no D is formed
    double *pivots, *reciprocals;  // the diagonal of U (of D), and 1 over it
    double* squares;               // the sums of D U^2 for the pivots still to come
    double* y;                     // the solution halfway, in the end the solution
};

// Cache blocking: kBlock rows of sums are advanced together, kChunk steps at a time, and stored in
// between. So the chunk of one panel stays in the first-level cache, and the panels that it is
// multiplied by in the second.
constexpr std::size_t kBlock = 64;
constexpr std::size_t kChunk = 256;

/// The element in lane `lane`, counted over all panels, and step `step`.
template <class L, class T>
CORVALE_INLINE T* PanelAt(T* panels, std::size_t steps, std::size_t lane,
                          std::size_t step) noexcept {
    return panels + (lane / L::kPanel * steps + step) * L::kPanel + lane % L::kPanel;
}

/// One product of panels: what is summed, and how far.
struct Sum {
    double* sums;     // a panel; its rows `firstRow` to `endRow` gain x(k) y(k, row)
    const double* x;  // a panel
    const double* y;  // panels; row r of `sums` takes lane r of them
    std::size_t steps;
    std::size_t firstRow, endRow;  // whole tiles
    std::size_t first, end;        // the steps k
    bool fresh;                    // the sums begin here
};

/// Adds the steps of `sum` to its rows, tile by tile.
template <class L>
struct AddSteps {
    CORVALE_INLINE void operator()(const Sum* sum) const noexcept {
        const double* x = sum->x + sum->first * L::kPanel;
        for (std::size_t row = sum->firstRow; row < sum->endRow; row += kTileRows) {
            Tile<L> tile;
            double* sums = sum->sums + row * L::kPanel;
            sum->fresh ? tile.Clear() : tile.Load(sums);
            tile.Add(x, PanelAt<L>(sum->y, sum->steps, row, sum->first), sum->end - sum->first);
            tile.Store(sums);
        }
    }
};

}  // namespace corvale::internal
