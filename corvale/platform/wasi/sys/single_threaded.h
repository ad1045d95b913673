// Internal to platform/: not installed, may change in any commit.
//
// <sys/single_threaded.h> for WebAssembly: there is one thread.
#pragma once

inline constexpr char __libc_single_threaded = 1;
