# The libraries a host links, and everything `cmake --install` and `cpack` make of them.
#
# Vemba::Vemba is the whole library with the Linux backend; Vemba::Testing is the same core with
# the fake backend and the testing API, for a host's own unit tests. Each is one library, static
# or shared as BUILD_SHARED_LIBS says, built from the internal libraries' objects. Only the
# public API (VEMBA_EXPORT, include/) is visible from a shared one.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VEMBA_CORE_OBJECTS $<TARGET_OBJECTS:vemba_common> $<TARGET_OBJECTS:vemba_ads>)
foreach(part config errors events bridge webview sheet)  # src/checkout's parts
  list(APPEND VEMBA_CORE_OBJECTS $<TARGET_OBJECTS:vemba_checkout_${part}>)
endforeach()

# The backend a library carries, checked by CMake when a host links both (see
# COMPATIBLE_INTERFACE_STRING below): a host gets one backend or a configure error.
function(vemba_package_library target output backend)
  add_library(${target} ${VEMBA_CORE_OBJECTS} ${ARGN})
  add_library(Vemba::${output} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${output}
    EXPORT_NAME ${output}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INTERFACE_VEMBA_BACKEND ${backend}
    COMPATIBLE_INTERFACE_STRING VEMBA_BACKEND)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${target} PUBLIC cxx_std_20)
  string(TOUPPER ${backend} upper)
  target_compile_definitions(${target} INTERFACE VEMBA_BACKEND_${upper})
  # A shared library resolves its dependencies itself; a static one hands them to the host's
  # link (CMake writes them into the exported target as link-only).
  target_link_libraries(${target} PRIVATE PkgConfig::URIPARSER Threads::Threads)
endfunction()

vemba_package_library(vemba_package Vemba linux $<TARGET_OBJECTS:vemba_platform_linux>)
target_link_libraries(vemba_package PRIVATE PkgConfig::VEMBA_LINUX_DEPS)
vemba_package_library(vemba_testing_package Testing fake $<TARGET_OBJECTS:vemba_platform_fake>
                      $<TARGET_OBJECTS:vemba_testing_support>)
set_target_properties(vemba_package PROPERTIES OUTPUT_NAME vemba)
set_target_properties(vemba_testing_package PROPERTIES OUTPUT_NAME vemba-testing)

# pkg-config and the package config file: a shared library names only itself; a static one also
# hands on what it needs.
if(BUILD_SHARED_LIBS)
  set(VEMBA_STATIC OFF)
  set(VEMBA_PC_REQUIRES "")
  set(VEMBA_TESTING_PC_REQUIRES "")
else()
  set(VEMBA_STATIC ON)
  set(VEMBA_PC_REQUIRES "Requires: gtk4 webkitgtk-6.0 libcurl >= 7.84 glib-2.0 gio-2.0 liburiparser")
  set(VEMBA_TESTING_PC_REQUIRES "Requires: liburiparser")
endif()

# --- install -------------------------------------------------------------------------------------
set(VEMBA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Vemba)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vemba ${PROJECT_BINARY_DIR}/include/vemba
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS vemba_package vemba_testing_package EXPORT VembaTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT VembaTargets NAMESPACE Vemba:: DESTINATION ${VEMBA_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VembaConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/VembaConfig.cmake
                              INSTALL_DESTINATION ${VEMBA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VembaConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VembaConfig.cmake ${PROJECT_BINARY_DIR}/VembaConfigVersion.cmake
        DESTINATION ${VEMBA_CMAKE_DIR})

# Relocatable: the prefix is found from where the file lies, so any --prefix works.
file(RELATIVE_PATH VEMBA_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
foreach(pc vemba vemba-testing)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${pc}.pc.in ${PROJECT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# --- the Debian package ----------------------------------------------------------------------------
# `cpack -G DEB` in a build configured with CMAKE_INSTALL_PREFIX=/usr: everything the install puts,
# with Depends computed from what the shared objects and vemba-inspect link.
set(CPACK_PACKAGE_NAME vemba)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Interstitial and rewarded ads, and a hosted checkout, in web views for GTK 4 hosts")
set(CPACK_PACKAGE_CONTACT "Vemba SDK team <sdk@vemba.invalid>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
