// From a C++ signature to a loop: what each type of parameter reads from its operand, or writes.
//
// A parameter of a value type is an input, a reference or a span or view that can be written an
// output; what is returned is the last output. Elements are read and written by memcpy where they
// are numbers: an operand need not be aligned.
#pragma once

#include "Lanes.hpp"

#include <corvale/numeric/Vectors.hpp>
#include <corvale/numeric/Views.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace corvale::python {

using GenFunctions::MatrixView;
using GenFunctions::Vector3;
using GenFunctions::VectorView;

template <class T>
T Load(const char* at) noexcept {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class T>
void Store(char* at, T value) noexcept {
    std::memcpy(at, &value, sizeof value);
}

template <class T>
constexpr Kind kNumber = std::is_same_v<T, double>         ? Kind::kReal
                         : std::is_same_v<T, std::int32_t> ? Kind::kInt32
                         : std::is_same_v<T, bool>         ? Kind::kBool
                                                           : Kind::kInt64;

/// NumPy fills a text with NULs, which it then does not show: they are not part of the text.
inline std::string_view WithoutFill(const char* at, Count width) noexcept {
    while (width > 0 && at[width - 1] == '\0') --width;
    return {at, static_cast<std::size_t>(width)};
}

/// From one real to the next.
constexpr Count kReal = sizeof(double);

/// Whether a double may lie there.
inline bool IsAligned(const char* at) noexcept {
    return reinterpret_cast<std::uintptr_t>(at) % alignof(double) == 0;
}

/// Whether the lane's elements, and their components, lie where a view of doubles can count them.
inline bool IsOfWholeReals(const Lane& lane) noexcept {
    return IsAligned(lane.at) && lane.step % kReal == 0 && lane.form->steps[0] % kReal == 0;
}

/// The most elements that a series or view of the library takes, rounded down.
constexpr Count kMostInOneCall = Count{1} << 30;

/// A text whose blanks at the end count: no element of the operand ends with NumPy's NULs.
struct FilledText {
    std::string_view text;
};

/// What a parameter of type `T` is while the procedure runs. Inputs: numbers.
template <class T>
struct Slot {
    static constexpr Kind kKind = kNumber<T>;
    static constexpr bool kOut = false;
    T value;
    Slot(char* at, const Form&) noexcept : value(Load<T>(at)) {}
    T Get() const noexcept { return value; }
    void Put(char*, const Form&) const noexcept {}
};

/// Outputs by reference: written when the procedure has returned.
template <class T>
struct Slot<T&> {
    static constexpr Kind kKind = kNumber<T>;
    static constexpr bool kOut = true;
    T value{};
    Slot(char*, const Form&) noexcept {}
    T& Get() noexcept { return value; }
    void Put(char* at, const Form&) const noexcept { Store(at, value); }
};

/// What goes straight through to the procedure.
template <class T, Kind kind, bool out>
struct Passed {
    static constexpr Kind kKind = kind;
    static constexpr bool kOut = out;
    T value;
    const T& Get() const noexcept { return value; }
    void Put(char*, const Form&) const noexcept {}
};

template <>
struct Slot<std::string_view> : Passed<std::string_view, Kind::kText, false> {
    Slot(char* at, const Form& form) noexcept : Passed{WithoutFill(at, form.width)} {}
};

template <>
struct Slot<FilledText> : Passed<FilledText, Kind::kFilledText, false> {
    Slot(char* at, const Form& form) noexcept
        : Passed{{{at, static_cast<std::size_t>(form.width)}}} {}
};

template <>
struct Slot<std::span<char>> : Passed<std::span<char>, Kind::kText, true> {
    Slot(char* at, const Form& form) noexcept
        : Passed{{at, static_cast<std::size_t>(form.width)}} {}
};

template <>
struct Slot<const Vector3&> : Passed<Vector3, Kind::kVector3, false> {
    Slot(char* at, const Form& form) noexcept
        : Passed{{Load<double>(at), Load<double>(at + form.steps[0]),
                  Load<double>(at + 2 * form.steps[0])}} {}
};

/// A vector that is handed on where it lies. Copied first, as others are, it is stored in pieces and
/// loaded whole: `cross` then takes four times as long.
struct DenseVector {
    const Vector3* vector;
    DenseVector(char* at, const Form&) noexcept : vector(reinterpret_cast<const Vector3*>(at)) {}
    const Vector3& Get() const noexcept { return *vector; }
    void Put(char*, const Form&) const noexcept {}
};

/// Views and tables: their operand is aligned, and its steps are whole elements.

template <>
struct Slot<std::span<const double>> : Passed<std::span<const double>, Kind::kTable, false> {
    Slot(char* at, const Form& form) noexcept
        : Passed{{reinterpret_cast<const double*>(at), static_cast<std::size_t>(form.extents[0])}} {
    }
};

template <class T>
struct Slot<VectorView<T>> : Passed<VectorView<T>, Kind::kVector, !std::is_const_v<T>> {
    Slot(char* at, const Form& form) noexcept
        : Passed<VectorView<T>, Kind::kVector, !std::is_const_v<T>>{
              {reinterpret_cast<T*>(at), static_cast<std::int32_t>(form.extents[0]),
               form.steps[0] / kReal}} {}
};

template <class T>
struct Slot<MatrixView<T>> : Passed<MatrixView<T>, Kind::kMatrix, !std::is_const_v<T>> {
    Slot(char* at, const Form& form) noexcept
        : Passed<MatrixView<T>, Kind::kMatrix, !std::is_const_v<T>>{
              {reinterpret_cast<T*>(at), static_cast<std::int32_t>(form.extents[0]),
               static_cast<std::int32_t>(form.extents[1]), form.steps[0] / kReal,
               form.steps[1] / kReal}} {}
};

/// What is returned: numbers.
template <class T>
struct Result {
    static constexpr Kind kKind = kNumber<T>;
    static constexpr Count kWidth = 0;
    static void Put(char* at, const Form&, T value) noexcept { Store(at, value); }
};

/// Texts of a fixed width, in an operand at least as wide.
template <std::size_t N>
struct Result<std::array<char, N>> {
    static constexpr Kind kKind = Kind::kText;
    static constexpr Count kWidth = N;
    static void Put(char* at, const Form& form, const std::array<char, N>& text) noexcept {
        std::memcpy(at, text.data(), N);
        std::fill(at + N, at + form.width, ' ');
    }
};

template <>
struct Result<Vector3> {
    static constexpr Kind kKind = Kind::kVector3;
    static constexpr Count kWidth = 0;
    static void Put(char* at, const Form& form, const Vector3& v) noexcept {
        if (form.steps[0] == sizeof(double)) return Store(at, v);
        for (std::size_t i = 0; i < 3; ++i) Store(at + static_cast<Count>(i) * form.steps[0], v[i]);
    }
};

/// What a call needs to know of a procedure.
struct Signature {
    Loop loop = nullptr;
    std::size_t inputs = 0, operands = 0;
    std::array<Kind, kMostOperands> kinds{};
    Count fixedWidth = 0;  ///< of the text that is returned, 0 where an argument sets it
};

template <auto procedure>
struct Described;

template <class R, class... A, R (*procedure)(A...) noexcept>
struct Described<procedure> {
    static constexpr bool kReturns = !std::is_void_v<R>;
    static constexpr std::size_t kOperands = sizeof...(A) + (kReturns ? 1 : 0);
    static_assert(kOperands <= kMostOperands);

    static void Run(Count count, const Lane* lanes) noexcept {
        constexpr bool hasVectors = ((Slot<A>::kKind == Kind::kVector3) || ...);
        constexpr std::index_sequence_for<A...> places;
        if constexpr (hasVectors)
            if (AreDense(lanes)) return RunOver<true>(count, lanes, places);
        RunOver<false>(count, lanes, places);
    }

    static constexpr Signature Describe() noexcept {
        Signature signature{
            &Run, (0 + ... + (Slot<A>::kOut ? 0 : 1)), kOperands, {Slot<A>::kKind...}, 0};
        if constexpr (kReturns) {
            signature.kinds[sizeof...(A)] = Result<R>::kKind;
            signature.fixedWidth = Result<R>::kWidth;
        }
        return signature;
    }

  private:
    template <class P, bool dense>
    using SlotOf =
        std::conditional_t<dense && Slot<P>::kKind == Kind::kVector3, DenseVector, Slot<P>>;

    /// Whether the vectors that go in can be handed on where they lie.
    static bool AreDense(const Lane* lanes) noexcept {
        constexpr std::array<Kind, sizeof...(A)> kinds{Slot<A>::kKind...};
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            const bool isDense = lanes[i].form->steps[0] == kReal && lanes[i].step % kReal == 0 &&
                                 IsAligned(lanes[i].at);
            if (kinds[i] == Kind::kVector3 && !isDense) return false;
        }
        return true;
    }

    template <bool dense, std::size_t... I>
    static void RunOver(Count count, const Lane* lanes, std::index_sequence<I...> places) noexcept {
        std::array<char*, kOperands> at;
        for (std::size_t i = 0; i < kOperands; ++i) at[i] = lanes[i].at;
        for (; count > 0; --count) {
            CallOnce(at, lanes, places, SlotOf<A, dense>(at[I], *lanes[I].form)...);
            for (std::size_t i = 0; i < kOperands; ++i) at[i] += lanes[i].step;
        }
    }

    template <std::size_t... I, class... S>
    static void CallOnce(const std::array<char*, kOperands>& at, const Lane* lanes,
                         std::index_sequence<I...>, S&&... slots) noexcept {
        if constexpr (kReturns)
            Result<R>::Put(at.back(), *lanes[kOperands - 1].form, procedure(slots.Get()...));
        else
            procedure(slots.Get()...);
        (slots.Put(at[I], *lanes[I].form), ...);
    }
};

/// The description of `procedure`, a function of the library or one of the same kind.
template <auto procedure>
constexpr Signature kSignature = Described<procedure>::Describe();

}  // namespace corvale::python
