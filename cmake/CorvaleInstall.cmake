# What `cmake --install` puts in place: headers, library, package description for CMake and
# pkg-config (both relocatable), and the program with its man page and completions.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

get_target_property(header_sets Corvale HEADER_SETS)
list(TRANSFORM header_sets PREPEND "FILE_SET;" OUTPUT_VARIABLE header_sets)
install(TARGETS Corvale EXPORT CorvaleTargets ${header_sets})
if(CORVALE_BUILD_TOOLS)
  install(TARGETS corvale_program)
  file(RELATIVE_PATH library_from_program
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(here $<IF:$<PLATFORM_ID:Darwin>,@loader_path,$ORIGIN>)
  set_target_properties(corvale_program PROPERTIES BUILD_RPATH_USE_ORIGIN ON
    INSTALL_RPATH "${here}/${library_from_program}")
  if(CORVALE_PAGES)
    install(FILES "${CORVALE_PAGES}/man/corvale.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    install(FILES "${CORVALE_PAGES}/bash/corvale"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
    install(FILES "${CORVALE_PAGES}/zsh/_corvale"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
    install(FILES "${CORVALE_PAGES}/fish/corvale.fish"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
  endif()
endif()

# What a C compiler has to be told when it links the static library: the C++ runtime.
set(CORVALE_RUNTIME ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_ITEM CORVALE_RUNTIME c ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
list(TRANSFORM CORVALE_RUNTIME PREPEND "-l")
list(JOIN CORVALE_RUNTIME " " CORVALE_LIBS_PRIVATE)
if(NOT BUILD_SHARED_LIBS)
  set(CORVALE_LIBS " ${CORVALE_LIBS_PRIVATE}")
endif()
get_target_property(CORVALE_FILE_NAME Corvale OUTPUT_NAME)
if(NOT CORVALE_FILE_NAME)
  set(CORVALE_FILE_NAME Corvale)
endif()

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Corvale")
install(EXPORT CorvaleTargets NAMESPACE Corvale:: DESTINATION "${package_dir}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/CorvaleConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/CorvaleConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/CorvaleConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/CorvaleConfig.cmake"
  "${PROJECT_BINARY_DIR}/CorvaleConfigVersion.cmake" DESTINATION "${package_dir}")

file(RELATIVE_PATH CORVALE_PREFIX_FROM_PC
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/Corvale.pc.in" "${PROJECT_BINARY_DIR}/Corvale.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/Corvale.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
