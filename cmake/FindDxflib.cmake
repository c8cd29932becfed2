# dxflib, parser and writer of DXF: target Dxflib::Dxflib.
find_path(Dxflib_INCLUDE_DIR dxflib/dl_dxf.h)
find_library(Dxflib_LIBRARY dxflib)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Dxflib REQUIRED_VARS Dxflib_LIBRARY Dxflib_INCLUDE_DIR)

if(Dxflib_FOUND AND NOT TARGET Dxflib::Dxflib)
  add_library(Dxflib::Dxflib UNKNOWN IMPORTED)
  set_target_properties(
    Dxflib::Dxflib PROPERTIES IMPORTED_LOCATION "${Dxflib_LIBRARY}"
                              INTERFACE_INCLUDE_DIRECTORIES "${Dxflib_INCLUDE_DIR}")
endif()
mark_as_advanced(Dxflib_INCLUDE_DIR Dxflib_LIBRARY)
