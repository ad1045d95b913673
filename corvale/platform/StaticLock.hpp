// Internal to platform/: not installed, may change in any commit.
//
// A mutex of static lifetime, or an object with one, is usable before the first static constructor
// and in the last exit handler. CORVALE_STATIC_LOCK makes it so: it needs no construction, and
// where the standard library would destroy it at exit it is told not to. MinGW's mutexes are
// constructed and destroyed in any case: there it comes before everything else, and goes after it.
#pragma once

#if defined(__MINGW32__)
#define CORVALE_STATIC_LOCK [[gnu::init_priority(101)]]
#elif __has_cpp_attribute(clang::no_destroy)
#define CORVALE_STATIC_LOCK [[clang::no_destroy]] constinit
#else
#define CORVALE_STATIC_LOCK constinit
#endif
