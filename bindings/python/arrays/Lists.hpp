// What is done to a whole list at once: duplicates out, sorting.
#pragma once

#include <pybind11/pybind11.h>

namespace corvale::python {

/// Adds idupe, isort, quick_sort and partition to `module`.
void AddLists(pybind11::module_& module);

}  // namespace corvale::python
