#include "Conversion.hpp"

#include <algorithm>
#include <bit>
#include <string_view>

namespace corvale::python {
namespace {

// In the order of Kind.
constexpr Type kTypes[] = {
    {"float64", "f8", "d", 8, 0}, {"int32", "i4", "ilq", 4, 0}, {"int64", "i8", "ilq", 8, 0},
    {"bool", "?", "?", 1, 0},     {"bytes", "S", "s", 0, 0},    {"bytes", "S", "s", 0, 0},
    {"float64", "f8", "d", 8, 1}, {"float64", "f8", "d", 8, 1}, {"float64", "f8", "d", 8, 1},
    {"float64", "f8", "d", 8, 2},
};

/// Whether NumPy may turn `array` into `kind` without changing what its values mean.
bool Converts(const py::object& array, Kind kind) {
    const py::object dtype = array.attr("dtype");
    const auto letter = dtype.attr("kind").cast<std::string>();
    if (letter == "f" && array.attr("size").cast<Count>() == 0) return true;  // an empty list
    if (IsText(kind)) return letter == "S" || letter == "U";
    if (IsInteger(kind)) return letter == "i" || letter == "u" || letter == "b";
    const bool isReal = letter == "f" || letter == "i" || letter == "u" || letter == "b";
    return isReal && dtype.attr("itemsize").cast<Count>() <= 8;
}

/// Whether `object` is a scalar of Python's own that is never a `kind`: said without NumPy, too.
bool IsWrongScalar(const py::object& object, Kind kind) {
    PyObject* const at = object.ptr();
    if (object.is_none() || PyComplex_CheckExact(at)) return true;
    const bool isText = PyUnicode_CheckExact(at) || PyBytes_CheckExact(at);
    if (IsText(kind)) return PyLong_CheckExact(at) || PyFloat_CheckExact(at);
    return isText || (IsInteger(kind) && PyFloat_CheckExact(at));
}

void RequireFit(const py::object& array, Kind kind, const std::string& name) {
    if (!IsInteger(kind) || array.attr("size").cast<Count>() == 0) return;
    const char* code = TypeOf(kind).code;
    if (Numpy().attr("can_cast")(array.attr("dtype"), code).cast<bool>()) return;
    const py::object limits = Numpy().attr("iinfo")(code);
    const auto least = py::int_(array.attr("min")()), greatest = py::int_(array.attr("max")());
    if (least < limits.attr("min") || greatest > limits.attr("max")) ThrowOverflow(name, kind);
}

}  // namespace

py::module_ Numpy() {
    try {
        return py::module_::import("numpy");
    } catch (py::error_already_set& error) {
        if (!error.matches(PyExc_ImportError)) throw;
        py::raise_from(
            error, PyExc_ImportError,
            "corvale: arrays and lists need NumPy, which cannot be imported; scalars and "
            "corvale.capi do without");
        throw py::error_already_set();
    }
}

const Type& TypeOf(Kind kind) noexcept {
    return kTypes[static_cast<std::size_t>(kind)];
}

bool IsText(Kind kind) noexcept {
    return TypeOf(kind).width == 0;
}

bool IsInteger(Kind kind) noexcept {
    return kind == Kind::kInt32 || kind == Kind::kInt64;
}

// A format is a sign for the byte order, a count, and one letter.
bool Matches(const Py_buffer& buffer, Kind kind) noexcept {
    constexpr char kNative = std::endian::native == std::endian::little ? '<' : '>';
    std::string_view format = buffer.format == nullptr ? "B" : buffer.format;
    if (std::string_view("@=^").find(format[0]) != format.npos || format[0] == kNative)
        format.remove_prefix(1);
    format.remove_prefix(std::min(format.find_first_not_of("0123456789"), format.size()));
    const bool isLetter =
        format.size() == 1 && std::string_view(TypeOf(kind).letters).find(format) != format.npos;
    return isLetter && (IsText(kind) || buffer.itemsize == TypeOf(kind).width);
}

void ThrowType(const std::string& name, Kind kind, const std::string& found) {
    const char* needed = IsText(kind)      ? "bytes or ASCII str"
                         : IsInteger(kind) ? "integers"
                                           : "real numbers";
    throw py::type_error(name + ": " + needed + " needed, not " + found);
}

void ThrowOverflow(const std::string& name, Kind kind) {
    PyErr_Format(PyExc_OverflowError, "%s: an integer does not fit %s", name.c_str(),
                 TypeOf(kind).name);
    throw py::error_already_set();
}

py::object Converted(const py::object& object, Kind kind, const std::string& name) {
    if (IsWrongScalar(object, kind)) ThrowType(name, kind, Py_TYPE(object.ptr())->tp_name);
    const py::object array = Numpy().attr("asarray")(object);
    if (array.attr("dtype").attr("kind").cast<std::string>() == "O")
        ThrowType(name, kind,
                  std::string("objects of Python; astype('") + TypeOf(kind).code +
                      "') makes an array of them");
    if (!Converts(array, kind)) ThrowType(name, kind, py::str(array.attr("dtype")));
    RequireFit(array, kind, name);
    const bool isSame = IsText(kind) && array.attr("dtype").attr("kind").cast<std::string>() == "S";
    return isSame ? array : array.attr("astype")(TypeOf(kind).code, py::arg("copy") = false);
}

py::tuple ToTuple(const std::vector<Count>& shape) {
    py::tuple tuple(shape.size());
    for (std::size_t i = 0; i < shape.size(); ++i) tuple[i] = shape[i];
    return tuple;
}

py::object NewArray(const std::vector<Count>& shape, Kind kind, Count width) {
    std::string code = TypeOf(kind).code;
    if (IsText(kind)) code += std::to_string(width);
    return Numpy().attr("empty")(ToTuple(shape), code);
}

}  // namespace corvale::python
