// Internal to numeric/matrices/: not installed, may change in any commit.
//
// The solution from the factors: U'y = b down the rows, then U x = y (D U x = y) up the columns.
// Each sum is one chain of additions in the order of its index; the chains of a panel, and of the
// rows that a column meets, run side by side.
#pragma once

#include <corvale/numeric/matrices/CholeskyPanels.hpp>

namespace corvale::internal {

template <class L>
struct Solve {
    using V = typename L::Vector;

    CORVALE_INLINE void operator()(const CholeskyWork* work) const noexcept {
        Down(*work);
        Up(*work);
    }

    CORVALE_INLINE static void Down(const CholeskyWork& work) noexcept {
        for (std::size_t lane = 0; lane < work.n; lane += L::kPanel) {
            const double* panel = PanelAt<L>(work.u, work.steps, lane, 0);
            V s0{}, s1{};
            for (std::size_t i = 0; i < lane; ++i) {
                s0 += At<V>(panel + i * L::kPanel) * work.y[i];
                s1 += At<V>(panel + i * L::kPanel + L::kLanes) * work.y[i];
            }
            alignas(64) double sums[L::kPanel];
            At<V>(sums) = s0, At<V>(sums + L::kLanes) = s1;
            DownPanel(work, lane, panel, sums);
        }
    }

    CORVALE_INLINE static void DownPanel(const CholeskyWork& work, std::size_t lane,
                                         const double* panel, double* sums) noexcept {
        const std::size_t count = std::min(L::kPanel, work.n - lane);
        for (std::size_t c = 0; c < count; ++c) {
            const std::size_t k = lane + c;
            work.y[k] = DownElement(work, k, work.b[k], sums[c]);
            for (std::size_t later = c + 1; later < count; ++later)
                sums[later] += panel[k * L::kPanel + later] * work.y[k];
        }
    }

    CORVALE_INLINE static double DownElement(const CholeskyWork& work, std::size_t k, double b,
                                             double sum) noexcept {
        if (work.rootFree) return k == 0 ? b : b - sum;
        return k == 0 ? b / work.pivots[0] : work.reciprocals[k] * (b - sum);
    }

    CORVALE_INLINE static void Up(const CholeskyWork& work) noexcept {
        double* sums = work.squares;  // no longer needed for pivots
        std::fill(sums, sums + work.steps, 0.0);
        for (std::size_t after = (work.n + L::kPanel - 1) / L::kPanel; after > 0; --after) {
            const std::size_t lane = (after - 1) * L::kPanel;
            const std::size_t count = std::min(L::kPanel, work.n - lane);
            const double* panel = PanelAt<L>(work.v, work.steps, lane, 0);
            UpPanel(work, lane, count, panel, sums);
            if (count == L::kPanel) {
                for (std::size_t i = 0; i < lane; i += L::kLanes)
                    AddColumns(panel + i * L::kPanel, work.y + lane, sums + i);
            } else {
                for (std::size_t i = 0; i < lane; ++i)
                    for (std::size_t c = count; c > 0; --c)
                        sums[i] += panel[i * L::kPanel + c - 1] * work.y[lane + c - 1];
            }
        }
    }

    CORVALE_INLINE static void UpPanel(const CholeskyWork& work, std::size_t lane,
                                       std::size_t count, const double* panel,
                                       double* sums) noexcept {
        for (std::size_t c = count; c > 0; --c) {
            const std::size_t k = lane + c - 1;
            work.y[k] = k + 1 == work.n ? work.y[k] / work.pivots[k]
                                        : (work.y[k] - sums[k]) * work.reciprocals[k];
            for (std::size_t i = lane; i < k; ++i)
                sums[i] += panel[i * L::kPanel + c - 1] * work.y[k];
        }
    }

    /// Adds the terms of a panel's columns, last to first, to the sums of as many rows as there are
    /// lanes.
    CORVALE_INLINE static void AddColumns(const double* rows, const double* x,
                                          double* sums) noexcept {
        V sum = At<V>(sums);
        for (std::size_t c = L::kPanel; c > 0; c -= L::kLanes) {
            const double* from = rows + c - L::kLanes;
            const double* factor = x + c - L::kLanes;
            Block<L> block;
            block.Load([=](std::size_t r) { return from + r * L::kPanel; });
            block.Turn();
            if constexpr (L::kLanes == 4) sum += block.v3 * factor[3], sum += block.v2 * factor[2];
            sum += block.v1 * factor[1], sum += block.v0 * factor[0];
        }
        At<V>(sums) = sum;
    }
};

}  // namespace corvale::internal
