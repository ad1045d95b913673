/* Internal to the R binding, not installed: the C API as functions found in a loaded library.
 *
 * Arrays carry their widths, one element included; what is passed by value has no brackets.
 */
#ifndef CORVALE_BINDINGS_R_API_H
#define CORVALE_BINDINGS_R_API_H

#include <stdint.h>

/* clang-format off */
/* One line a function: result, name, arguments. */
#define API(F) \
    F(int32_t, CorvaleInit, (void)) \
    F(void, CorvaleGetInfo, (char info[128])) \
    F(void, GetInitDllNames, (char names[512])) \
    F(int32_t, OpenLogFile, (const char fileName[512])) \
    F(void, CloseLogFile, (void)) \
    F(void, LogMessage, (const char message[128])) \
    F(void, GetLastErrMsg, (char message[128])) \
    F(void, GetLastInfoMsg, (char message[128])) \
    F(int32_t, GetDupKeyMode, (void)) \
    F(int32_t, SetDupKeyMode, (int32_t mode)) \
    F(int32_t, GetAllKeyMode, (void)) \
    F(int32_t, SetAllKeyMode, (int32_t mode)) \
    F(void, ResetAllKeyMode, (void)) \
    F(int32_t, GetElsetKeyMode, (void)) \
    F(int32_t, SetElsetKeyMode, (int32_t mode)) \
    F(int32_t, CorvaleLoadFile, (const char fileName[512])) \
    F(void, GetMOICData, (int32_t count, double values[])) \
    F(void, TestInterface, \
      (char cIn, char cOut[1], int32_t iIn, int32_t iOut[1], int64_t lIn, int64_t lOut[1], \
       double dIn, double dOut[1], const char strIn[512], char strOut[512], \
       const int32_t i3In[3], int32_t i3Out[3], const int64_t l3In[3], int64_t l3Out[3], \
       const double d3In[3], double d3Out[3], const int32_t i6In[6], int32_t i6Out[6], \
       const int64_t l6In[6], int64_t l6Out[6], const double d6In[6], double d6Out[6])) \
    F(void, TestInterface2, \
      (char ch[1], int32_t i[1], int64_t l[1], double d[1], char str[512], int32_t i3[3], \
       int64_t l3[3], double d3[3], int32_t i6[6], int64_t l6[6], double d6[6])) \
    F(void, TestInterface3, \
      (const int32_t i3In[3], int32_t i3Out[3], const int32_t i6In[6], int32_t i6Out[6]))
/* clang-format on */

#endif
