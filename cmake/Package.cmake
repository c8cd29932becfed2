# Debian packages, one for each install component: libconverters1, libconverters-dev, cloudconv,
# python3-converters.
# scripts/package.sh makes them.

# Lays the install out as Debian packages want it; the preset "package" sets it.
option(CONVERTERS_DEBIAN_LAYOUT "Install the licence notes as Debian's copyright files" OFF)

set(_library_package libconverters${PROJECT_VERSION_MAJOR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME converters)
set(CPACK_PACKAGE_CONTACT "The converters developers <converters@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET cloudconv)
  list(APPEND CPACK_COMPONENTS_ALL cloudconv)
endif()
if(CONVERTERS_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python3)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
# A package depends on the others in exactly its own version.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/converters
                                                ${PROJECT_BINARY_DIR}/universal_log_interface)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${_library_package})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Shared libraries libconverters and libuniversal_log_interface.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libconverters-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Headers, CMake package and pkg-config file of libconverters.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libpcl-dev (>= 1.13), libdxflib-dev, libopencv-core-dev, libeigen3-dev, libboost-filesystem-dev"
)

set(CPACK_DEBIAN_CLOUDCONV_PACKAGE_NAME cloudconv)
set(CPACK_DEBIAN_CLOUDCONV_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_CLOUDCONV_DESCRIPTION "Command-line tool.")
set(CPACK_DEBIAN_CLOUDCONV_PACKAGE_SHLIBDEPS ON)
# Loaded when a picture is drawn.
set(CPACK_DEBIAN_CLOUDCONV_PACKAGE_DEPENDS "libcairo2 (>= 1.16)")
set(CPACK_COMPONENT_CLOUDCONV_DEPENDS runtime)

# The module is for one release of Python.
set(CPACK_DEBIAN_PYTHON3_PACKAGE_NAME python3-converters)
set(CPACK_DEBIAN_PYTHON3_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON3_DESCRIPTION "Python package on the libraries of libconverters.")
set(CPACK_DEBIAN_PYTHON3_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON3_PACKAGE_DEPENDS
    "python3 (>= 3.11~), python3 (<< 3.12), python3-numpy (>= 1:1.19)")
set(CPACK_DEBIAN_PYTHON3_PACKAGE_SUGGESTS "python3-matplotlib, python3-pandas")
set(CPACK_DEBIAN_PYTHON3_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/postinst
                                               ${CMAKE_CURRENT_LIST_DIR}/debian/prerm)
set(CPACK_COMPONENT_PYTHON3_DEPENDS runtime)

if(CONVERTERS_DEBIAN_LAYOUT)
  foreach(_component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${_component} _variable)
    install(
      FILES ${PROJECT_SOURCE_DIR}/docs/licences.md
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${_variable}_PACKAGE_NAME}
      RENAME copyright
      COMPONENT ${_component})
  endforeach()
endif()

include(CPack)
