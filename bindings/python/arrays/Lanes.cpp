#include "Lanes.hpp"

#include <algorithm>
#include <future>
#include <system_error>
#include <utility>

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

// Whether a step along `axis` leaves an operand that is written where it is.
bool MeetsItself(const std::vector<Count>& shape, const std::vector<Strided>& operands,
                 std::size_t inputs, std::size_t axis) {
    return shape[axis] > 1 &&
           std::any_of(operands.begin() + static_cast<Count>(inputs), operands.end(),
                       [axis](const Strided& operand) { return operand.steps[axis] == 0; });
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

void WalkOnThreads(Loop loop, const std::vector<Count>& shape, const std::vector<Strided>& operands,
                   std::size_t inputs, Count threads) {
    const auto longest = std::max_element(shape.begin(), shape.end());
    const Count length = longest == shape.end() ? 0 : *longest;
    const auto axis = static_cast<std::size_t>(longest - shape.begin());
    if (threads < 2 || length < 2 || MeetsItself(shape, operands, inputs, axis))
        return Walk(loop, shape, operands);

    threads = std::min(threads, length);
    std::vector<std::future<void>> others;
    const auto walkPart = [&](Count part) {
        const Count first = length / threads * part + std::min(part, length % threads);
        std::vector<Count> partShape = shape;
        partShape[axis] = length / threads + (part < length % threads ? 1 : 0);
        std::vector<Strided> parts = operands;
        for (Strided& operand : parts) operand.data += first * operand.steps[axis];
        Walk(loop, std::move(partShape), std::move(parts));
    };
    Count part = 1;
    try {
        for (; part < threads; ++part)
            others.push_back(std::async(std::launch::async, walkPart, part));
    } catch (const std::system_error&) {  // no more threads: the rest is done here
    }
    for (; part < threads; ++part) walkPart(part);
    walkPart(0);
    for (std::future<void>& other : others) other.get();
}

}  // namespace corvale::python
