// The table of what is offered over arrays: one row a procedure, in one file a topic.
#pragma once

#include "Slots.hpp"

namespace corvale::python {

/// Sets the extents of the outputs from those of the inputs, in order; says what does not fit.
using ShapeRule = const char* (*)(const Form* inputs, Form* outputs) noexcept;

/// One procedure as Python sees it. The texts become its docstring.
struct Procedure {
    const char* name;
    const char* arguments;  ///< the names of its inputs: "s, c"
    const char* source;     ///< the name in C++
    const char* summary;
    const char* units;  ///< null where no unit is at stake
    const char* badInput;
    Signature signature;
    ShapeRule shapes = nullptr;  ///< for vectors and matrices that are written
    Count mostCharacters = 0;    ///< above 0: the last argument is one integer from 1 to this, the
                                 ///< characters of the result
    bool separate = false;       ///< a result never stands on its own input
    bool freeWidth = false;      ///< the caller may set the width of the text written
};

/// The tables.
std::span<const Procedure> TextProcedures() noexcept;
std::span<const Procedure> NumberProcedures() noexcept;
std::span<const Procedure> AngleProcedures() noexcept;
std::span<const Procedure> ElementaryProcedures() noexcept;
std::span<const Procedure> VectorProcedures() noexcept;
std::span<const Procedure> MatrixProcedures() noexcept;

}  // namespace corvale::python
