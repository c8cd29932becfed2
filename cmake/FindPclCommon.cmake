# The common module of the Point Cloud Library: target PclCommon::PclCommon.
#
# PCL's own package looks for every module and its dependencies; the common module is all that is
# needed here, and this module also finds the library of another processor, whose package has no
# development files.
find_path(PclCommon_INCLUDE_DIR pcl/point_cloud.h PATH_SUFFIXES pcl-1.13 pcl)
find_library(PclCommon_LIBRARY NAMES pcl_common libpcl_common.so.1.13)

if(PclCommon_INCLUDE_DIR AND EXISTS "${PclCommon_INCLUDE_DIR}/pcl/pcl_config.h")
  file(STRINGS "${PclCommon_INCLUDE_DIR}/pcl/pcl_config.h" _version_line
       REGEX "#define PCL_VERSION_PRETTY")
  string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" PclCommon_VERSION "${_version_line}")
  unset(_version_line)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  PclCommon
  REQUIRED_VARS PclCommon_LIBRARY PclCommon_INCLUDE_DIR
  VERSION_VAR PclCommon_VERSION)

if(PclCommon_FOUND AND NOT TARGET PclCommon::PclCommon)
  add_library(PclCommon::PclCommon UNKNOWN IMPORTED)
  set_target_properties(
    PclCommon::PclCommon
    PROPERTIES IMPORTED_LOCATION "${PclCommon_LIBRARY}"
               INTERFACE_INCLUDE_DIRECTORIES "${PclCommon_INCLUDE_DIR}"
               INTERFACE_LINK_LIBRARIES "Eigen3::Eigen;Boost::headers")
endif()
mark_as_advanced(PclCommon_INCLUDE_DIR PclCommon_LIBRARY)
