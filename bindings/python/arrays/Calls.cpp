#include "Calls.hpp"

#include <algorithm>

#include "Masks.hpp"

namespace corvale::python {
namespace {

using Operands = std::vector<Operand>;

/// Makes `shape` the one that both it and `other` are broadcast to.
void Broadcast(std::vector<Count>& shape, const std::vector<Count>& other) {
    if (other.size() > shape.size()) shape.insert(shape.begin(), other.size() - shape.size(), 1);
    const std::size_t offset = shape.size() - other.size();
    for (std::size_t i = 0; i < other.size(); ++i) {
        Count& axis = shape[offset + i];
        if (axis != other[i] && axis != 1 && other[i] != 1)
            throw py::value_error("shapes cannot be broadcast together: axes of " +
                                  std::to_string(axis) + " and " + std::to_string(other[i]));
        if (axis == 1) axis = other[i];
    }
}

Operands Inputs(const Procedure& procedure, const std::vector<py::object>& given) {
    const std::vector<std::string> names = ArgumentNames(procedure);
    Operands inputs;
    inputs.reserve(procedure.signature.operands);
    for (std::size_t i = 0; i < given.size(); ++i)
        inputs.push_back(Operand::Input(given[i], procedure.signature.kinds[i], names[i]));
    return inputs;
}

Count FirstTextWidth(const Procedure& procedure, const Operands& inputs) {
    for (std::size_t i = 0; i < inputs.size(); ++i)
        if (IsText(procedure.signature.kinds[i])) return inputs[i].GetForm().width;
    return 0;
}

/// What each element of each output is.
std::vector<Form> OutputForms(const Procedure& procedure, const Operands& inputs, Count width) {
    const Signature& signature = procedure.signature;
    std::vector<Form> forms(signature.operands - signature.inputs);
    if (signature.fixedWidth > 0) width = signature.fixedWidth;
    if (width == 0) width = FirstTextWidth(procedure, inputs);
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const Kind kind = signature.kinds[signature.inputs + i];
        forms[i].width = IsText(kind) ? width : TypeOf(kind).width;
        if (kind == Kind::kVector3) forms[i].extents[0] = 3;
    }
    if (procedure.shapes == nullptr) return forms;
    std::array<Form, kMostOperands> given{};
    for (std::size_t i = 0; i < inputs.size(); ++i) given[i] = inputs[i].GetForm();
    if (const char* fault = procedure.shapes(given.data(), forms.data()))
        throw py::value_error(fault);
    return forms;
}

/// The caller's arrays, none or as many as there are outputs.
std::vector<py::object> GivenArrays(const py::object& out, std::size_t count) {
    if (out.is_none()) return {};
    if (count == 1 && !py::isinstance<py::tuple>(out)) return {out};
    if (!py::isinstance<py::tuple>(out) || py::len(out) != count)
        throw py::type_error("out: a tuple of " + std::to_string(count) + " arrays needed");
    std::vector<py::object> arrays;
    for (const py::handle array : out) arrays.push_back(py::reinterpret_borrow<py::object>(array));
    return arrays;
}

/// Inputs whose memory `output` would overwrite too early get memory of their own. An element that
/// lies on its own result is read before it is written, where the procedure can bear that.
void Separate(const Procedure& procedure, Operands& inputs, const Operand& output) {
    for (Operand& input : inputs)
        if (input.MeetsMemoryOf(output) && (procedure.separate || !input.LiesOn(output)))
            input.Detach();
}

Operands Outputs(const Procedure& procedure, Operands& inputs, const std::vector<Count>& shape,
                 const py::object& out, Count width) {
    const std::vector<Form> forms = OutputForms(procedure, inputs, width);
    const std::vector<py::object> arrays = GivenArrays(out, forms.size());
    Operands outputs;
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const Kind kind = procedure.signature.kinds[procedure.signature.inputs + i];
        outputs.push_back(arrays.empty() ? Operand::NewOutput(kind, shape, forms[i])
                                         : Operand::GivenOutput(arrays[i], kind, shape, forms[i]));
        Separate(procedure, inputs, outputs.back());
    }
    return outputs;
}

void Run(const Procedure& procedure, Operands& inputs, Operands& outputs,
         const std::vector<Count>& shape, Count threads) {
    std::vector<Strided> strided;
    bool isScalar = true;
    for (Operands* operands : {&inputs, &outputs})
        for (Operand& operand : *operands) {
            strided.push_back(operand.In(shape));
            isScalar = isScalar && operand.IsScalar();
        }
    if (isScalar) return Walk(procedure.signature.loop, shape, std::move(strided));
    const py::gil_scoped_release unlocked;
    WalkOnThreads(procedure.signature.loop, shape, strided, inputs.size(), threads);
}

/// The output itself, or a tuple of them, each as `toPython` gives it.
template <class ToPython>
py::object Results(const Operands& outputs, const ToPython& toPython) {
    if (outputs.size() == 1) return toPython(0);
    py::tuple results(outputs.size());
    for (std::size_t i = 0; i < outputs.size(); ++i) results[i] = toPython(i);
    return results;
}

/// "line bytes (...), first int32 (...) -> int32 (...)"
std::string Shapes(const Procedure& procedure) {
    static constexpr const char* kAxes[] = {"(...)",    "(...)",      "(...)",    "(...)",
                                            "(...)",    "(...)",      "(..., 3)", "(..., n)",
                                            "(..., n)", "(..., n, n)"};
    const std::vector<std::string> names = ArgumentNames(procedure);
    const Signature& signature = procedure.signature;
    std::string words;
    for (std::size_t i = 0; i < signature.operands; ++i) {
        if (i > 0) words += i == signature.inputs ? " -> " : ", ";
        if (i < signature.inputs) words += names[i] + " ";
        const Kind kind = signature.kinds[i];
        words += std::string(TypeOf(kind).name) + " " + kAxes[static_cast<std::size_t>(kind)];
    }
    return words;
}

}  // namespace

std::vector<std::string> ArgumentNames(const Procedure& procedure) {
    std::vector<std::string> names{""};
    for (const char c : std::string_view(procedure.arguments)) {
        if (c == ',') names.emplace_back();
        if (c != ',' && c != ' ') names.back() += c;
    }
    return names;
}

std::string Docstring(const Procedure& procedure) {
    std::string text = std::string(procedure.summary) + "\n\nC++     " + procedure.source +
                       "\nShapes  " + Shapes(procedure);
    if (procedure.units != nullptr) text += std::string("\nUnits   ") + procedure.units;
    return text + "\nErrors  " + procedure.badInput;
}

py::object Call(const Procedure& procedure, std::vector<py::object> given, const py::object& out,
                Count width, Count threads) {
    if (threads < 1) throw py::value_error("threads: 1 or more needed");
    Operands inputs = Inputs(procedure, given);
    std::vector<Count> shape;
    for (const Operand& input : inputs) Broadcast(shape, input.Outer());
    const py::object mask = JointMask(given, procedure.signature.kinds.data());
    if (mask) RequireMasked(GivenArrays(out, procedure.signature.operands - inputs.size()));
    Operands outputs = Outputs(procedure, inputs, shape, out, width);
    Run(procedure, inputs, outputs, shape, threads);
    return Results(outputs, [&](std::size_t i) {
        const Kind kind = procedure.signature.kinds[inputs.size() + i];
        const py::object result = outputs[i].ToPython();
        return mask ? Masked(result, mask, TypeOf(kind).inner) : result;
    });
}

}  // namespace corvale::python
