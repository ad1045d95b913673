#include <corvale/numeric/MatrixInversion.hpp>

#include <corvale/numeric/InversionPanels.hpp>
#include <corvale/numeric/InversionSteps.hpp>
#include <corvale/numeric/Scratch.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using namespace internal;  // NOLINT: everything below works on the internal panels

constexpr std::size_t kLongestPanelRow = FourLanes::kPanel;
// Up to here the work fits in the frame of the call.
constexpr std::size_t kOrderWithoutHeap = 16;
// From here panels are faster than single steps (MtxInv in bench/MatrixBench.cpp).
constexpr std::size_t kPanelOrder = 24;

constexpr std::size_t RoundUp(std::size_t n, std::size_t unit) noexcept {
    return (n + unit - 1) / unit * unit;
}

constexpr std::size_t StepsRoom(std::size_t n) noexcept {
    return RoundUp(n, kLongestPanelRow) * (n + 3);
}

constexpr std::size_t PanelsRoom(std::size_t n) noexcept {
    const std::size_t length = RoundUp(n, kLongestPanelRow);
    const std::size_t columns = std::min(length, kColumns);
    return StepsRoom(n) + length * kOuterSteps + kOuterSteps * kOuterSteps + columns * kOuterSteps +
           length * (kInnerSteps + 1) + kOuterSteps;
}

constexpr std::size_t Room(std::size_t n) noexcept {
    return n < kPanelOrder ? StepsRoom(n) : PanelsRoom(n);
}

bool IsSquare(const MatrixView<const double>& a) noexcept {
    return a.Rows() == a.Columns();
}

/// Calls `visit(i, j)` for every element of an r by c matrix, rows and columns counted from 1.
template <class Visit>
void ForEach(std::int32_t rows, std::int32_t columns, const Visit& visit) noexcept {
    for (std::int32_t j = 1; j <= columns; ++j)
        for (std::int32_t i = 1; i <= rows; ++i) visit(i, j);
}

void Fill(const MatrixView<const double>& a, const MatrixView<double>& result,
          double value) noexcept {
    ForEach(a.Rows(), a.Columns(), [&](auto i, auto j) { result(i, j) = value; });
}

void FillWithNaN(const MatrixView<const double>& a, const MatrixView<double>& result) noexcept {
    Fill(a, result, std::numeric_limits<double>::quiet_NaN());
}

/// Copies through memory of its own, so that the two may overlap.
void Copy(const MatrixView<const double>& a, const MatrixView<double>& result) noexcept {
    const auto rows = static_cast<std::size_t>(a.Rows());
    Scratch<64> scratch(rows * static_cast<std::size_t>(a.Columns()));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    double* to = scratch.Data();
    ForEach(a.Rows(), a.Columns(), [&](auto i, auto j) { *to++ = a(i, j); });
    const double* from = scratch.Data();
    ForEach(a.Rows(), a.Columns(), [&](auto i, auto j) { result(i, j) = *from++; });
}

/// One call: the matrix being reduced, either by columns or in panels of rows.
class Inversion {
  public:
    Inversion(double* room, std::size_t order, bool searched) noexcept
        : matrix_(room), order_(order), length_(RoundUp(order, kLongestPanelRow)) {
        w_ = matrix_ + length_ * order;
        record_.open = reinterpret_cast<std::int64_t*>(w_ + length_);
        record_.stepOfRow = reinterpret_cast<std::int32_t*>(w_ + 2 * length_);
        record_.order = order;
        record_.searched = searched;
    }

    /// Reduces a copy of `a`. Returns whether all steps could be made.
    bool Reduce(const MatrixView<const double>& a) noexcept {
        if (order_ >= kPanelOrder) {
            const Outcome outcome = ReduceInPanels(a);
            if (outcome != Outcome::kNotFinite) return outcome == Outcome::kDone;
        }
        Begin();
        panel_ = length_;
        Load(a);
        return OnWidestLanes<InvertBySteps>(matrix_, length_, &record_, w_) == order_;
    }

    /// Writes what was reached as it is.
    void Write(const MatrixView<double>& result) const noexcept {
        const auto n = static_cast<std::int32_t>(order_);
        for (std::int32_t j = 1; j <= n; ++j)
            for (std::int32_t i = 1; i <= n; ++i) result(i, j) = At(i, j);
    }

    /// Writes the inverse: element (s(r), j) is element (r, s(j)) of what was reached, s(r) being
    /// the step at which row r served as pivot row.
    void WriteInOrder(const MatrixView<double>& result) const noexcept {
        const auto n = static_cast<std::int32_t>(order_);
        const std::int32_t* step = record_.stepOfRow;
        for (std::int32_t j = 1; j <= n; ++j)
            for (std::int32_t r = 1; r <= n; ++r) result(step[r - 1], j) = At(r, step[j - 1]);
    }

  private:
    double& At(std::int32_t i, std::int32_t j) const noexcept {
        const auto row = static_cast<std::size_t>(i - 1), column = static_cast<std::size_t>(j - 1);
        return matrix_[row / panel_ * panel_ * order_ + column * panel_ + row % panel_];
    }

    void Begin() noexcept {
        std::fill(record_.stepOfRow, record_.stepOfRow + order_, 0);
        std::fill(record_.open, record_.open + order_, std::int64_t{-1});
    }

    void Load(const MatrixView<const double>& a) noexcept {
        const auto length =
            static_cast<std::int32_t>(RoundUp(order_, std::min(panel_, kLongestPanelRow)));
        for (std::int32_t j = 1; j <= a.Columns(); ++j) {
            for (std::int32_t i = 1; i <= a.Rows(); ++i) At(i, j) = a(i, j);
            for (std::int32_t i = a.Rows() + 1; i <= length; ++i) At(i, j) = 0.0;
        }
    }

    Outcome ReduceInPanels(const MatrixView<const double>& a) noexcept {
        InversionWork work{};
        work.matrix = matrix_;
        work.record = record_;
        work.w = matrix_ + StepsRoom(order_);
        work.pivotW = work.w + length_ * kOuterSteps;
        work.t = work.pivotW + kOuterSteps * kOuterSteps;
        work.columns = work.t + std::min(length_, kColumns) * kOuterSteps;
        work.rows = reinterpret_cast<std::size_t*>(work.columns + length_ * (kInnerSteps + 1));
        Begin();
        panel_ = PanelWidth();
        Load(a);
        return OnWidestLanes<InvertByPanels>(&work);
    }

    static std::size_t PanelWidth() noexcept {
        return HasAvx2() ? FourLanes::kPanel : TwoLanes::kPanel;
    }

    double* matrix_;
    double* w_;
    std::size_t order_, length_;
    std::size_t panel_ = 0;  // rows side by side: a whole column, or those of a panel
    PivotRecord record_{};
};

}  // namespace

void MtxInv(MatrixView<const double> a, MatrixView<double> result) noexcept {
    if (a.Rows() == 0 || a.Columns() == 0) return;
    if (result.Rows() < a.Rows() || result.Columns() < a.Columns()) return;
    if (!IsSquare(a)) return Copy(a, result);

    const auto n = static_cast<std::size_t>(a.Rows());
    Scratch<StepsRoom(kOrderWithoutHeap)> scratch(Room(n));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    Inversion inversion(scratch.Data(), n, true);
    inversion.Reduce(a) ? inversion.WriteInOrder(result) : inversion.Write(result);
}

void MInv(MatrixView<const double> a, MatrixView<double> result) noexcept {
    if (a.Rows() == 0 || a.Columns() == 0) return;
    if (result.Rows() < a.Rows() || result.Columns() < a.Columns()) return;
    if (!IsSquare(a)) return Fill(a, result, 0.0);

    const auto n = static_cast<std::size_t>(a.Rows());
    Scratch<StepsRoom(kOrderWithoutHeap)> scratch(Room(n));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    Inversion inversion(scratch.Data(), n, false);
    inversion.Reduce(a) ? inversion.Write(result) : Fill(a, result, 0.0);
}

}  // namespace corvale::GenFunctions
