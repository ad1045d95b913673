# Platform and compiler for the information line.

# Sixteen characters for every platform; longer names are cut, shorter ones filled.
if(CMAKE_SYSTEM_NAME STREQUAL "Darwin" AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  set(platform "Intel Mac 64-bit")
elseif(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  set(platform "Apple Mac 64-bit")
elseif(WIN32)
  set(platform "Windows 64-bit")
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64)$")
  set(platform "${CMAKE_SYSTEM_NAME} x86 64-bit")
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(platform "${CMAKE_SYSTEM_NAME} ARM 64-bit")
else()
  set(platform "${CMAKE_SYSTEM_NAME} ${CMAKE_SYSTEM_PROCESSOR}")
endif()
string(SUBSTRING "${platform}                " 0 16 CORVALE_PLATFORM)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(CORVALE_COMPILER "GCC ${CMAKE_CXX_COMPILER_VERSION}")
else()
  set(CORVALE_COMPILER "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
endif()
