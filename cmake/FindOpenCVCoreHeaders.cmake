# The headers of OpenCV's core module, without its libraries: target
# OpenCVCoreHeaders::OpenCVCoreHeaders. Only plain point types are taken from it.
find_path(OpenCVCoreHeaders_INCLUDE_DIR opencv2/core/types.hpp PATH_SUFFIXES opencv4)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCVCoreHeaders REQUIRED_VARS OpenCVCoreHeaders_INCLUDE_DIR)

if(OpenCVCoreHeaders_FOUND AND NOT TARGET OpenCVCoreHeaders::OpenCVCoreHeaders)
  add_library(OpenCVCoreHeaders::OpenCVCoreHeaders INTERFACE IMPORTED)
  set_target_properties(
    OpenCVCoreHeaders::OpenCVCoreHeaders
    PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${OpenCVCoreHeaders_INCLUDE_DIR}")
endif()
mark_as_advanced(OpenCVCoreHeaders_INCLUDE_DIR)
