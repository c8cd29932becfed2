# What `cmake --install` puts where: the libraries, the headers, the CMake package, the pkg-config
# file, cloudconv with its manual page, and the licence notes.
#
# Components, one for each Debian package: runtime, development, cloudconv. python/CMakeLists.txt has
# the fourth, python3.
include(CMakePackageConfigHelpers)

# Outside the folders that the loader searches, the libraries find each other by their place.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set_target_properties(converters PROPERTIES INSTALL_RPATH "$ORIGIN")
  if(TARGET cloudconv)
    file(RELATIVE_PATH _bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(cloudconv PROPERTIES INSTALL_RPATH "$ORIGIN/${_bin_to_lib}")
  endif()
endif()

install(
  TARGETS converters universal_log_interface
  EXPORT converters-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)

if(TARGET cloudconv)
  install(TARGETS cloudconv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT cloudconv)
  install(
    FILES ${PROJECT_SOURCE_DIR}/docs/cloudconv.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT cloudconv)
endif()

# Every header is public, except what lives in a folder detail/, and converters/check/ and
# dxfeditor/text/, which are for the programs of this tree.
foreach(folder IN ITEMS converters dxfeditor universal_log_interface)
  install(
    DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development
    FILES_MATCHING
    PATTERN "*.h"
    PATTERN check EXCLUDE
    PATTERN detail EXCLUDE
    PATTERN text EXCLUDE)
endforeach()

# Templates in public headers need these.
install(
  FILES ${PROJECT_SOURCE_DIR}/converters/detail/ply/PlyAsciiBody.h
        ${PROJECT_SOURCE_DIR}/converters/detail/ply/PlyLines.h
        ${PROJECT_SOURCE_DIR}/converters/detail/ply/PlyLog.h
        ${PROJECT_SOURCE_DIR}/converters/detail/ply/PlyPoints.h
        ${PROJECT_SOURCE_DIR}/converters/detail/ply/PointBytes.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/converters/detail/ply
  COMPONENT development)

# The CMake package.
set(_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/converters)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/converters-config.cmake.in
  ${PROJECT_BINARY_DIR}/converters-config.cmake
  INSTALL_DESTINATION ${_package_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/converters-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/converters-config.cmake
        ${PROJECT_BINARY_DIR}/converters-config-version.cmake
        ${CMAKE_CURRENT_LIST_DIR}/FindDxflib.cmake
        ${CMAKE_CURRENT_LIST_DIR}/FindOpenCVCoreHeaders.cmake
        ${CMAKE_CURRENT_LIST_DIR}/FindPclCommon.cmake
  DESTINATION ${_package_dir}
  COMPONENT development)
install(
  EXPORT converters-targets
  NAMESPACE converters::
  DESTINATION ${_package_dir}
  COMPONENT development)

# The pkg-config file. The prefix is given relative to the file, so that the installed tree can be
# moved. The dependencies are named by flag: not all of them have pkg-config files of their own.
file(RELATIVE_PATH PKGCONFIG_PREFIX
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" PKGCONFIG_PREFIX "${PKGCONFIG_PREFIX}")
get_filename_component(_pcl_library "${PclCommon_LIBRARY}" NAME)
if(_pcl_library MATCHES "^lib(.*)\\.so$")
  set(PKGCONFIG_PCL_LIBRARY "-l${CMAKE_MATCH_1}")
else()
  set(PKGCONFIG_PCL_LIBRARY "-l:${_pcl_library}")
endif()
get_target_property(_eigen_include_dir Eigen3::Eigen INTERFACE_INCLUDE_DIRECTORIES)
set(PKGCONFIG_CFLAGS "")
foreach(folder IN LISTS PclCommon_INCLUDE_DIR OpenCVCoreHeaders_INCLUDE_DIR _eigen_include_dir)
  string(APPEND PKGCONFIG_CFLAGS " -isystem ${folder}")
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/converters.pc.in ${PROJECT_BINARY_DIR}/converters.pc @ONLY)
install(
  FILES ${PROJECT_BINARY_DIR}/converters.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

# The documents, in Debian in the folder of the package that needs them.
set(_documents_dir ${CMAKE_INSTALL_DOCDIR})
if(CONVERTERS_DEBIAN_LAYOUT)
  set(_documents_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/libconverters-dev)
else()
  install(
    FILES ${PROJECT_SOURCE_DIR}/docs/licences.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT runtime)
endif()
foreach(_document IN ITEMS batches formats security threads walk)
  install(
    FILES ${PROJECT_SOURCE_DIR}/docs/${_document}.md
    DESTINATION ${_documents_dir}
    COMPONENT development)
endforeach()
