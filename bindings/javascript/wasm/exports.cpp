// What the JavaScript package calls beside the C API: procedures over texts and arrays in the module's
// memory. Internal to the package.
#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <cstdint>

#define EXPORTED(name) extern "C" __attribute__((export_name(#name)))

namespace {

using namespace corvale;

template <std::size_t kSize>
void Write(const std::array<char, kSize>& from, char* to) {
    std::copy(from.begin(), from.end(), to);
}

template <auto kFunction>
void OfEach(const double* x, double* result, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) result[i] = kFunction(x[i]);
}

template <auto kFunction>
void OfPairs(const double* a, const double* b, double* result, std::int32_t n) {
    for (std::int32_t i = 0; i < n; ++i) result[i] = kFunction(a[i], b[i]);
}

std::string_view TextOf(const char* text, std::int32_t length) {
    return {text, static_cast<std::size_t>(length)};
}

}  // namespace

EXPORTED(numToAlpha5) void NumToAlpha5(std::int32_t number, char* code) {
    Write(GenFunctions::NumToAlpha5(number), code);
}
EXPORTED(alpha5ToNum) std::int32_t Alpha5ToNum(const char* code, std::int32_t length) {
    return GenFunctions::Alpha5ToNum(TextOf(code, length));
}
EXPORTED(strToReal) double StrToReal(const char* text, std::int32_t length) {
    return StrFunctions::StrToReal(TextOf(text, length));
}
EXPORTED(strToInt) std::int32_t StrToInt(const char* text, std::int32_t length) {
    return StrFunctions::StrToInt(TextOf(text, length));
}
EXPORTED(compressCsvLine) void CompressCsvLine(char* line, std::int32_t length) {
    StrFunctions::CompressCsvLine({line, static_cast<std::size_t>(length)});
}
EXPORTED(degToDDMMSSSSSStr) void DegToDDMMSSSSSStr(double degrees, char* text) {
    Write(GenFunctions::DegToDDMMSSSSS_Str(degrees), text);
}
EXPORTED(degToHHMMSSSStr) void DegToHHMMSSSStr(double degrees, char* text) {
    Write(GenFunctions::DegToHHMMSSS_Str(degrees), text);
}

EXPORTED(fMod2P) void FMod2P(const double* x, double* result, std::int32_t n) {
    OfEach<GenFunctions::FMod2P>(x, result, n);
}
EXPORTED(acSin) void AcSin(const double* x, double* result, std::int32_t n) {
    OfEach<GenFunctions::AcSin>(x, result, n);
}
EXPORTED(cubRt) void CubRt(const double* x, double* result, std::int32_t n) {
    OfEach<GenFunctions::CubRt>(x, result, n);
}
EXPORTED(serExp) void SerExp(const double* x, double* result, std::int32_t n) {
    OfEach<GenFunctions::SerExp>(x, result, n);
}
EXPORTED(sin) void Sin(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::Sin>(x, result, n);
}
EXPORTED(cos) void Cos(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::Cos>(x, result, n);
}
EXPORTED(arcTan) void ArcTan(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::ArcTan>(x, result, n);
}
EXPORTED(arcCos) void ArcCos(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::ArcCos>(x, result, n);
}
EXPORTED(exp) void Exp(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::Exp>(x, result, n);
}
EXPORTED(cubeRoot) void CubeRoot(const double* x, double* result, std::int32_t n) {
    OfEach<Elementary::CubeRoot>(x, result, n);
}
EXPORTED(acTan) void AcTan(const double* s, const double* c, double* result, std::int32_t n) {
    OfPairs<GenFunctions::AcTan>(s, c, result, n);
}
EXPORTED(deltaAngleLT180)
void DeltaAngleLT180(const double* a, const double* b, double* result, std::int32_t n) {
    OfPairs<GenFunctions::DeltaAngleLT180>(a, b, result, n);
}
EXPORTED(arcTan2) void ArcTan2(const double* y, const double* x, double* result, std::int32_t n) {
    OfPairs<Elementary::ArcTan2>(y, x, result, n);
}

EXPORTED(cholesky)
void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x) {
    GenFunctions::Cholesky(a, b, n, inverse, x);
}
EXPORTED(mtxInv) void MtxInv(const double* a, std::int32_t n, double* inverse) {
    GenFunctions::MtxInv({a, n, n}, {inverse, n, n});
}
