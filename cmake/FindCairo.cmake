# Cairo, which draws pictures: target Cairo::Cairo.
#
# Also finds the library of another processor without its development files, which would bring those
# of a whole desktop along.
find_path(Cairo_INCLUDE_DIR cairo.h PATH_SUFFIXES cairo)
find_library(Cairo_LIBRARY NAMES cairo libcairo.so.2)

if(Cairo_INCLUDE_DIR AND EXISTS "${Cairo_INCLUDE_DIR}/cairo-version.h")
  file(STRINGS "${Cairo_INCLUDE_DIR}/cairo-version.h" _version_lines
       REGEX "#define CAIRO_VERSION_(MAJOR|MINOR|MICRO)")
  string(REGEX REPLACE "[^0-9;]+" "" Cairo_VERSION "${_version_lines}")
  list(JOIN Cairo_VERSION "." Cairo_VERSION)
  unset(_version_lines)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  Cairo
  REQUIRED_VARS Cairo_LIBRARY Cairo_INCLUDE_DIR
  VERSION_VAR Cairo_VERSION)

if(Cairo_FOUND AND NOT TARGET Cairo::Cairo)
  add_library(Cairo::Cairo UNKNOWN IMPORTED)
  set_target_properties(Cairo::Cairo PROPERTIES IMPORTED_LOCATION "${Cairo_LIBRARY}"
                                                INTERFACE_INCLUDE_DIRECTORIES "${Cairo_INCLUDE_DIR}")
endif()
mark_as_advanced(Cairo_INCLUDE_DIR Cairo_LIBRARY)
