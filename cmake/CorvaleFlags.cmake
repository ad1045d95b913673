# The flags of everything that is built here. Results must be the same to the last bit everywhere:
# no flag that lets a compiler change floating-point arithmetic may reach the library.

get_cmake_property(all_variables VARIABLES)
list(FILTER all_variables INCLUDE REGEX "^CMAKE_(C|CXX|EXE_LINKER|SHARED_LINKER)_FLAGS")
foreach(flags IN LISTS all_variables)
  if("${${flags}}" MATCHES "-ffast-math|-Ofast|-funsafe-math-optimizations|-ffinite-math-only|-fassociative-math|-freciprocal-math")
    message(FATAL_ERROR "Corvale: ${flags} asks for inexact arithmetic (${${flags}}); results would differ")
  endif()
endforeach()

add_library(corvale_flags INTERFACE)
target_compile_features(corvale_flags INTERFACE cxx_std_20 c_std_99)
target_compile_options(corvale_flags INTERFACE -ffp-contract=off -fno-fast-math
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${CORVALE_WARNINGS_AS_ERRORS}>:-Werror>)
target_link_options(corvale_flags INTERFACE -fno-fast-math)

if(CORVALE_SANITIZE)
  # GCC warns of uninitialised values that are none once it has instrumented the code.
  target_compile_options(corvale_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_options(corvale_flags INTERFACE
    -fsanitize=${CORVALE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(corvale_flags INTERFACE -fsanitize=${CORVALE_SANITIZE})
endif()
