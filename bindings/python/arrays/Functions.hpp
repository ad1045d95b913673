// The functions of the module as help() and inspect want them.
#pragma once

#include <pybind11/pybind11.h>

namespace corvale::python {

/// Puts in the place of every function of `module` one that belongs to the package `corvale`, has a
/// signature that `inspect` reads and can be pickled, and lists their names in `__all__`. What
/// pybind11 makes is a method of an object without a name.
void NameFunctions(pybind11::module_& module);

}  // namespace corvale::python
