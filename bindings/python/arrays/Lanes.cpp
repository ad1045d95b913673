#include "Lanes.hpp"

#include <algorithm>

namespace corvale::python {
namespace {

// Whether every operand goes from the end of axis `axis` + 1 to its next start in even steps.
bool IsEven(const std::vector<Count>& shape, const std::vector<Strided>& operands,
            std::size_t axis) {
    return std::all_of(operands.begin(), operands.end(), [&](const Strided& operand) {
        return operand.steps[axis] == operand.steps[axis + 1] * shape[axis + 1];
    });
}

void Drop(std::vector<Count>& shape, std::vector<Strided>& operands, std::size_t axis) {
    shape.erase(shape.begin() + static_cast<Count>(axis));
    for (Strided& operand : operands)
        operand.steps.erase(operand.steps.begin() + static_cast<Count>(axis));
}

void Merge(std::vector<Count>& shape, std::vector<Strided>& operands) {
    for (std::size_t axis = shape.size(); axis-- > 0;)
        if (shape[axis] == 1) Drop(shape, operands, axis);
    for (std::size_t axis = shape.size(); axis-- > 1;) {
        if (!IsEven(shape, operands, axis - 1)) continue;
        shape[axis] *= shape[axis - 1];
        Drop(shape, operands, axis - 1);
    }
}

// Moves to the next stretch; false after the last one. `place` counts all axes but the last.
bool Advance(const std::vector<Count>& shape, std::vector<Count>& place,
             const std::vector<Strided>& operands, std::array<Lane, kMostOperands>& lanes) {
    for (std::size_t axis = place.size(); axis-- > 0;) {
        const bool isEnd = ++place[axis] == shape[axis];
        const Count move = isEnd ? 1 - shape[axis] : 1;
        for (std::size_t i = 0; i < operands.size(); ++i)
            lanes[i].at += move * operands[i].steps[axis];
        if (!isEnd) return true;
        place[axis] = 0;
    }
    return false;
}

}  // namespace

void Walk(Loop loop, std::vector<Count> shape, std::vector<Strided> operands) {
    if (std::find(shape.begin(), shape.end(), 0) != shape.end()) return;
    Merge(shape, operands);
    std::array<Lane, kMostOperands> lanes{};
    for (std::size_t i = 0; i < operands.size(); ++i)
        lanes[i] = {operands[i].data, shape.empty() ? 0 : operands[i].steps.back(),
                    operands[i].form};
    const Count length = shape.empty() ? 1 : shape.back();
    std::vector<Count> place(shape.empty() ? 0 : shape.size() - 1, 0);
    do loop(length, lanes.data());
    while (Advance(shape, place, operands, lanes));
}

}  // namespace corvale::python
