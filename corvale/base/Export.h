/* Export.h: how a declaration of the public face is marked. For C99 and C++.
 *
 * CORVALE_API       visible to users of libCorvale; everything else stays inside the library
 * CORVALE_NOEXCEPT  in C++ a promise that no exception leaves; nothing in C
 */
#ifndef CORVALE_BASE_EXPORT_H
#define CORVALE_BASE_EXPORT_H

#if defined(__GNUC__) || defined(__clang__)
#define CORVALE_API __attribute__((visibility("default")))
#else
#define CORVALE_API
#endif

#ifdef __cplusplus
#define CORVALE_NOEXCEPT noexcept
#else
#define CORVALE_NOEXCEPT
#endif

#endif
