// Types as Python, NumPy and buffers name them, and what NumPy turns other objects into.
#pragma once

#include "Lanes.hpp"

#include <pybind11/pybind11.h>

#include <string>

namespace corvale::python {

namespace py = pybind11;

/// NumPy, or an ImportError that says what it is needed for.
py::module_ Numpy();

/// What a kind of element is.
struct Type {
    const char* name;     ///< in messages and docstrings
    const char* code;     ///< in NumPy; a text's is followed by its width
    const char* letters;  ///< that stand for it in the format of a buffer
    Count width;          ///< bytes, 0 for texts
    std::size_t inner;    ///< how many axes of an array belong to one element
};

/// The type of `kind`.
const Type& TypeOf(Kind kind) noexcept;

/// Texts of either kind.
bool IsText(Kind kind) noexcept;

/// Integers of 32 and 64 bits.
bool IsInteger(Kind kind) noexcept;

/// Whether a buffer holds native elements of `kind`.
bool Matches(const Py_buffer& buffer, Kind kind) noexcept;

/// TypeError: the argument `name` was `found` instead of `kind`.
[[noreturn]] void ThrowType(const std::string& name, Kind kind, const std::string& found);

/// OverflowError: an integer of the argument `name` does not fit `kind`.
[[noreturn]] void ThrowOverflow(const std::string& name, Kind kind);

/// `object` as an array of `kind`, from whatever NumPy takes. TypeError where its values would
/// change their meaning, OverflowError where an integer does not fit.
py::object Converted(const py::object& object, Kind kind, const std::string& name);

/// A new array of the given shape, its elements not yet set.
py::object NewArray(const std::vector<Count>& shape, Kind kind, Count width);

/// The axes of an array as Python has them.
py::tuple ToTuple(const std::vector<Count>& shape);

}  // namespace corvale::python
