// Masked arrays of NumPy: an element of a result is masked where one of the elements is that it comes
// of. It is computed all the same, from what lies under the mask.
#pragma once

#include "Conversion.hpp"

namespace corvale::python {

/// Where any of `given` is masked, without the axes that belong to one element; a null object where
/// none is a masked array. `kinds` has one entry for each.
py::object JointMask(const std::vector<py::object>& given, const Kind* kinds);

/// ValueError where one of the arrays that are written cannot hold a mask.
void RequireMasked(const std::vector<py::object>& arrays);

/// `result` as a masked array, the mask repeated over the `inner` axes of an element; one that is
/// masked already gets this mask.
py::object Masked(const py::object& result, const py::object& mask, std::size_t inner);

}  // namespace corvale::python
