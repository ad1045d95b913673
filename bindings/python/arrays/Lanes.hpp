// Operands in memory, and the walk over all their elements. Nothing here knows Python.
//
// Every call of the module is one walk: its operands have been brought to one common shape, each
// with a step of its own for every axis (0 where it was repeated along that axis), and a loop runs
// along the longest straight stretch of it at a time.
//
// Loops  Form  Lane  Loop
// Walk   Strided  Walk  WalkOnThreads
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace corvale::python {

/// Elements or bytes; steps may be negative.
using Count = std::ptrdiff_t;

/// What one element is.
enum class Kind {
    kReal,
    kInt32,
    kInt64,
    kBool,
    kText,
    kFilledText,
    kVector3,
    kVector,
    kTable,
    kMatrix
};

/// How one element lies in memory.
struct Form {
    Count width = 0;                 ///< bytes of a number or of a text
    std::array<Count, 2> extents{};  ///< of a vector the first, of a matrix rows and columns
    std::array<Count, 2> steps{};    ///< bytes from one component, or row and column, to the next

    [[nodiscard]] bool operator==(const Form&) const noexcept = default;
};

/// One operand of a loop: its first element, and the bytes from one element to the next.
struct Lane {
    char* at;
    Count step;
    const Form* form;
};

/// Calls a procedure for `count` elements of its operands: inputs, then outputs.
using Loop = void (*)(Count count, const Lane* lanes) noexcept;

/// The most operands that a procedure has.
constexpr std::size_t kMostOperands = 6;

/// An operand in the common shape: `steps` has one entry an axis, in bytes.
struct Strided {
    char* data;
    std::vector<Count> steps;
    const Form* form;
};

/// Calls `loop` for every element of `shape`, in the order of its axes. Axes that all operands
/// cross in even steps are taken as one.
///
/// Bad input  an axis of length 0: nothing happens
void Walk(Loop loop, std::vector<Count> shape, std::vector<Strided> operands);

/// The same by up to `threads` threads, the caller's among them, each with a part of the longest
/// axis: every element is written by one. `inputs` of the operands are only read. Where the system
/// gives no more threads, there are fewer.
void WalkOnThreads(Loop loop, const std::vector<Count>& shape, const std::vector<Strided>& operands,
                   std::size_t inputs, Count threads);

}  // namespace corvale::python
