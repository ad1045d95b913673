#include "Operands.hpp"

#include <algorithm>
#include <limits>

#include "Slots.hpp"

namespace corvale::python {
namespace {

constexpr int kRead = PyBUF_STRIDES | PyBUF_FORMAT, kWrite = kRead | PyBUF_WRITABLE;

/// Sets the flag, which is the second operand, where a text ends with a NUL.
void FindNul(Count count, const Lane* lanes) noexcept {
    const Count last = lanes[0].form->width - 1;
    if (last < 0) return;
    const char* at = lanes[0].at + last;
    for (; count > 0; --count, at += lanes[0].step)
        if (*at == '\0') *lanes[1].at = 1;
}

/// Turns the NULs at the ends of adjacent texts into blanks.
void FillTexts(char* at, Count bytes, Count width) noexcept {
    for (char* const end = at + bytes; at != end; at += width) {
        const auto length = static_cast<Count>(WithoutFill(at, width).size());
        std::fill(at + length, at + width, ' ');
    }
}

/// What the library walks itself lies in steps of whole elements.
bool NeedsAlignment(Kind kind) noexcept {
    return kind == Kind::kVector || kind == Kind::kTable || kind == Kind::kMatrix;
}

/// Bytes to be written before anyone sees them. Made from a null pointer: made from characters,
/// short ones would be those that the interpreter shares.
py::bytes NewBytes(Count width) {
    return {static_cast<const char*>(nullptr), static_cast<std::size_t>(width)};
}

std::string Words(const std::vector<Count>& shape) {
    return py::str(ToTuple(shape));
}

std::vector<Count> WholeShape(Kind kind, const std::vector<Count>& outer, const Form& form) {
    std::vector<Count> shape = outer;
    shape.insert(shape.end(), form.extents.begin(),
                 form.extents.begin() + static_cast<Count>(TypeOf(kind).inner));
    return shape;
}

}  // namespace

// ---- inputs

Operand Operand::Input(const py::object& object, Kind kind, const std::string& name) {
    Operand operand(kind);
    const bool isScalar = IsText(kind)
                              ? operand.TakeText(object)
                              : TypeOf(kind).inner == 0 && operand.TakeNumber(object, name);
    if (!isScalar && !operand.TakeBuffer(object, kRead, name) &&
        !operand.TakeBuffer(Converted(object, kind, name), kRead, name))
        ThrowType(name, kind, py::str(py::type::of(object)));
    operand.RequireInner(name);
    if (!operand.IsAligned()) operand.Detach();
    if (kind == Kind::kFilledText) operand.Fill();
    return operand;
}

bool Operand::TakeNumber(const py::object& object, const std::string& name) {
    if (kind_ == Kind::kReal && (PyFloat_Check(object.ptr()) || PyLong_Check(object.ptr()))) {
        const double value = PyFloat_AsDouble(object.ptr());
        if (value == -1.0 && PyErr_Occurred() != nullptr) throw py::error_already_set();
        Store(number_.data(), value);
        return true;
    }
    if (!IsInteger(kind_) || !PyLong_Check(object.ptr())) return false;
    int overflow = 0;
    const std::int64_t value = PyLong_AsLongLongAndOverflow(object.ptr(), &overflow);
    using Limits = std::numeric_limits<std::int32_t>;
    const bool isNarrow = kind_ == Kind::kInt32;
    if (overflow != 0 || (isNarrow && (value < Limits::min() || value > Limits::max())))
        ThrowOverflow(name, kind_);
    if (isNarrow)
        Store(number_.data(), static_cast<std::int32_t>(value));
    else
        Store(number_.data(), value);
    return true;
}

bool Operand::TakeText(const py::object& object) {
    if (PyUnicode_Check(object.ptr())) {
        owner_ = py::reinterpret_steal<py::object>(PyUnicode_AsASCIIString(object.ptr()));
        if (!owner_) throw py::error_already_set();
    } else if (PyBytes_Check(object.ptr())) {
        owner_ = object;
    } else {
        return false;
    }
    form_.width = PyBytes_GET_SIZE(owner_.ptr());
    return true;
}

bool Operand::TakeBuffer(const py::object& object, int flags, const std::string& name) {
    auto buffer = std::make_unique<Py_buffer>();
    if (PyObject_GetBuffer(object.ptr(), buffer.get(), flags) != 0) {
        PyErr_Clear();
        return false;
    }
    buffer_.reset(buffer.release());
    const auto axes = static_cast<std::size_t>(buffer_->ndim), inner = TypeOf(kind_).inner;
    if (!Matches(*buffer_, kind_)) {
        buffer_.reset();
        return false;
    }
    if (axes < inner)
        throw py::value_error(name + ": an array with " + std::to_string(inner) +
                              (inner == 1 ? " axis" : " axes") + " or more needed");
    owner_ = object;
    const auto outerAxes = static_cast<Count>(axes - inner);
    outer_.assign(buffer_->shape, buffer_->shape + outerAxes);
    steps_.assign(buffer_->strides, buffer_->strides + outerAxes);
    for (std::size_t i = 0; i < inner; ++i) {
        form_.extents[i] = buffer_->shape[static_cast<std::size_t>(outerAxes) + i];
        form_.steps[i] = buffer_->strides[static_cast<std::size_t>(outerAxes) + i];
    }
    form_.width = buffer_->itemsize;
    return true;
}

void Operand::RequireInner(const std::string& name) const {
    if (kind_ == Kind::kVector3 && form_.extents[0] != 3)
        throw py::value_error(name + ": three components needed on the last axis, not " +
                              std::to_string(form_.extents[0]));
    if (std::max(form_.extents[0], form_.extents[1]) > std::numeric_limits<std::int32_t>::max())
        throw py::value_error(name + ": an axis is longer than 32 bits can count");
}

void Operand::Detach() {
    Operand copy(kind_);
    copy.TakeBuffer(Numpy().attr("array")(owner_, py::arg("order") = "C"), kRead, "");
    *this = std::move(copy);
}

bool Operand::EndsWithNul() {
    const Form none;
    char flag = 0;
    Walk(FindNul, outer_, {In(outer_), {&flag, std::vector<Count>(outer_.size(), 0), &none}});
    return flag != 0;
}

void Operand::Fill() {
    if (!EndsWithNul()) return;
    if (IsScalar()) {
        const py::object given = std::exchange(owner_, NewBytes(form_.width));
        std::memcpy(Data(), PyBytes_AS_STRING(given.ptr()), static_cast<std::size_t>(form_.width));
        return FillTexts(Data(), form_.width, form_.width);
    }
    Detach();
    FillTexts(Data(), buffer_->len, form_.width);
}

bool Operand::IsAligned() const noexcept {
    if (!NeedsAlignment(kind_)) return true;
    const auto isWhole = [](Count step) { return step % kReal == 0; };
    const bool isAtWhole = reinterpret_cast<std::uintptr_t>(buffer_->buf) % sizeof(double) == 0;
    const bool isDense = kind_ != Kind::kTable || form_.steps[0] == kReal || form_.extents[0] < 2;
    return isAtWhole && isDense && std::all_of(steps_.begin(), steps_.end(), isWhole) &&
           std::all_of(form_.steps.begin(), form_.steps.end(), isWhole);
}

// ---- outputs

Operand Operand::NewOutput(Kind kind, const std::vector<Count>& outer, const Form& form) {
    Operand operand(kind);
    const std::vector<Count> shape = WholeShape(kind, outer, form);
    if (shape.empty()) {
        operand.form_ = form;
        if (IsText(kind)) operand.owner_ = NewBytes(form.width);
        return operand;
    }
    operand.TakeBuffer(NewArray(shape, kind, form.width), kWrite, "");
    return operand;
}

Operand Operand::GivenOutput(const py::object& object, Kind kind, const std::vector<Count>& outer,
                             const Form& form) {
    Operand operand(kind);
    if (!operand.TakeBuffer(object, kWrite, "out"))
        throw py::type_error(std::string("out: a writable array of ") + TypeOf(kind).name +
                             " needed");
    const std::vector<Count> shape = WholeShape(kind, outer, form);
    const std::vector<Count> found = WholeShape(kind, operand.outer_, operand.form_);
    if (found != shape)
        throw py::value_error("out: shape " + Words(shape) + " needed, not " + Words(found));
    if (operand.form_.width < form.width)
        throw py::value_error("out: texts of " + std::to_string(form.width) + " characters needed");
    if (!operand.IsAligned()) throw py::value_error("out: its elements are not aligned");
    return operand;
}

py::object Operand::ToPython() const {
    if (!IsScalar() || IsText(kind_)) return owner_;
    switch (kind_) {
        case Kind::kReal:
            return py::float_(Load<double>(number_.data()));
        case Kind::kInt32:
            return py::int_(Load<std::int32_t>(number_.data()));
        case Kind::kInt64:
            return py::int_(Load<std::int64_t>(number_.data()));
        default:
            return py::bool_(Load<bool>(number_.data()));
    }
}

// ---- memory

char* Operand::Data() noexcept {
    if (buffer_) return static_cast<char*>(buffer_->buf);
    return IsText(kind_) ? PyBytes_AS_STRING(owner_.ptr()) : number_.data();
}

Strided Operand::In(const std::vector<Count>& shape) {
    std::vector<Count> steps(shape.size() - outer_.size(), 0);
    for (std::size_t i = 0; i < outer_.size(); ++i) steps.push_back(outer_[i] == 1 ? 0 : steps_[i]);
    return {Data(), std::move(steps), &form_};
}

std::pair<const char*, const char*> Operand::Bytes() const noexcept {
    const char* first = static_cast<const char*>(buffer_->buf);
    const char* last = first + buffer_->itemsize;
    for (Count i = 0; i < buffer_->ndim; ++i) {
        const Count reach = (buffer_->shape[i] - 1) * buffer_->strides[i];
        (reach < 0 ? first : last) += reach;
    }
    return {first, last};
}

bool Operand::MeetsMemoryOf(const Operand& other) const noexcept {
    if (IsScalar() || other.IsScalar() || buffer_->len == 0 || other.buffer_->len == 0)
        return false;
    const auto [first, last] = Bytes();
    const auto [otherFirst, otherLast] = other.Bytes();
    return first < otherLast && otherFirst < last;
}

bool Operand::LiesOn(const Operand& other) const noexcept {
    return buffer_->buf == other.buffer_->buf && outer_ == other.outer_ && steps_ == other.steps_ &&
           form_ == other.form_;
}

}  // namespace corvale::python
