#include <corvale/numeric/MatrixInversion.hpp>

#include <corvale/numeric/Scratch.hpp>
#include <corvale/numeric/matrices/InversionPanels.hpp>
#include <corvale/numeric/matrices/InversionSteps.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace corvale::GenFunctions {
namespace {

using namespace internal;  // NOLINT: everything below works on the internal panels

// Up to here the order is known to the compiler, in fours, and the matrix stays in registers.
constexpr std::size_t kSmallOrder = 12;
// From here panels are faster than single steps (MtxInv in bench/MatrixBench.cpp).
constexpr std::size_t kPanelOrder = 24;

constexpr std::size_t StepsLength(std::size_t n) noexcept {
    return RoundUp(n, kLongestPanelRow) * (n + 3);
}

constexpr std::size_t PanelsLength(std::size_t n) noexcept {
    const std::size_t length = RoundUp(n, kLongestPanelRow);
    const std::size_t columns = std::min(length, kColumns);
    return StepsLength(n) + length * kOuterSteps + kOuterSteps * kOuterSteps +
           columns * kOuterSteps + length * (kInnerSteps + 1) + kOuterSteps;
}

constexpr std::size_t ScratchLength(std::size_t n) noexcept {
    return n < kPanelOrder ? StepsLength(n) : PanelsLength(n);
}

bool IsSquare(const MatrixView<const double>& a) noexcept {
    return a.Rows() == a.Columns();
}

/// Calls `visit(i, j)` for every element of an r by c matrix, rows and columns counted from 1.
template <class Visit>
void ForEach(std::int32_t rows, std::int32_t columns, const Visit& visit) noexcept {
    for (std::int32_t j = 0; j < columns; ++j)
        for (std::int32_t i = 0; i < rows; ++i) visit(i + 1, j + 1);
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
    Scratch<double, 64> scratch(rows * static_cast<std::size_t>(a.Columns()));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    double* to = scratch.Data();
    ForEach(a.Rows(), a.Columns(), [&](auto i, auto j) { *to++ = a(i, j); });
    const double* from = scratch.Data();
    ForEach(a.Rows(), a.Columns(), [&](auto i, auto j) { result(i, j) = *from++; });
}

/// One call: the matrix being reduced, either by columns or in panels of rows.
class Inversion {
  public:
    Inversion(double* scratch, std::size_t order, bool searched) noexcept
        : matrix_(scratch), order_(order), length_(RoundUp(order, kLongestPanelRow)) {
        w_ = matrix_ + length_ * order;
        record_.open = reinterpret_cast<std::int64_t*>(w_ + length_);
        record_.stepOfRow = reinterpret_cast<std::int32_t*>(w_ + 2 * length_);
        record_.order = order;
        record_.searched = searched;
    }

    /// Reduces a copy of `a`. Returns whether all steps could be made.
    [[gnu::noinline]] bool Reduce(const MatrixView<const double>& a) noexcept {
        if (order_ >= kPanelOrder) {
            const Outcome outcome = ReduceInPanels(a);
            if (outcome != Outcome::NotFinite) return outcome == Outcome::Done;
        }
        Begin();
        panel_ = order_ <= kSmallOrder ? RoundUp(order_, 4) : length_;
        Load(a);
        return ReduceBySteps() == order_;
    }

    /// Writes what was reached as it is.
    [[gnu::noinline]] void Write(const MatrixView<double>& result) const noexcept {
        ForEachPanelColumn(
            [&](std::size_t row, std::size_t column, std::size_t count, const double* from) {
                double* to = ElementAt(result, row, column);
                for (std::size_t i = 0; i < count; ++i)
                    to[Offset(i) * result.RowStride()] = from[i];
            });
    }

    /// Writes the inverse: element (s(r), j) is element (r, s(j)) of what was reached, s(r) being
    /// the step at which row r served as pivot row.
    void WriteInOrder(const MatrixView<double>& result) const noexcept {
        const std::int32_t* step = record_.stepOfRow;
        for (std::size_t j = 0; j < order_; ++j) {
            double* to = ElementAt(result, 0, j);
            const std::ptrdiff_t column = Offset(step[j] - 1) * Offset(panel_);
            for (std::size_t row = 0; row < order_; row += panel_) {
                const double* from = matrix_ + row * order_ + column;
                const std::size_t count = std::min(panel_, order_ - row);
                for (std::size_t i = 0; i < count; ++i)
                    to[Offset(step[row + i] - 1) * result.RowStride()] = from[i];
            }
        }
    }

  private:
    template <class T>
    static std::ptrdiff_t Offset(T count) noexcept {
        return static_cast<std::ptrdiff_t>(count);
    }

    /// The element of `view` in row `row` and column `column`, counted from 0.
    template <class T>
    static T* ElementAt(const MatrixView<T>& view, std::size_t row, std::size_t column) noexcept {
        return view.Data() + Offset(row) * view.RowStride() + Offset(column) * view.ColumnStride();
    }

    /// Calls `visit(row, column, count, elements)` for every column of every panel, `count` being
    /// how many of its rows belong to the matrix.
    template <class Visit>
    void ForEachPanelColumn(const Visit& visit) const noexcept {
        for (std::size_t row = 0; row < order_; row += panel_)
            for (std::size_t column = 0; column < order_; ++column)
                visit(row, column, std::min(panel_, order_ - row),
                      matrix_ + row * order_ + column * panel_);
    }

    void Begin() noexcept {
        std::fill(record_.stepOfRow, record_.stepOfRow + order_, 0);
        std::fill(record_.open, record_.open + order_, std::int64_t{-1});
    }

    void Load(const MatrixView<const double>& a) noexcept {
        ForEachPanelColumn([&](std::size_t row, std::size_t column, std::size_t count, double* to) {
            const double* from = ElementAt(a, row, column);
            for (std::size_t i = 0; i < count; ++i) to[i] = from[Offset(i) * a.RowStride()];
            for (std::size_t i = count; i < panel_; ++i) to[i] = 0.0;
        });
    }

    std::size_t ReduceBySteps() noexcept {
        if (order_ <= 4) return OnBestPath<Invert4, FourLanes, TwoLanes>(matrix_, &record_);
        if (order_ <= 8) return OnBestPath<Invert8, FourLanes, TwoLanes>(matrix_, &record_);
        if (order_ <= kSmallOrder)
            return OnBestPath<Invert12, FourLanes, TwoLanes>(matrix_, &record_);
        return OnBestPath<InvertBySteps, FourLanes, TwoLanes>(matrix_, length_, &record_, w_);
    }

    Outcome ReduceInPanels(const MatrixView<const double>& a) noexcept {
        InversionWork work{};
        work.matrix = matrix_;
        work.record = record_;
        work.w = matrix_ + StepsLength(order_);
        work.pivotW = work.w + length_ * kOuterSteps;
        work.t = work.pivotW + kOuterSteps * kOuterSteps;
        work.columns = work.t + std::min(length_, kColumns) * kOuterSteps;
        work.rows = reinterpret_cast<std::size_t*>(work.columns + length_ * (kInnerSteps + 1));
        Begin();
        panel_ = PanelWidth();
        Load(a);
        return OnBestPath<InvertByPanels, FourLanes, TwoLanes>(&work);
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
    Scratch<double, StepsLength(kOrderWithoutHeap)> scratch(ScratchLength(n));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    Inversion inversion(scratch.Data(), n, true);
    inversion.Reduce(a) ? inversion.WriteInOrder(result) : inversion.Write(result);
}

void MInv(MatrixView<const double> a, MatrixView<double> result) noexcept {
    if (a.Rows() == 0 || a.Columns() == 0) return;
    if (result.Rows() < a.Rows() || result.Columns() < a.Columns()) return;
    if (!IsSquare(a)) return Fill(a, result, 0.0);

    const auto n = static_cast<std::size_t>(a.Rows());
    Scratch<double, StepsLength(kOrderWithoutHeap)> scratch(ScratchLength(n));
    if (scratch.Data() == nullptr) return FillWithNaN(a, result);
    Inversion inversion(scratch.Data(), n, false);
    inversion.Reduce(a) ? inversion.Write(result) : Fill(a, result, 0.0);
}

}  // namespace corvale::GenFunctions
