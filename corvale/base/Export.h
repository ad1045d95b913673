/* Export.h: how a declaration of the public API is marked. For C99 and C++.
 *
 * CORVALE_API       visible to users of libCorvale; everything else stays inside the library. On
 *                   Windows the linker finds what it names, data too, without a word in the
 *                   user's code
 * CORVALE_NOEXCEPT  in C++ a promise that no exception leaves; nothing in C
 */
#ifndef CORVALE_BASE_EXPORT_H
#define CORVALE_BASE_EXPORT_H

#if defined(_WIN32) && defined(Corvale_EXPORTS) /* while the shared library is built */
#define CORVALE_API __declspec(dllexport)
#elif defined(__GNUC__) && !defined(_WIN32)
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
