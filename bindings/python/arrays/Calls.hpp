// A call of a procedure of the table with Python's arguments.
#pragma once

#include "Operands.hpp"
#include "Procedures.hpp"

namespace corvale::python {

/// The names of a procedure's inputs, one by one.
std::vector<std::string> ArgumentNames(const Procedure& procedure);

/// The docstring: summary, name in C++, shapes, units, errors.
std::string Docstring(const Procedure& procedure);

/// Calls `procedure` for every element of `given`, broadcast to one shape. The interpreter's lock
/// is free meanwhile, unless all are scalars.
///
/// `out` is None, the array to be written or a tuple with one for each output; `width` is that of
/// the texts written, 0 for that of the first text given. The elements are shared among `threads`
/// threads. Where an operand is a masked array the results are: ValueError where `out` is none.
py::object Call(const Procedure& procedure, std::vector<py::object> given, const py::object& out,
                Count width, Count threads);

}  // namespace corvale::python
