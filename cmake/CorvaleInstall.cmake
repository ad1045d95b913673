# What `cmake --install` puts in place: headers, library, package description for CMake and
# pkg-config (both relocatable), and the program with its man page and completions.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS Corvale EXPORT CorvaleTargets FILE_SET HEADERS)
if(CORVALE_BUILD_TOOLS)
  install(TARGETS corvale_program)
  file(RELATIVE_PATH library_from_program
    "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(corvale_program PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_program}")
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
