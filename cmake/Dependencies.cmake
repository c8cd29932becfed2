# The libraries that converters calls, as imported targets with system include folders.
find_package(Boost 1.74 REQUIRED COMPONENTS filesystem)
find_package(Eigen3 3.3 REQUIRED NO_MODULE)
find_package(PclCommon 1.13 REQUIRED)
find_package(OpenCVCoreHeaders REQUIRED)
find_package(Dxflib REQUIRED)
