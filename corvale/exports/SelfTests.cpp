// The self-tests of the C API: whether a caller in any language passes every kind of argument. They
// touch no state, and their amounts differ from argument to argument, so that an exchange shows.
//
// Values move as bytes, never as elements: a caller may pass arrays at any address, aligned or not,
// and a signalling NaN must arrive as it was. An array of results may be the array of inputs.
#include <corvale/exports/CorvaleDllExports.h>

#include <corvale/text/FixedWidthText.hpp>

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

using namespace corvale;

namespace {

// `memmove`, since `in` and `out` may be the same array.
template <std::size_t Count, class Element>
void Copy(const Element* in, Element* out) noexcept {
    if (in == nullptr || out == nullptr) return;
    std::memmove(static_cast<void*>(out), static_cast<const void*>(in), Count * sizeof(Element));
}

template <class Value>
void Put(Value value, Value* out) noexcept {
    if (out != nullptr) std::memcpy(static_cast<void*>(out), &value, sizeof value);
}

// Replaces each of `Count` elements by what `change` makes of it.
template <std::size_t Count, class Element, class Change>
void ChangeEach(Element* values, Change change) noexcept {
    if (values == nullptr) return;
    std::array<Element, Count> copy;
    std::memcpy(copy.data(), static_cast<const void*>(values), sizeof copy);
    for (Element& element : copy) element = change(element);
    std::memcpy(static_cast<void*>(values), copy.data(), sizeof copy);
}

// Adds `amount` to each element. Integers wrap, by unsigned arithmetic, since a signed overflow is
// undefined; reals are added once, so that the result is the same bits everywhere.
template <std::size_t Count, class Element>
void AddTo(Element* values, Element amount) noexcept {
    ChangeEach<Count>(values, [amount](Element element) {
        if constexpr (std::is_integral_v<Element>) {
            using Bits = std::make_unsigned_t<Element>;
            return static_cast<Element>(static_cast<Bits>(element) + static_cast<Bits>(amount));
        } else {
            return element + amount;
        }
    });
}

// Products wrap, too.
template <std::size_t Count>
void MultiplyBy(std::int32_t factor, const std::int32_t* in, std::int32_t* out) noexcept {
    if (in == nullptr) return;
    Copy<Count>(in, out);
    ChangeEach<Count>(out, [factor](std::int32_t element) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(element) *
                                         static_cast<std::uint32_t>(factor));
    });
}

}  // namespace

void TestInterface(char cIn, char* cOut, int32_t iIn, int32_t* iOut, int64_t lIn, int64_t* lOut,
                   double dIn, double* dOut, const char* strIn, char* strOut, const int32_t* i3In,
                   int32_t* i3Out, const int64_t* l3In, int64_t* l3Out, const double* d3In,
                   double* d3Out, const int32_t* i6In, int32_t* i6Out, const int64_t* l6In,
                   int64_t* l6Out, const double* d6In, double* d6Out) noexcept {
    Put(cIn, cOut);
    Put(iIn, iOut);
    Put(lIn, lOut);
    Put(dIn, dOut);
    std::array<char, CORVALE_NAME_WIDTH> text;
    StrFunctions::CharArrToStr(strIn, CORVALE_NAME_WIDTH, text);
    StrFunctions::StrToCharArr({text.data(), text.size()}, CORVALE_NAME_WIDTH, strOut);
    Copy<3>(i3In, i3Out);
    Copy<3>(l3In, l3Out);
    Copy<3>(d3In, d3Out);
    Copy<6>(i6In, i6Out);
    Copy<6>(l6In, l6Out);
    Copy<6>(d6In, d6Out);
}

void TestInterface2(char* ch, int32_t* i, int64_t* l, double* d, char* str, int32_t* i3,
                    int64_t* l3, double* d3, int32_t* i6, int64_t* l6, double* d6) noexcept {
    Put('Z', ch);
    AddTo<1>(i, std::int32_t{1});
    AddTo<1>(l, std::int64_t{2});
    AddTo<1>(d, 42.123456);
    StrFunctions::StrToCharArr("It doesn't matter what your string was.", CORVALE_NAME_WIDTH, str);
    AddTo<3>(i3, std::int32_t{1});
    AddTo<3>(l3, std::int64_t{1234567890123456789});
    AddTo<3>(d3, 42.0);
    AddTo<6>(i6, std::int32_t{1});
    AddTo<6>(l6, std::int64_t{6});
    AddTo<6>(d6, 7.6);
}

void TestInterface3(const int32_t* i3In, int32_t* i3Out, const int32_t* i6In,
                    int32_t* i6Out) noexcept {
    MultiplyBy<3>(4, i3In, i3Out);
    MultiplyBy<6>(5, i6In, i6Out);
}
