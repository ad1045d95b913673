# Builds for WebAssembly with WASI, by Debian's Clang, wasi-libc and libc++-14-dev-wasm32:
#
#     cmake -S . -B build/wasm -DCMAKE_TOOLCHAIN_FILE=cmake/wasm32-wasi.cmake
list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}")
set(CMAKE_SYSTEM_NAME WASI)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET wasm32-wasi)
set(CMAKE_CXX_COMPILER_TARGET wasm32-wasi)
set(CMAKE_AR llvm-ar-14)
set(CMAKE_RANLIB llvm-ranlib-14)
# The C++ library for this system has no exceptions, the processor 16-byte vectors.
set(CMAKE_CXX_FLAGS_INIT "-fno-exceptions -msimd128")
set(CMAKE_C_FLAGS_INIT "-msimd128")
