# Headers of other libraries that take longer to read than our own sources take to compile.
option(CONVERTERS_PRECOMPILE_HEADERS "Read the large headers of other libraries once a target" OFF)

set(CONVERTERS_POINT_HEADERS <opencv2/core/types.hpp> <pcl/PCLPointCloud2.h> <pcl/point_cloud.h>
                             <pcl/point_types.h>)

# converters_precompile(TARGET HEADER...): precompiles these headers for a target.
function(converters_precompile target)
  if(CONVERTERS_PRECOMPILE_HEADERS)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()
