#include "Lists.hpp"

#include <corvale/numeric/IntegerLists.hpp>
#include <corvale/sorting/Sorting.hpp>

#include <algorithm>
#include <limits>

#include "Operands.hpp"
#include "Slots.hpp"

namespace corvale::python {
namespace {

using Sorting::Key;

/// A list in one piece of memory, changed in place.
class List {
  public:
    /// `array` itself. `name` is what it is called in messages.
    List(const py::object& array, Kind kind, Count width, const char* name)
        : operand_(Operand::GivenOutput(array, kind, {Length(array, name)}, {width, {}, {}})) {
        const Strided list = operand_.In(operand_.Outer());
        const std::uintptr_t size = IsText(kind) ? 1 : static_cast<std::uintptr_t>(width);
        const bool isAligned = reinterpret_cast<std::uintptr_t>(list.data) % size == 0;
        if (operand_.GetForm().width != width || (Size() > 1 && list.steps[0] != width) ||
            !isAligned)
            throw py::value_error(std::string(name) +
                                  ": elements one after another needed, each of " +
                                  std::to_string(width) + " bytes");
    }

    [[nodiscard]] std::int32_t Size() const noexcept {
        return static_cast<std::int32_t>(operand_.Outer()[0]);
    }
    template <class T>
    [[nodiscard]] T* Data() noexcept {
        return reinterpret_cast<T*>(operand_.Data());
    }
    [[nodiscard]] py::object ToPython() const { return operand_.ToPython(); }

  private:
    static Count Length(const py::object& array, const char* name) {
        const py::tuple shape = py::getattr(array, "shape", py::tuple());
        if (shape.size() != 1)
            throw py::value_error(std::string(name) + ": an array of one axis needed");
        const auto length = shape[0].cast<Count>();
        if (length > std::numeric_limits<std::int32_t>::max())
            throw py::value_error(std::string(name) + ": longer than 32 bits can count");
        return length;
    }

    Operand operand_;
};

/// `values` as `kind` in `out`, or in a new array where that is None.
py::object Copied(const py::object& values, Kind kind, const char* name, const py::object& out) {
    const py::object array = Converted(values, kind, name);
    if (out.is_none()) return Numpy().attr("array")(array, py::arg("order") = "C");
    Numpy().attr("copyto")(out, array);
    return out;
}

py::object IDupe(const py::object& values, const py::object& out) {
    List list(Copied(values, Kind::kInt32, "values", out), Kind::kInt32, 4, "values");
    std::int32_t n = list.Size();
    {
        const py::gil_scoped_release unlocked;
        GenFunctions::IDupe(list.Data<std::int32_t>(), n);
    }
    return list.ToPython()[py::slice(0, n, 1)];
}

py::object ISort(const py::object& values, std::int32_t order, const py::object& out) {
    List list(Copied(values, Kind::kInt32, "values", out), Kind::kInt32, 4, "values");
    std::int32_t n = list.Size();
    {
        const py::gil_scoped_release unlocked;
        GenFunctions::ISort(order, list.Data<std::int32_t>(), n);
    }
    return list.ToPython()[py::slice(0, n, 1)];
}

/// `keys` as texts of 32 characters. NumPy's copy cuts no key: longer ones are refused first.
py::object KeyCopy(const py::object& keys, const py::object& out) {
    const py::object array = Converted(keys, Kind::kText, "keys");
    if (array.attr("dtype").attr("itemsize").cast<Count>() > 32)
        throw py::value_error("keys: more than 32 characters");
    if (out.is_none()) return array.attr("astype")("S32", py::arg("order") = "C");
    Numpy().attr("copyto")(out, array);
    return out;
}

py::object Companions(const py::object& companion, Count count, const py::object& out) {
    const py::object values =
        companion.is_none() ? Numpy().attr("arange")(count, py::arg("dtype") = "i8") : companion;
    return Copied(values, Kind::kInt64, "companion", out);
}

/// NumPy's NULs after a key become the blanks that the order of keys counts with.
void FillKeys(Key* keys, std::int32_t n) noexcept {
    for (Key* key = keys; key != keys + n; ++key) {
        const std::size_t length = WithoutFill(key->data(), 32).size();
        std::fill(key->begin() + static_cast<Count>(length), key->end(), ' ');
    }
}

py::object QuickSort(const py::object& keys, const py::object& companion, const py::object& out) {
    py::object outKeys = py::none(), outCompanion = py::none();
    if (!out.is_none()) {
        const auto pair = py::cast<py::tuple>(out);
        if (pair.size() != 2) throw py::type_error("out: a tuple of 2 arrays needed");
        outKeys = pair[0];
        outCompanion = pair[1];
    }
    List list(KeyCopy(keys, outKeys), Kind::kText, 32, "keys");
    List values(Companions(companion, list.Size(), outCompanion), Kind::kInt64, 8, "companion");
    if (values.Size() != list.Size())
        throw py::value_error("companion: as many integers are needed as there are keys");
    {
        const py::gil_scoped_release unlocked;
        FillKeys(list.Data<Key>(), list.Size());
        Sorting::QuickSortIterative(list.Size(), list.Data<Key>(), values.Data<std::int64_t>());
    }
    return py::make_tuple(list.ToPython(), values.ToPython());
}

std::int32_t Partition(std::int32_t low, std::int32_t high, const py::object& keys,
                       const py::object& companion) {
    List list(keys, Kind::kText, 32, "keys");
    List values(companion, Kind::kInt64, 8, "companion");
    if (values.Size() != list.Size())
        throw py::value_error("companion: as many integers are needed as there are keys");
    if (std::min(low, high) < 1 || std::max(low, high) > list.Size())
        throw py::value_error("low, high: positions from 1 to the number of keys needed");
    const py::gil_scoped_release unlocked;
    FillKeys(list.Data<Key>(), list.Size());
    return Sorting::Partition(low, high, list.Data<Key>(), values.Data<std::int64_t>());
}

constexpr const char* kIDupe =
    R"(The list without empty places (0) and duplicates; of equal values the last one stays.

Where nothing but the last place is 0 and nothing repeats, the list is returned as it is; otherwise
negative values are dropped too.

C++     GenFunctions::IDupe
Shapes  values int32 (n) -> int32 (m), m <= n; values stay as they are
out     int32 (n), adjacent, may be values: holds the list, then zeros; the result is its front
Errors  TypeError for what holds no integers, OverflowError for one that does not fit 32 bits)";

constexpr const char* kISort =
    R"(What idupe gives, sorted: ascending for `order` 0 or above, else descending.

C++     GenFunctions::ISort
Shapes  values int32 (n) -> int32 (m), m <= n; values stay as they are
out     int32 (n), adjacent, may be values: holds the list, then zeros; the result is its front
Errors  TypeError for what holds no integers, OverflowError for one that does not fit 32 bits)";

constexpr const char* kQuickSort =
    R"(Keys in ascending order of their 32 bytes, and a companion integer for each that moved along.

Without `companion` the integers are the places, counted from 0, that the keys came from. The order
among equal keys is not defined. Shorter keys are blank-filled.

C++     Sorting::QuickSortIterative
Shapes  keys bytes (n), companion int64 (n) -> bytes of 32 (n), int64 (n)
out     a tuple of such arrays, adjacent, which may be keys and companion themselves
Errors  ValueError for keys of more than 32 characters and lists of different lengths)";

constexpr const char* kPartition =
    R"(One step of a quicksort, in place, on the positions low to high, counted from 1.

The last key is the pivot; its new position is returned. Lesser keys stand before it.

C++     Sorting::Partition
Shapes  keys bytes of 32 (n), companion int64 (n), both adjacent and changed in place
Errors  ValueError for positions that are none; low >= high swaps the two and returns low)";

}  // namespace

void AddLists(py::module_& module) {
    using py::arg;
    module.def("idupe", IDupe, kIDupe, arg("values"), py::kw_only(), arg("out") = py::none());
    module.def("isort", ISort, kISort, arg("values"), arg("order") = 1, py::kw_only(),
               arg("out") = py::none());
    module.def("quick_sort", QuickSort, kQuickSort, arg("keys"), arg("companion") = py::none(),
               py::kw_only(), arg("out") = py::none());
    module.def("partition", Partition, kPartition, arg("low"), arg("high"), arg("keys"),
               arg("companion"));
}

}  // namespace corvale::python
