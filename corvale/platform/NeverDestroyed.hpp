// Internal to platform/: not installed, may change in any commit.
//
// Some standard libraries destroy a mutex of static lifetime at exit, but exit handlers that run
// later may still log. Where a mutex needs no destruction, as on Linux, this says nothing new.
#pragma once

#if __has_cpp_attribute(clang::no_destroy)
#define CORVALE_NEVER_DESTROYED [[clang::no_destroy]]
#else
#define CORVALE_NEVER_DESTROYED
#endif
