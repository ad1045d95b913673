# CMake does not know the system: static libraries, programs that end in .wasm.
set(WASI 1)
set(CMAKE_EXECUTABLE_SUFFIX ".wasm")
set_property(GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS FALSE)
