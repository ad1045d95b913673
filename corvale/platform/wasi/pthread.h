// Internal to platform/: not installed, may change in any commit.
//
// <pthread.h> for WebAssembly: there is one thread, which nobody can cancel.
#pragma once

#define PTHREAD_CANCEL_DISABLE 1

inline int pthread_setcancelstate(int, int*) {
    return 0;
}
