// The module corvale._arrays: every row of the tables as a function, and the lists.
#include <corvale/Corvale.h>

#include "Calls.hpp"
#include "Functions.hpp"
#include "Lists.hpp"

namespace corvale::python {
namespace {

using py::arg;

/// The width that a call's last argument sets, where the row says so.
Count WidthFrom(const Procedure& procedure, const py::object& last) {
    if (procedure.mostCharacters == 0) return 0;
    if (!PyIndex_Check(last.ptr())) throw py::type_error("n: one integer needed");
    const Count n = PyNumber_AsSsize_t(last.ptr(), nullptr);
    if (n == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    if (n < 1 || n > procedure.mostCharacters)
        throw py::value_error("n: 1 to " + std::to_string(procedure.mostCharacters) + " needed");
    return n;
}

py::object CallOfWidth(const Procedure& procedure, const py::object& given, const py::object& width,
                       const py::object& out, Count threads) {
    const Count characters = width.is_none() ? 0 : width.cast<Count>();
    if (!width.is_none() && characters < 1) throw py::value_error("width: 1 or more needed");
    return Call(procedure, {given}, out, characters, threads);
}

void Add(py::module_& module, const Procedure& procedure) {
    const std::vector<std::string> names = ArgumentNames(procedure);
    const std::string text = Docstring(procedure);
    const char *const name = procedure.name, *const doc = text.c_str();
    const arg first(names.front().c_str()), last(names.back().c_str());
    const auto out = arg("out") = py::none();
    const auto threads = arg("threads") = 1;
    const Procedure* const p = &procedure;
    using Object = const py::object&;

    if (procedure.freeWidth) {
        const auto call = [p](Object a, Object width, Object to, Count on) {
            return CallOfWidth(*p, a, width, to, on);
        };
        module.def(name, call, doc, first, py::kw_only(), arg("width") = py::none(), out, threads);
    } else if (names.size() == 1) {
        const auto call = [p](Object a, Object to, Count on) { return Call(*p, {a}, to, 0, on); };
        module.def(name, call, doc, first, py::kw_only(), out, threads);
    } else if (names.size() == 2) {
        const auto call = [p](Object a, Object b, Object to, Count on) {
            return Call(*p, {a, b}, to, WidthFrom(*p, b), on);
        };
        module.def(name, call, doc, first, last, py::kw_only(), out, threads);
    } else {
        const auto call = [p](Object a, Object b, Object c, Object to, Count on) {
            return Call(*p, {a, b, c}, to, 0, on);
        };
        module.def(name, call, doc, first, arg(names[1].c_str()), last, py::kw_only(), out,
                   threads);
    }
}

/// A row as Python has it, from which the stub is made; an operand is its type and inner axes.
py::dict Row(const Procedure& procedure) {
    const Signature& signature = procedure.signature;
    py::list names, inputs, outputs;
    for (const std::string& argument : ArgumentNames(procedure)) names.append(argument);
    for (std::size_t i = 0; i < signature.operands; ++i) {
        const Type& type = TypeOf(signature.kinds[i]);
        (i < signature.inputs ? inputs : outputs).append(py::make_tuple(type.name, type.inner));
    }
    return py::dict(arg("name") = procedure.name, arg("source") = procedure.source,
                    arg("arguments") = py::tuple(names), arg("inputs") = py::tuple(inputs),
                    arg("outputs") = py::tuple(outputs),
                    arg("most_characters") = procedure.mostCharacters,
                    arg("free_width") = procedure.freeWidth);
}

}  // namespace
}  // namespace corvale::python

PYBIND11_MODULE(_arrays, module) {
    namespace python = corvale::python;
    module.doc() = "Corvale over arrays: the compiled part of the package `corvale`.";
    python::py::list rows;
    for (const auto table :
         {python::TextProcedures(), python::NumberProcedures(), python::AngleProcedures(),
          python::ElementaryProcedures(), python::VectorProcedures(), python::MatrixProcedures()})
        for (const python::Procedure& procedure : table) {
            python::Add(module, procedure);
            rows.append(python::Row(procedure));
        }
    module.attr("_TABLE") = python::py::tuple(rows);
    python::AddLists(module);
    module.attr("__version__") = CORVALE_VERSION;
    python::NameFunctions(module);
}
