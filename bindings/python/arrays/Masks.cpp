#include "Masks.hpp"

namespace corvale::python {
namespace {

/// numpy.ma, or a null object where nobody has imported it: then no array is masked.
py::object MaskedArrays() {
    PyObject* const modules = PyImport_GetModuleDict();
    PyObject* const found = PyDict_GetItemString(modules, "numpy.ma");
    return found == nullptr ? py::object() : py::reinterpret_borrow<py::object>(found);
}

bool IsScalar(const py::object& object) {
    PyObject* const at = object.ptr();
    return PyFloat_Check(at) || PyLong_Check(at) || PyBytes_Check(at) || PyUnicode_Check(at);
}

bool IsMasked(const py::object& object, const py::object& masked) {
    return !IsScalar(object) && masked && py::isinstance(object, masked.attr("MaskedArray"));
}

py::tuple LastAxes(std::size_t count) {
    py::tuple axes(count);
    for (std::size_t i = 0; i < count; ++i) axes[i] = -1 - static_cast<Count>(i);
    return axes;
}

}  // namespace

py::object JointMask(const std::vector<py::object>& given, const Kind* kinds) {
    py::object joint;
    py::object masked;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (IsScalar(given[i])) continue;
        if (!masked) masked = MaskedArrays();
        if (!IsMasked(given[i], masked)) continue;
        py::object mask = masked.attr("getmaskarray")(given[i]);
        const std::size_t inner = TypeOf(kinds[i]).inner;
        if (inner > 0) mask = mask.attr("any")(py::arg("axis") = LastAxes(inner));
        joint = joint ? Numpy().attr("logical_or")(joint, mask) : mask;
    }
    return joint;
}

void RequireMasked(const std::vector<py::object>& arrays) {
    for (const py::object& array : arrays)
        if (!IsMasked(array, MaskedArrays()))
            throw py::value_error("out: a masked array needed, as an operand is one");
}

py::object Masked(const py::object& result, const py::object& mask, std::size_t inner) {
    const py::object masked = MaskedArrays();
    py::object wide = Numpy().attr("asarray")(mask);
    if (inner > 0) {
        std::vector<Count> axes;
        for (std::size_t i = 1; i <= inner; ++i) axes.push_back(-static_cast<Count>(i));
        wide = Numpy().attr("expand_dims")(wide, ToTuple(axes));
    }
    const py::object shape = Numpy().attr("shape")(result);
    wide = Numpy().attr("broadcast_to")(wide, shape).attr("copy")();
    if (!IsMasked(result, masked))
        return masked.attr("array")(result, py::arg("mask") = wide, py::arg("copy") = false);
    result.attr("mask") = wide;
    return result;
}

}  // namespace corvale::python
