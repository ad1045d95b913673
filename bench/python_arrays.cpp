// The C++ side of python_arrays.py: each topic over `count` elements in a plain loop, called through
// ctypes on the very arrays that Python works on.
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <cstring>

namespace gen = corvale::GenFunctions;
namespace str = corvale::StrFunctions;

namespace {

constexpr std::size_t kField = 23, kRow = 256;
constexpr std::int32_t kOrder = 6, kSquare = kOrder * kOrder, kPacked = 21;

}  // namespace

extern "C" {

void num_to_alpha5(std::int64_t count, const std::int32_t* numbers, char* codes) {
    for (std::int64_t i = 0; i < count; ++i)
        std::memcpy(codes + 5 * i, gen::NumToAlpha5(numbers[i]).data(), 5);
}

void alpha5_to_num(std::int64_t count, const char* codes, std::int32_t* numbers) {
    for (std::int64_t i = 0; i < count; ++i) numbers[i] = gen::Alpha5ToNum({codes + 5 * i, 5});
}

void str_to_real(std::int64_t count, const char* fields, double* values) {
    for (std::int64_t i = 0; i < count; ++i)
        values[i] = str::StrToReal({fields + i * kField, kField});
}

void fx0_to_text(std::int64_t count, const double* values, char* texts) {
    for (std::int64_t i = 0; i < count; ++i) str::Fx0ToAx(values[i], 12, {texts + 12 * i, 12});
}

void compress_csv_line(std::int64_t count, const char* rows, char* result) {
    for (std::int64_t i = 0; i < count; ++i) {
        std::memcpy(result + i * kRow, rows + i * kRow, kRow);
        str::CompressCsvLine({result + i * kRow, kRow});
    }
}

void fmod2p(std::int64_t count, const double* x, double* result) {
    for (std::int64_t i = 0; i < count; ++i) result[i] = gen::FMod2P(x[i]);
}

void deg_to_ddmmsss_str(std::int64_t count, const double* degrees, char* texts) {
    for (std::int64_t i = 0; i < count; ++i)
        std::memcpy(texts + 11 * i, gen::DegToDDMMSSSSS_Str(degrees[i]).data(), 11);
}

void is_dma(std::int64_t count, const std::int64_t* keys, bool* result) {
    for (std::int64_t i = 0; i < count; ++i) result[i] = gen::IsDma(keys[i]) != 0;
}

void cross(std::int64_t count, const gen::Vector3* a, const gen::Vector3* b, gen::Vector3* result) {
    for (std::int64_t i = 0; i < count; ++i) result[i] = gen::Cross(a[i], b[i]);
}

void rodrigues_rot(std::int64_t count, const gen::Vector3* v, const double* angles,
                   const gen::Vector3* axes, gen::Vector3* result) {
    for (std::int64_t i = 0; i < count; ++i)
        result[i] = gen::RodriguesRot(v[i], angles[i], axes[i]);
}

void mag(std::int64_t count, const gen::Vector3* v, double* result) {
    for (std::int64_t i = 0; i < count; ++i) result[i] = gen::Mag(v[i]);
}

void cholesky(std::int64_t count, const double* a, const double* b, double* inverse, double* x) {
    for (std::int64_t i = 0; i < count; ++i)
        gen::Cholesky(a + i * kSquare, b + i * kOrder, kOrder, inverse + i * kSquare,
                      x + i * kOrder);
}

void mtx_inv(std::int64_t count, const double* a, double* result) {
    for (std::int64_t i = 0; i < count; ++i)
        gen::MtxInv({a + i * kSquare, kOrder, kOrder}, {result + i * kSquare, kOrder, kOrder});
}

void lta_to_sqr_mtx(std::int64_t count, const double* packed, double* square) {
    for (std::int64_t i = 0; i < count; ++i)
        gen::Lta2SqrMtx({packed + i * kPacked, kPacked}, {square + i * kSquare, kOrder, kOrder});
}

void isort(std::int64_t count, const std::int32_t* values, std::int32_t* list) {
    std::memcpy(list, values, static_cast<std::size_t>(count) * sizeof *list);
    auto n = static_cast<std::int32_t>(count);
    gen::ISort(1, list, n);
}

void quick_sort(std::int64_t count, const char* keys, const std::int64_t* companion, char* sorted,
                std::int64_t* moved) {
    std::memcpy(sorted, keys, static_cast<std::size_t>(count) * 32);
    std::memcpy(moved, companion, static_cast<std::size_t>(count) * sizeof *moved);
    corvale::Sorting::QuickSortIterative(static_cast<std::int32_t>(count),
                                         reinterpret_cast<corvale::Sorting::Key*>(sorted), moved);
}

}  // extern "C"
