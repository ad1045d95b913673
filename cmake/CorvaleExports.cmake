# What libCorvale shows of itself. Exports are the C API and corvale::, nothing else. The library
# calls its own functions whatever the program defines under the same names, and stays loaded: its
# state and its open log survive dlclose.
#
# With CORVALE_C_PREFIX the library is built for the inside of another product: its C names, its
# file and its version nodes carry the prefix, and it shares nothing with a Corvale beside it.
include(CheckLinkerFlag)

set(version_script "${PROJECT_SOURCE_DIR}/corvale/Corvale.map")
file(READ "${version_script}" exports)
string(REGEX MATCH "global:([^}]*)local:" c_api "${exports}")
string(REGEX MATCHALL "[A-Za-z0-9]+" c_api "${CMAKE_MATCH_1}")

# corvale_prefix(OUT-VARIABLE TEXT): TEXT with the prefix before the C names in it. Directly behind
# a quotation mark they begin a message, which stays as it is.
function(corvale_prefix variable text)
  foreach(name IN LISTS c_api)
    string(REGEX REPLACE "([^A-Za-z0-9_\"])${name}([^A-Za-z0-9_])"
      "\\1${CORVALE_C_PREFIX}${name}\\2" text "${text}")
  endforeach()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

if(CORVALE_C_PREFIX)
  if(NOT CORVALE_C_PREFIX MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
    message(FATAL_ERROR "CORVALE_C_PREFIX \"${CORVALE_C_PREFIX}\" cannot begin a name in C")
  endif()
  # Our own sources and tools keep the plain names; their compiler reads the others.
  set(renamed ${c_api})
  list(TRANSFORM renamed REPLACE "(.+)" "\\1=${CORVALE_C_PREFIX}\\1")
  target_compile_definitions(corvale_flags INTERFACE ${renamed})

  set(prefixed "${CMAKE_CURRENT_BINARY_DIR}/prefixed")
  set(c_header corvale/exports/CorvaleDllExports.h)
  file(READ "${PROJECT_SOURCE_DIR}/${c_header}" text)
  corvale_prefix(text "${text}")
  file(CONFIGURE OUTPUT "${prefixed}/${c_header}" CONTENT "${text}" @ONLY)
  list(REMOVE_ITEM CORVALE_PUBLIC_HEADERS exports/CorvaleDllExports.h)
  target_sources(Corvale PUBLIC FILE_SET prefixed_headers TYPE HEADERS BASE_DIRS "${prefixed}" FILES
    "${prefixed}/${c_header}")

  corvale_prefix(exports "${exports}")
  string(REPLACE "CORVALE_C" "${CORVALE_C_PREFIX}CORVALE_C" exports "${exports}")
  set(version_script "${prefixed}/Corvale.map")
  file(CONFIGURE OUTPUT "${version_script}" CONTENT "${exports}" @ONLY)
  list(TRANSFORM c_api PREPEND "${CORVALE_C_PREFIX}")
  set_target_properties(Corvale PROPERTIES OUTPUT_NAME "${CORVALE_C_PREFIX}Corvale")
endif()

if(NOT BUILD_SHARED_LIBS)
  return()
endif()

# corvale_link_option(NAME FLAG): uses FLAG where the linker knows it.
function(corvale_link_option name flag)
  check_linker_flag(CXX "${flag}" CORVALE_LINKER_KNOWS_${name})
  if(CORVALE_LINKER_KNOWS_${name})
    target_link_options(Corvale PRIVATE "${flag}")
  endif()
endfunction()

if(APPLE)  # a library there is bound to its own names anyhow
  list(TRANSFORM c_api PREPEND "_" OUTPUT_VARIABLE exports)
  list(APPEND exports "__ZN7corvale*" "__ZNK7corvale*")
  list(JOIN exports "\n" exports)
  set(version_script "${CMAKE_CURRENT_BINARY_DIR}/Corvale.exports")
  file(CONFIGURE OUTPUT "${version_script}" CONTENT "${exports}\n" @ONLY)
  target_link_options(Corvale PRIVATE "LINKER:-exported_symbols_list,${version_script}")
elseif(WIN32)  # CORVALE_API says what is exported; another major version has another file name
  set_target_properties(Corvale PROPERTIES
    RUNTIME_OUTPUT_NAME "${CORVALE_C_PREFIX}Corvale-${PROJECT_VERSION_MAJOR}")
else()
  corvale_link_option(VERSION_SCRIPT "-Wl,--version-script=${version_script}")
  corvale_link_option(SYMBOLIC_FUNCTIONS "-Wl,-Bsymbolic-functions")
  corvale_link_option(NODELETE "-Wl,-z,nodelete")
  if(NOT CORVALE_SANITIZE)
    corvale_link_option(NO_UNDEFINED "-Wl,--no-undefined")
  endif()
endif()
set_property(TARGET Corvale APPEND PROPERTY LINK_DEPENDS "${version_script}")
