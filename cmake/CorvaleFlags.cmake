# The flags of everything that is built here. Results must be the same to the last bit everywhere:
# no flag that lets a compiler change floating-point arithmetic may reach the library.

# Asked for by who builds Corvale, it is a mistake worth telling. What a project around this one wants
# for its own code is overruled below.
get_cmake_property(all_variables VARIABLES)
list(FILTER all_variables INCLUDE REGEX "^CMAKE_(C|CXX|EXE_LINKER|SHARED_LINKER)_FLAGS")
if(NOT PROJECT_IS_TOP_LEVEL)
  set(all_variables)
endif()
foreach(flags IN LISTS all_variables)
  if("${${flags}}" MATCHES "-ffast-math|-Ofast|-funsafe-math-optimizations|-ffinite-math-only|-fassociative-math|-freciprocal-math|-fsingle-precision-constant|-mdaz-ftz")
    message(FATAL_ERROR "Corvale: ${flags} asks for inexact arithmetic (${${flags}}); results would differ")
  endif()
endforeach()

# They come last on every command line, so that they win. -fno-fast-math takes back all parts of
# -ffast-math; what it leaves alone follows it.
set(exact_arithmetic -ffp-contract=off -fno-fast-math -fno-rounding-math
  $<$<CXX_COMPILER_ID:GNU>:-fno-single-precision-constant>)
set(CORVALE_ON_X86 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64|i.86)$")
  set(CORVALE_ON_X86 ON)
  list(APPEND exact_arithmetic -mfpmath=sse
    $<IF:$<CXX_COMPILER_ID:GNU>,-mno-recip,-mrecip=none>)
endif()

# What a distribution builds its packages with: an overflow of a stack array, a jump into the middle of a
# function or a write to the table of imports ends the process. Measured: docs/reliability.md.
set(hardening)
if(CORVALE_HARDEN AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT CORVALE_SANITIZE)
  set(hardening -fstack-protector-strong -fstack-clash-protection
    $<$<BOOL:${CORVALE_ON_X86}>:-fcf-protection=full>
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
endif()

# A folder's name is nobody's business and must not make two builds differ.
set(without_folders "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=."
  "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")

add_library(corvale_flags INTERFACE)
target_compile_features(corvale_flags INTERFACE cxx_std_20 c_std_99)
target_compile_options(corvale_flags INTERFACE ${hardening} ${exact_arithmetic} ${without_folders}
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${CORVALE_WARNINGS_AS_ERRORS}>:-Werror>)
# With one of these, or -Ofast, a compiler links code that flushes subnormals in the whole process.
target_link_options(corvale_flags INTERFACE -O2 -fno-fast-math -fno-unsafe-math-optimizations)

if(hardening)
  target_link_options(corvale_flags INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()

if(CORVALE_SANITIZE)
  # GCC warns of uninitialised values that are none once it has instrumented the code.
  target_compile_options(corvale_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_options(corvale_flags INTERFACE
    -fsanitize=${CORVALE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(corvale_flags INTERFACE -fsanitize=${CORVALE_SANITIZE})
endif()
