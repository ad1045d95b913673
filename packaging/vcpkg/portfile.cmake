# Builds from the checkout that this port lies in. A registry that builds from a release replaces
# SOURCE_PATH by its own download.
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)  # the checkout holds no licence file
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)

vcpkg_check_features(OUT_FEATURE_OPTIONS feature_options FEATURES tools CORVALE_BUILD_TOOLS)
vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    ${feature_options}
    -DCORVALE_BUILD_TESTS=OFF
    -DCORVALE_BUILD_EXAMPLES=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME Corvale CONFIG_PATH lib/cmake/Corvale)
vcpkg_fixup_pkgconfig()
if("tools" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES corvale AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
