# What every target of this project is compiled with.

# Flags of our own code: not part of what a consumer inherits.
add_library(converters_compiler_settings INTERFACE)
target_compile_features(converters_compiler_settings INTERFACE cxx_std_17)
target_compile_options(
  converters_compiler_settings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wshadow
            -Werror
            # A fused multiply-add rounds once where two operations round twice: results would
            # depend on the processor.
            -ffp-contract=off
            # Nobody asks errno about a root, and setting it keeps loops from being vectorised.
            -fno-math-errno)
target_compile_definitions(converters_compiler_settings
                           INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The libraries find the functions of others when a program starts, not in the middle of its first
# call, and where they are is read-only from then on.
string(APPEND CMAKE_SHARED_LINKER_FLAGS " -Wl,-z,now")
