#include "Functions.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace corvale::python {
namespace {

namespace py = pybind11;

constexpr std::size_t kMost = 160;  // functions that there is a place for

// A function in C has nothing but its address that tells it from others: each has one of its own,
// which passes its arguments on.
struct Slot {
    PyObject* target = nullptr;  // what pybind11 made; never released, as the module is not
    std::string name, text;      // the definition points into them
    PyMethodDef definition = {};
};
std::array<Slot, kMost> slots;

template <std::size_t index>
PyObject* CallTarget(PyObject* /*module*/, PyObject* const* given, Py_ssize_t count,
                     PyObject* names) {
    return PyObject_Vectorcall(slots[index].target, given, static_cast<std::size_t>(count), names);
}

using Caller = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*);

template <std::size_t... indexes>
constexpr std::array<Caller, kMost> Callers(std::index_sequence<indexes...> /*all*/) {
    return {CallTarget<indexes>...};
}
constexpr std::array<Caller, kMost> kCallers = Callers(std::make_index_sequence<kMost>());

// "isort(values: object, order: int = 1) -> object" as Python reads it: "isort(values, order=1)".
std::string WithoutTypes(std::string_view signature) {
    std::string plain;
    int depth = 0;
    for (std::size_t i = 0; i < signature.size(); ++i) {
        if (signature.substr(i, 2) == ": ") {
            i = signature.find_first_of(",)=", i);  // no type holds one of them
            if (signature[i] == '=') i -= 1;
        }
        if (signature[i] == '=' && plain.ends_with(' ')) plain.pop_back();
        const bool isBehindEquals = plain.ends_with('=') && signature[i] == ' ';
        if (!isBehindEquals) plain += signature[i];
        depth += signature[i] == '(' ? 1 : signature[i] == ')' ? -1 : 0;
        if (signature[i] == ')' && depth == 0) break;
    }
    return plain;
}

// The docstring of pybind11, its first line in the form that becomes __text_signature__.
std::string DocText(std::string_view doc) {
    const std::size_t end = std::min(doc.find('\n'), doc.size());
    const std::size_t begin = std::min(doc.find_first_not_of('\n', end), doc.size());
    return WithoutTypes(doc.substr(0, end)) + "\n--\n\n" + std::string(doc.substr(begin));
}

py::object Named(Slot& slot, Caller caller, const py::module_& module, const py::str& package) {
    const auto anyFunction =
        reinterpret_cast<void (*)()>(caller);  // as the flags say, it is another
    slot.definition = {slot.name.c_str(), reinterpret_cast<PyCFunction>(anyFunction),
                       METH_FASTCALL | METH_KEYWORDS, slot.text.c_str()};
    PyObject* const made = PyCFunction_NewEx(&slot.definition, module.ptr(), package.ptr());
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

}  // namespace

void NameFunctions(py::module_& module) {
    py::list names;
    const py::str package("corvale");
    const py::dict content(module.attr("__dict__"));
    std::size_t used = 0;
    for (const auto& [key, value] : py::reinterpret_borrow<py::dict>(content.attr("copy")())) {
        if (PyCFunction_Check(value.ptr()) == 0) continue;
        if (used == kMost) throw py::import_error("corvale._arrays: too many functions");
        Slot& slot = slots[used];
        slot.target = value.inc_ref().ptr();
        slot.name = py::str(key);
        slot.text = DocText(std::string(py::str(value.attr("__doc__"))));
        module.attr(key) = Named(slot, kCallers[used++], module, package);
        names.append(key);
    }
    names.attr("sort")();
    module.attr("__all__") = names;
}

}  // namespace corvale::python
