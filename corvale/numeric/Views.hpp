// Views: vectors and matrices that lie anywhere in memory, counted from 1, and series of them.
//
// A view names elements that belong to someone else: the first one, how many there are, and how
// far it is from one to the next. Copying a view copies no element. The writable view converts to
// the read-only one, `MatrixView<double>` to `MatrixView<const double>`.
//
//     double m[6];                                // 2 rows, 3 columns, column by column
//     MatrixView<double> whole(m, 2, 3);          // whole(2, 1) is m[1]
//     MatrixView<double> turned(m, 3, 2, 2, 1);   // its transpose: turned(1, 2) is m[1]
//     VectorView<double> back(m + 5, 6, -1);      // back(1) is m[5]
//     MatrixSeries<double> pair(m, 1, 3, 2);      // two matrices of 1 row and 3 columns
//
// Shape      strides count elements, not bytes, and may be negative or zero; an extent below 0
//            counts as 0. Where elements of a view that is written share an address, it holds one of
//            their values
// Bad input  nothing is checked: an index outside the extents reads outside the view
// Threads    a view is a value: any number of threads at once
//
// VectorView  MatrixView  VectorSeries  MatrixSeries
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace corvale::GenFunctions {

/// `Size()` elements, `Stride()` apart. `T` is `double` or `const double`.
template <class T>
class VectorView {
  public:
    /// No elements.
    constexpr VectorView() noexcept = default;

    /// `size` elements, the first at `data`. The pointer may be null when there are none.
    constexpr VectorView(T* data, std::int32_t size, std::ptrdiff_t stride = 1) noexcept
        : data_(data), stride_(stride), size_(size > 0 ? size : 0) {}

    /// The same elements, to be read only.
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    constexpr VectorView(const VectorView<U>& other) noexcept
        : VectorView(other.Data(), other.Size(), other.Stride()) {}

    /// The element at position `i`, counted from 1.
    [[nodiscard]] constexpr T& operator()(std::int32_t i) const noexcept {
        return data_[(std::ptrdiff_t{i} - 1) * stride_];
    }

    /// The address of the first element.
    [[nodiscard]] constexpr T* Data() const noexcept { return data_; }
    /// How many elements there are.
    [[nodiscard]] constexpr std::int32_t Size() const noexcept { return size_; }
    /// From one element to the next.
    [[nodiscard]] constexpr std::ptrdiff_t Stride() const noexcept { return stride_; }

  private:
    T* data_ = nullptr;
    std::ptrdiff_t stride_ = 1;
    std::int32_t size_ = 0;
};

/// `Rows()` by `Columns()` elements. `T` is `double` or `const double`.
template <class T>
class MatrixView {
  public:
    /// No elements.
    constexpr MatrixView() noexcept = default;

    /// A contiguous matrix, column by column, element (1,1) at `data`. The pointer may be null when
    /// there are no elements.
    constexpr MatrixView(T* data, std::int32_t rows, std::int32_t columns) noexcept
        : MatrixView(data, rows, columns, 1, rows) {}

    /// From one row to the next it is `rowStride`, from one column to the next `columnStride`.
    constexpr MatrixView(T* data, std::int32_t rows, std::int32_t columns, std::ptrdiff_t rowStride,
                         std::ptrdiff_t columnStride) noexcept
        : data_(data),
          rowStride_(rowStride),
          columnStride_(columnStride),
          rows_(rows > 0 ? rows : 0),
          columns_(columns > 0 ? columns : 0) {}

    /// The same elements, to be read only.
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    constexpr MatrixView(const MatrixView<U>& other) noexcept
        : MatrixView(other.Data(), other.Rows(), other.Columns(), other.RowStride(),
                     other.ColumnStride()) {}

    /// The element in row `i` and column `j`, both counted from 1.
    [[nodiscard]] constexpr T& operator()(std::int32_t i, std::int32_t j) const noexcept {
        return data_[(std::ptrdiff_t{i} - 1) * rowStride_ +
                     (std::ptrdiff_t{j} - 1) * columnStride_];
    }

    /// The address of element (1,1).
    [[nodiscard]] constexpr T* Data() const noexcept { return data_; }
    /// How many rows there are.
    [[nodiscard]] constexpr std::int32_t Rows() const noexcept { return rows_; }
    /// How many columns there are.
    [[nodiscard]] constexpr std::int32_t Columns() const noexcept { return columns_; }
    /// From one row to the next.
    [[nodiscard]] constexpr std::ptrdiff_t RowStride() const noexcept { return rowStride_; }
    /// From one column to the next.
    [[nodiscard]] constexpr std::ptrdiff_t ColumnStride() const noexcept { return columnStride_; }

  private:
    T* data_ = nullptr;
    std::ptrdiff_t rowStride_ = 1;
    std::ptrdiff_t columnStride_ = 0;
    std::int32_t rows_ = 0;
    std::int32_t columns_ = 0;
};

/// `Count()` vectors of one length, the elements of one after the other `Distance()` apart. `T` is
/// `double` or `const double`.
template <class T>
class VectorSeries {
  public:
    /// No vectors.
    constexpr VectorSeries() noexcept = default;

    /// `count` contiguous vectors of `size` elements, one after the other.
    constexpr VectorSeries(T* data, std::int32_t size, std::int32_t count) noexcept
        : VectorSeries(VectorView<T>(data, size), size, count) {}

    /// `first` and others like it, each `distance` elements behind the one before.
    constexpr VectorSeries(VectorView<T> first, std::ptrdiff_t distance,
                           std::int32_t count) noexcept
        : first_(first), distance_(distance), count_(count > 0 ? count : 0) {}

    /// The same vectors, to be read only.
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    constexpr VectorSeries(const VectorSeries<U>& other) noexcept
        : VectorSeries(other.First(), other.Distance(), other.Count()) {}

    /// Vector `i`, counted from 1.
    [[nodiscard]] constexpr VectorView<T> operator()(std::int32_t i) const noexcept {
        return {first_.Data() + (std::ptrdiff_t{i} - 1) * distance_, first_.Size(),
                first_.Stride()};
    }

    /// The first vector.
    [[nodiscard]] constexpr const VectorView<T>& First() const noexcept { return first_; }
    /// From one vector to the next.
    [[nodiscard]] constexpr std::ptrdiff_t Distance() const noexcept { return distance_; }
    /// How many vectors there are.
    [[nodiscard]] constexpr std::int32_t Count() const noexcept { return count_; }

  private:
    VectorView<T> first_;
    std::ptrdiff_t distance_ = 0;
    std::int32_t count_ = 0;
};

/// `Count()` matrices of one shape, the elements of one after the other `Distance()` apart. `T` is
/// `double` or `const double`.
template <class T>
class MatrixSeries {
  public:
    /// No matrices.
    constexpr MatrixSeries() noexcept = default;

    /// `count` contiguous matrices, each column by column, one after the other.
    constexpr MatrixSeries(T* data, std::int32_t rows, std::int32_t columns,
                           std::int32_t count) noexcept
        : MatrixSeries(MatrixView<T>(data, rows, columns), std::ptrdiff_t{rows} * columns, count) {}

    /// `first` and others like it, each `distance` elements behind the one before.
    constexpr MatrixSeries(MatrixView<T> first, std::ptrdiff_t distance,
                           std::int32_t count) noexcept
        : first_(first), distance_(distance), count_(count > 0 ? count : 0) {}

    /// The same matrices, to be read only.
    template <class U, class = std::enable_if_t<std::is_same_v<const U, T>>>
    constexpr MatrixSeries(const MatrixSeries<U>& other) noexcept
        : MatrixSeries(other.First(), other.Distance(), other.Count()) {}

    /// Matrix `i`, counted from 1.
    [[nodiscard]] constexpr MatrixView<T> operator()(std::int32_t i) const noexcept {
        return {first_.Data() + (std::ptrdiff_t{i} - 1) * distance_, first_.Rows(),
                first_.Columns(), first_.RowStride(), first_.ColumnStride()};
    }

    /// The first matrix.
    [[nodiscard]] constexpr const MatrixView<T>& First() const noexcept { return first_; }
    /// From one matrix to the next.
    [[nodiscard]] constexpr std::ptrdiff_t Distance() const noexcept { return distance_; }
    /// How many matrices there are.
    [[nodiscard]] constexpr std::int32_t Count() const noexcept { return count_; }

  private:
    MatrixView<T> first_;
    std::ptrdiff_t distance_ = 0;
    std::int32_t count_ = 0;
};

}  // namespace corvale::GenFunctions
