/* What R calls: each function of the C API under its own name, with R's vectors.
 *
 * The functions in R have checked their values; here every vector is checked for the type and length
 * that the library reads or writes. Texts are raw vectors, integers of 64 bits the bits of a real, as
 * the package bit64 has them.
 */
#include "api.h"

#include <R.h>
#include <R_ext/Rdynload.h>
#include <Rinternals.h>
#include <dlfcn.h>
#include <string.h>

#define NAME_WIDTH 512
#define MESSAGE_WIDTH 128

#define POINTER(result, name, arguments) result(*name) arguments;
struct Functions {
    API(POINTER)
};

/* The one library of the process, once Open has succeeded; null before. */
static struct Functions api;

#define FIND(result, name, arguments)             \
    *(void**)&found.name = dlsym(library, #name); \
    if (!found.name) error("%s", dlerror());

/* Loads a library with local scope, for good, and finds every function. */
static SEXP Open(SEXP path) {
    struct Functions found;
    void* library = dlopen(CHAR(STRING_ELT(path, 0)), RTLD_NOW | RTLD_LOCAL);
    if (!library) error("%s", dlerror());
    API(FIND)
    api = found;
    return R_NilValue;
}

static const struct Functions* Api(void) {
    if (!api.CorvaleInit) error("the library is not loaded, call corvale_open first");
    return &api;
}

static void* Elements(SEXP vector) {
    switch (TYPEOF(vector)) {
        case RAWSXP:
            return RAW(vector);
        case INTSXP:
            return INTEGER(vector);
        default:
            return REAL(vector);
    }
}

/* The elements of a vector that has to be of this type and length. */
static void* Need(SEXP vector, SEXPTYPE type, R_xlen_t length) {
    if ((SEXPTYPE)TYPEOF(vector) != type || XLENGTH(vector) != length)
        error("not %d elements of type %s", (int)length, type2char(type));
    return Elements(vector);
}

static SEXP Zeros(SEXPTYPE type, R_xlen_t length) {
    SEXP vector = allocVector(type, length);
    const size_t size = type == RAWSXP ? 1 : type == INTSXP ? sizeof(int) : sizeof(double);
    memset(Elements(vector), 0, (size_t)length * size);
    return vector;
}

/* The shapes of all but five functions: called alone, giving a number, taking a mode, a name; writing
 * a text. */
#define CALL(name)                        \
    static SEXP name(void) {              \
        return Api()->name(), R_NilValue; \
    }
#define GET(name)                            \
    static SEXP name(void) {                 \
        return ScalarInteger(Api()->name()); \
    }
#define SET(name)                                                        \
    static SEXP name(SEXP mode) {                                        \
        return ScalarInteger(Api()->name(*(int*)Need(mode, INTSXP, 1))); \
    }
#define USE(name)                                                          \
    static SEXP name(SEXP text) {                                          \
        return ScalarInteger(Api()->name(Need(text, RAWSXP, NAME_WIDTH))); \
    }
#define READ(name, width)                          \
    static SEXP name(void) {                       \
        SEXP text = PROTECT(Zeros(RAWSXP, width)); \
        Api()->name((char*)RAW(text));             \
        UNPROTECT(1);                              \
        return text;                               \
    }

GET(CorvaleInit)
READ(CorvaleGetInfo, MESSAGE_WIDTH)
READ(GetInitDllNames, NAME_WIDTH)
USE(OpenLogFile)
CALL(CloseLogFile)
READ(GetLastErrMsg, MESSAGE_WIDTH)
READ(GetLastInfoMsg, MESSAGE_WIDTH)
GET(GetDupKeyMode)
SET(SetDupKeyMode)
GET(GetAllKeyMode)
SET(SetAllKeyMode)
CALL(ResetAllKeyMode)
GET(GetElsetKeyMode)
SET(SetElsetKeyMode)
USE(CorvaleLoadFile)

static SEXP LogMessage(SEXP text) {
    Api()->LogMessage(Need(text, RAWSXP, MESSAGE_WIDTH));
    return R_NilValue;
}

static SEXP GetMOICData(SEXP count) {
    const int elements = *(int*)Need(count, INTSXP, 1);
    SEXP values = PROTECT(Zeros(REALSXP, elements < 0 ? 0 : elements));
    Api()->GetMOICData(elements, REAL(values));
    UNPROTECT(1);
    return values;
}

/* One of each kind of argument, in the order in which the interface tests take them. */
static const struct {
    SEXPTYPE type;
    int length;
} kFields[] = {{RAWSXP, 1},          {INTSXP, 1},  {REALSXP, 1}, {REALSXP, 1},
               {RAWSXP, NAME_WIDTH}, {INTSXP, 3},  {REALSXP, 3}, {REALSXP, 3},
               {INTSXP, 6},          {REALSXP, 6}, {REALSXP, 6}};
enum { kFieldCount = sizeof kFields / sizeof *kFields };

static SEXP ZeroFields(void) {
    SEXP fields = PROTECT(allocVector(VECSXP, kFieldCount));
    for (int k = 0; k < kFieldCount; ++k)
        SET_VECTOR_ELT(fields, k, Zeros(kFields[k].type, kFields[k].length));
    UNPROTECT(1);
    return fields;
}

/* Where the elements of all fields are. */
static void FindFields(SEXP fields, void* at[kFieldCount]) {
    if (TYPEOF(fields) != VECSXP || XLENGTH(fields) != kFieldCount)
        error("not %d fields", kFieldCount);
    for (int k = 0; k < kFieldCount; ++k)
        at[k] = Need(VECTOR_ELT(fields, k), kFields[k].type, kFields[k].length);
}

static SEXP TestInterface(SEXP from) {
    SEXP to = PROTECT(ZeroFields());
    void *in[kFieldCount], *out[kFieldCount];
    FindFields(from, in);
    FindFields(to, out);
    Api()->TestInterface(*(char*)in[0], out[0], *(int32_t*)in[1], out[1], *(int64_t*)in[2], out[2],
                         *(double*)in[3], out[3], in[4], out[4], in[5], out[5], in[6], out[6],
                         in[7], out[7], in[8], out[8], in[9], out[9], in[10], out[10]);
    UNPROTECT(1);
    return to;
}

static SEXP TestInterface2(SEXP from) {
    SEXP fields = PROTECT(duplicate(from));
    void* at[kFieldCount];
    FindFields(fields, at);
    Api()->TestInterface2(at[0], at[1], at[2], at[3], at[4], at[5], at[6], at[7], at[8], at[9],
                          at[10]);
    UNPROTECT(1);
    return fields;
}

static SEXP TestInterface3(SEXP i3, SEXP i6) {
    SEXP products = PROTECT(allocVector(VECSXP, 2));
    SET_VECTOR_ELT(products, 0, Zeros(INTSXP, 3));
    SET_VECTOR_ELT(products, 1, Zeros(INTSXP, 6));
    Api()->TestInterface3(Need(i3, INTSXP, 3), INTEGER(VECTOR_ELT(products, 0)),
                          Need(i6, INTSXP, 6), INTEGER(VECTOR_ELT(products, 1)));
    UNPROTECT(1);
    return products;
}

#define ROUTINE(name, arguments) \
    { #name, (DL_FUNC)name, arguments }

void R_init_corvale(DllInfo* info) {
    static const R_CallMethodDef kRoutines[] = {ROUTINE(Open, 1),
                                                ROUTINE(CorvaleInit, 0),
                                                ROUTINE(CorvaleGetInfo, 0),
                                                ROUTINE(GetInitDllNames, 0),
                                                ROUTINE(OpenLogFile, 1),
                                                ROUTINE(CloseLogFile, 0),
                                                ROUTINE(LogMessage, 1),
                                                ROUTINE(GetLastErrMsg, 0),
                                                ROUTINE(GetLastInfoMsg, 0),
                                                ROUTINE(GetDupKeyMode, 0),
                                                ROUTINE(SetDupKeyMode, 1),
                                                ROUTINE(GetAllKeyMode, 0),
                                                ROUTINE(SetAllKeyMode, 1),
                                                ROUTINE(ResetAllKeyMode, 0),
                                                ROUTINE(GetElsetKeyMode, 0),
                                                ROUTINE(SetElsetKeyMode, 1),
                                                ROUTINE(CorvaleLoadFile, 1),
                                                ROUTINE(GetMOICData, 1),
                                                ROUTINE(TestInterface, 1),
                                                ROUTINE(TestInterface2, 1),
                                                ROUTINE(TestInterface3, 2),
                                                {NULL, NULL, 0}};
    R_registerRoutines(info, NULL, kRoutines, NULL, NULL);
    R_useDynamicSymbols(info, FALSE);
}
