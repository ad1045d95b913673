// Python objects as operands: scalars are taken as they are, arrays and everything else with a
// buffer of the right type where they lie, all other things as NumPy converts them.
#pragma once

#include "Conversion.hpp"

#include <memory>
#include <utility>

namespace corvale::python {

/// One input or output of a call. It keeps its memory alive; it is made and destroyed under the
/// interpreter's lock, its memory may be used without.
class Operand {
  public:
    /// `object` as an input named `name`. TypeError where it is of another kind, OverflowError
    /// where an integer does not fit, ValueError for a shape that no element has.
    static Operand Input(const py::object& object, Kind kind, const std::string& name);

    /// A new array of `outer` elements of `form`, of which width and extents are set; a scalar where
    /// there are no axes at all.
    static Operand NewOutput(Kind kind, const std::vector<Count>& outer, const Form& form);

    /// The caller's array, which must have the type and shape of what `NewOutput` makes; a text may
    /// be wider. TypeError and ValueError say what does not fit.
    static Operand GivenOutput(const py::object& object, Kind kind, const std::vector<Count>& outer,
                               const Form& form);

    /// Takes the data of this input into memory of its own.
    void Detach();

    /// What one element is.
    [[nodiscard]] const Form& GetForm() const noexcept { return form_; }
    /// The axes in front of those that belong to one element.
    [[nodiscard]] const std::vector<Count>& Outer() const noexcept { return outer_; }
    /// A scalar of Python, not an array.
    [[nodiscard]] bool IsScalar() const noexcept { return !buffer_; }
    /// The first element.
    [[nodiscard]] char* Data() noexcept;
    /// This operand broadcast to `shape`, for a walk.
    [[nodiscard]] Strided In(const std::vector<Count>& shape);
    /// Whether an array shares bytes with `other`, at least as far as their ends tell.
    [[nodiscard]] bool MeetsMemoryOf(const Operand& other) const noexcept;
    /// Whether each element lies exactly where the same element of `other` does.
    [[nodiscard]] bool LiesOn(const Operand& other) const noexcept;
    /// The array, or the scalar as Python has it.
    [[nodiscard]] py::object ToPython() const;

  private:
    struct Release {
        void operator()(Py_buffer* buffer) const noexcept {
            PyBuffer_Release(buffer);
            delete buffer;
        }
    };

    explicit Operand(Kind kind) noexcept : kind_(kind) { form_.width = TypeOf(kind).width; }
    bool TakeNumber(const py::object& object, const std::string& name);
    bool TakeText(const py::object& object);
    bool TakeBuffer(const py::object& object, int flags, const std::string& name);
    void RequireInner(const std::string& name) const;
    void Fill();
    [[nodiscard]] bool EndsWithNul();
    [[nodiscard]] bool IsAligned() const noexcept;
    [[nodiscard]] std::pair<const char*, const char*> Bytes() const noexcept;

    Kind kind_;
    py::object owner_;  // the array, or the bytes of a scalar text
    std::unique_ptr<Py_buffer, Release> buffer_;
    alignas(double) std::array<char, 8> number_{};  // a scalar number
    std::vector<Count> outer_, steps_;
    Form form_;
};

}  // namespace corvale::python
