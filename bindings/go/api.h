/* Internal to the Go binding, not installed: the C API as functions found in a loaded library.
 *
 * Arrays carry their widths, one element included; what is passed by value has no brackets.
 */
#ifndef CORVALE_BINDINGS_GO_API_H
#define CORVALE_BINDINGS_GO_API_H

#include <dlfcn.h>
#include <stddef.h>
#include <stdint.h>

/* clang-format off */
/* One line a function: result, name, arguments as declared, arguments as passed on. */
#define API(F) \
    F(int32_t, CorvaleInit, (void), ()) \
    F(void, CorvaleGetInfo, (char info[128]), (info)) \
    F(void, GetInitDllNames, (char names[512]), (names)) \
    F(int32_t, OpenLogFile, (const char fileName[512]), (fileName)) \
    F(void, CloseLogFile, (void), ()) \
    F(void, LogMessage, (const char message[128]), (message)) \
    F(void, GetLastErrMsg, (char message[128]), (message)) \
    F(void, GetLastInfoMsg, (char message[128]), (message)) \
    F(int32_t, GetDupKeyMode, (void), ()) \
    F(int32_t, SetDupKeyMode, (int32_t mode), (mode)) \
    F(int32_t, GetAllKeyMode, (void), ()) \
    F(int32_t, SetAllKeyMode, (int32_t mode), (mode)) \
    F(void, ResetAllKeyMode, (void), ()) \
    F(int32_t, GetElsetKeyMode, (void), ()) \
    F(int32_t, SetElsetKeyMode, (int32_t mode), (mode)) \
    F(int32_t, CorvaleLoadFile, (const char fileName[512]), (fileName)) \
    F(void, GetMOICData, (int32_t count, double values[]), (count, values)) \
    F(void, TestInterface, \
      (char cIn, char cOut[1], int32_t iIn, int32_t iOut[1], int64_t lIn, int64_t lOut[1], \
       double dIn, double dOut[1], const char strIn[512], char strOut[512], \
       const int32_t i3In[3], int32_t i3Out[3], const int64_t l3In[3], int64_t l3Out[3], \
       const double d3In[3], double d3Out[3], const int32_t i6In[6], int32_t i6Out[6], \
       const int64_t l6In[6], int64_t l6Out[6], const double d6In[6], double d6Out[6]), \
      (cIn, cOut, iIn, iOut, lIn, lOut, dIn, dOut, strIn, strOut, i3In, i3Out, l3In, l3Out, \
       d3In, d3Out, i6In, i6Out, l6In, l6Out, d6In, d6Out)) \
    F(void, TestInterface2, \
      (char ch[1], int32_t i[1], int64_t l[1], double d[1], char str[512], int32_t i3[3], \
       int64_t l3[3], double d3[3], int32_t i6[6], int64_t l6[6], double d6[6]), \
      (ch, i, l, d, str, i3, l3, d3, i6, l6, d6)) \
    F(void, TestInterface3, \
      (const int32_t i3In[3], int32_t i3Out[3], const int32_t i6In[6], int32_t i6Out[6]), \
      (i3In, i3Out, i6In, i6Out))

#define POINTER(result, name, declared, passed) result(*name) declared;
#define FIND(result, name, declared, passed) \
    *(void**)&api.name = dlsym(library, #name); \
    if (!api.name) return dlerror();
#define CALL(result, name, declared, passed) static inline result name declared { return api.name passed; }

/* The one library of the process, once OpenFace has succeeded. */
static struct { API(POINTER) } api;

/* Loads the library with local scope, for good. Returns the loader's reason when it or one of its
 * functions is not there, null otherwise. */
static inline const char* OpenFace(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) return dlerror();
    API(FIND)
    return NULL;
}

API(CALL)
/* clang-format on */

#endif
